// Rules of a raw CAN line: its identifiers and the signals of their messages.

#include "check/checktext.h"
#include "check/modelchecker.h"

using namespace Qt::StringLiterals;

namespace {

constexpr quint32 extendedFlag = 0x80000000;
constexpr quint32 highestBaseId = 0x7FF;

void canIdInBothDirections(ModelChecker &checker, const CheckSubject &subject)
{
    const CheckedCanId &canId = *subject.canId;
    if (canId.direction() == StoreRecords::receive && checker.line().hasCanId(canId.data.id, StoreRecords::transmit))
        checker.reportWarning(WG_IDS, u"<strong>Warning: </strong>CAN-ID 0x%1 appears in both TX and RX — this is "
                                      "unusual and may be a configuration error."_s.arg(hex(canId.data.id)));
}

void canIdWithoutExtendedFlag(ModelChecker &checker, const CheckSubject &subject)
{
    const quint32 id = subject.canId->data.id;
    if ((id & extendedFlag) == 0 && id > highestBaseId)
        checker.reportError(u"<strong><font color='red'>Error: </font></strong> CAN-ID 0x%1 is higher then 0x7ff, but "
                            "extended flag is not set."_s.arg(hex(id)));
}

void signalWithoutVariable(ModelChecker &checker, const CheckSubject &subject)
{
    if (subject.signal->data.varname.trimmed().isEmpty())
        checker.reportError(
            u"<strong><font color='red'>Error: </font></strong> Variable name missing for signal # %1 "
            "in CAN-ID 0x%2"_s.arg(QString::number(subject.signal->position), hex(subject.canId->data.id)));
}

void signalOverlaps(ModelChecker &checker, const CheckSubject &subject)
{
    if (subject.signal->overlapsEarlier)
        checker.reportError(
            u"<strong><font color='red'>Error: </font></strong> Signal '%1' in CAN-ID 0x%2 overlaps "
            "with another signal in the same message."_s.arg(subject.signal->data.name, hex(subject.canId->data.id)));
}

void signalsTooLong(ModelChecker &checker, const CheckSubject &subject)
{
    const quint32 limit = checker.line().settings().frameBits();
    if (subject.canId->bits > limit)
        checker.reportError(u"<strong><font color='red'>Error: </font></strong> CAN-ID 0x%1: signals require %2 bits "
                            "but the maximum payload is %3 bits."_s.arg(hex(subject.canId->data.id),
                                                                        dec(subject.canId->bits), dec(limit)));
}

void signalVariableUsedTwice(ModelChecker &checker, const CheckSubject &subject)
{
    const CheckedSignal &signal = *subject.signal;
    const CheckedSignal *first = checker.line().firstSignalWith(signal.data.varname);
    if (first && first != &signal)
        checker.reportWarning(
            WG_NAMING,
            u"<strong>Warning: </strong>Signal %1 in CAN-ID 0x%2: variable name '%3' is already used by signal %4 in "
            "CAN-ID 0x%5."_s.arg(QString::number(signal.position), hex(subject.canId->data.id), signal.data.varname,
                                 QString::number(first->position), hex(first->data.pgnnumber)));
}

} // namespace

std::span<const CheckRule> rawCanRules()
{
    static const CheckRule rules[] = {
        {"canIdInBothDirections"_L1, canIdInBothDirections, eachCanId},
        {"canIdWithoutExtendedFlag"_L1, canIdWithoutExtendedFlag, eachCanId, once, true},
        {"signalWithoutVariable"_L1, signalWithoutVariable, eachCanId, itsSignals, true},
        {"signalOverlaps"_L1, signalOverlaps, eachCanId, itsSignals, true},
        {"signalsTooLong"_L1, signalsTooLong, eachCanId, once, true},
        {"signalVariableUsedTwice"_L1, signalVariableUsedTwice, eachCanId, itsSignals, true},
    };
    return rules;
}
