// Rules of a raw CAN line: its identifiers and the signals of their messages.

#include "check/frame/checkloops.h"
#include "check/line/checktext.h"
#include "check/rules/rulelists.h"
#include "nodedict/codes.h"

using namespace Qt::StringLiterals;

namespace {

void canIdInBothDirections(Check &check, const CheckedCanId &canId)
{
    if (canId.direction() == StoreRecords::receive && check.line().hasCanId(canId.data.id, StoreRecords::transmit))
        check.warning(WG_IDS,
                      u"<strong>Warning: </strong>CAN-ID 0x%1 appears in both TX and RX — this is unusual and may be a "
                      "configuration error."_s.arg(hex(canId.data.id)));
}

void canIdWithoutExtendedFlag(LocalCheck &check, const CheckedCanId &canId)
{
    const quint32 id = canId.data.id;
    if ((id & CAN::extendedFlag) == 0 && id > CAN::highestBaseId)
        check.redError(u" CAN-ID 0x%1 is higher then 0x7ff, but extended flag is not set."_s.arg(hex(id)));
}

void signalWithoutVariable(LocalCheck &check, const CheckedCanId &canId, const CheckedSignal &signal)
{
    if (signal.data.varname.trimmed().isEmpty())
        check.redError(u" Variable name missing for signal # %1 in CAN-ID 0x%2"_s.arg(QString::number(signal.position),
                                                                                      hex(canId.data.id)));
}

void signalOverlaps(LocalCheck &check, const CheckedCanId &canId, const CheckedSignal &signal)
{
    if (signal.overlapsEarlier)
        check.redError(u" Signal '%1' in CAN-ID 0x%2 overlaps with another signal in the same message."_s.arg(
            signal.data.name, hex(canId.data.id)));
}

void signalsTooLong(LocalCheck &check, const CheckedCanId &canId)
{
    const quint32 limit = check.settings().frameBits();
    if (canId.bits > limit)
        check.redError(u" CAN-ID 0x%1: signals require %2 bits but the maximum payload is %3 bits."_s.arg(
            hex(canId.data.id), dec(canId.bits), dec(limit)));
}

void signalVariableUsedTwice(VariableCheck &check, const CheckedCanId &canId, const CheckedSignal &signal)
{
    const CheckedSignal *first = check.firstSignalWith(signal.data.varname);
    if (first && first != &signal)
        check.warning(
            WG_NAMING,
            u"<strong>Warning: </strong>Signal %1 in CAN-ID 0x%2: variable name '%3' is already used by signal %4 in "
            "CAN-ID 0x%5."_s.arg(QString::number(signal.position), hex(canId.data.id), signal.data.varname,
                                 QString::number(first->position), hex(first->data.pgnnumber)));
}

} // namespace

std::span<const LineRule> RuleLists::rawCan()
{
    static const LineRule rules[] = {
        rule("canIdInBothDirections"_L1, eachCanId, canIdInBothDirections),
        rule("canIdWithoutExtendedFlag"_L1, eachCanId, canIdWithoutExtendedFlag).inNewPass(),
        rule("signalWithoutVariable"_L1, eachCanId, itsSignals, signalWithoutVariable).inNewPass(),
        rule("signalOverlaps"_L1, eachCanId, itsSignals, signalOverlaps).inNewPass(),
        rule("signalsTooLong"_L1, eachCanId, signalsTooLong).inNewPass(),
        rule("signalVariableUsedTwice"_L1, eachCanId, itsSignals, signalVariableUsedTwice).inNewPass(),
    };
    return rules;
}
