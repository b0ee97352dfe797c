#include "check/checkrules.h"

#include "check/modelchecker.h"

const CheckRules &CheckRules::builtIn()
{
    static const CheckRules rules{};
    return rules;
}

void onceForCheck(ModelChecker & /*checker*/, const CheckRule::Visit &visit)
{
    visit({});
}

void eachObject(ModelChecker &checker, const CheckRule::Visit &visit)
{
    for (const CheckedObject &object : checker.line().objects())
        visit({.object = &object});
}

void eachSubindex(ModelChecker &checker, const CheckRule::Visit &visit)
{
    for (const CheckedObject &object : checker.line().objects()) {
        for (const CheckedSubindex &sub : object.subs)
            visit({.object = &object, .sub = &sub});
    }
}

void eachPGN(ModelChecker &checker, const CheckRule::Visit &visit)
{
    for (const CheckedPGN &pgn : checker.line().pgns())
        visit({.pgn = &pgn});
}

void eachSPN(ModelChecker &checker, const CheckRule::Visit &visit)
{
    for (const CheckedPGN &pgn : checker.line().pgns()) {
        for (const StoreRecords::SPN &spn : pgn.spns)
            visit({.pgn = &pgn, .spn = &spn});
    }
}

void eachCanId(ModelChecker &checker, const CheckRule::Visit &visit)
{
    for (const CheckedCanId &canId : checker.line().canIds())
        visit({.canId = &canId});
}

void eachSignal(ModelChecker &checker, const CheckRule::Visit &visit)
{
    for (const CheckedCanId &canId : checker.line().canIds()) {
        for (const StoreRecords::DataElement &signal : canId.signalList)
            visit({.canId = &canId, .signal = &signal});
    }
}
