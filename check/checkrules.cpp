#include "check/checkrules.h"

#include "check/modelchecker.h"

namespace {

std::vector<CheckRule> joined(std::initializer_list<std::span<const CheckRule>> parts)
{
    std::vector<CheckRule> rules;
    for (const std::span<const CheckRule> part : parts)
        rules.insert(rules.end(), part.begin(), part.end());
    return rules;
}

} // namespace

const CheckRules &CheckRules::builtIn()
{
    static const std::vector<CheckRule> canOpen =
        joined({valueRules(), lineRules(), communicationRules(), objectRules(), pdoMappingRules(),
                pdoCommunicationRules(), srdoRules(), mappingModeRules(), variableRules()});
    static const CheckRules rules{
        .common = projectRules(), .canOpen = canOpen, .j1939 = j1939Rules(), .rawCan = rawCanRules()};
    return rules;
}

void once(ModelChecker & /*checker*/, const CheckSubject &outer, const CheckVisit &visit)
{
    visit(outer);
}

void eachObject(ModelChecker &checker, const CheckSubject & /*outer*/, const CheckVisit &visit)
{
    for (const CheckedObject &object : checker.line().objects())
        visit({.object = &object});
}

void itsSubindices(ModelChecker & /*checker*/, const CheckSubject &outer, const CheckVisit &visit)
{
    CheckSubject subject = outer;
    for (const CheckedSubindex &sub : outer.object->subs) {
        subject.sub = &sub;
        visit(subject);
    }
}

void itsEntries(ModelChecker &checker, const CheckSubject &outer, const CheckVisit &visit)
{
    CheckSubject subject = outer;
    for (const PDO::MappingEntry &entry : PDO::entriesOf(checker.line(), *outer.object)) {
        subject.entry = &entry;
        visit(subject);
    }
}

void eachPGN(ModelChecker &checker, const CheckSubject & /*outer*/, const CheckVisit &visit)
{
    for (const CheckedPGN &pgn : checker.line().pgns())
        visit({.pgn = &pgn});
}

void itsSPNs(ModelChecker & /*checker*/, const CheckSubject &outer, const CheckVisit &visit)
{
    CheckSubject subject = outer;
    for (const CheckedSignal &spn : outer.pgn->spns) {
        subject.signal = &spn;
        visit(subject);
    }
}

void eachCanId(ModelChecker &checker, const CheckSubject & /*outer*/, const CheckVisit &visit)
{
    for (const CheckedCanId &canId : checker.line().canIds())
        visit({.canId = &canId});
}

void itsSignals(ModelChecker & /*checker*/, const CheckSubject &outer, const CheckVisit &visit)
{
    CheckSubject subject = outer;
    for (const CheckedSignal &signal : outer.canId->signalList) {
        subject.signal = &signal;
        visit(subject);
    }
}
