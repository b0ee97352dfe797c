// Rules of a J1939 line: its settings, its parameter groups with their safety, and their signals.

#include "check/frame/checkloops.h"
#include "check/line/checktext.h"
#include "check/line/safetytypes.h"
#include "check/rules/rulelists.h"
#include "store/objectdatabase.h"

#include <algorithm>

using namespace Qt::StringLiterals;
using CANopen::Implementation;

namespace {

constexpr quint32 classicalFrameBits = 64;

bool isJ1939OnForLine(Check &check, const QString &j1939Setting)
{
    return check.j1939().isOn(j1939Setting, check.line().number());
}

/// A rule that finds a setting of the line without a value.
LineRule unset(QLatin1StringView name, const QString &key, const QString &message)
{
    return rule<Check>(name, [key, message](Check &check) {
        const quint8 line = check.line().number();
        if (check.store().getJ1939Setting(key, line).trimmed().isEmpty())
            check.error(message.arg(line));
    });
}

/// True for a PGN with safety data, in a project that supports it.
bool isSafe(LocalCheck &check, const CheckedPGN &pgn)
{
    return pgn.data.issafe && check.settings().safetySupport;
}

/// True for a PGN that the project wants to be sent as SDM, whether or not it supports that.
bool isMeantAsSDM(const CheckedPGN &pgn)
{
    const SafetyType *type = safetyType(pgn.data.safetytype);
    return pgn.data.issafe && type && type->isSDM;
}

bool isSDM(LocalCheck &check, const CheckedPGN &pgn)
{
    return isMeantAsSDM(pgn) && check.settings().safetySupport;
}

bool isLongerThanFrame(Check & /*check*/, const CheckedPGN &pgn)
{
    return pgn.bits > classicalFrameBits;
}

void sortedCobList(Check &check)
{
    if (check.general().isOn(u"sorted_coblist"_s))
        check.error(u"Sorted COB list may not used with J1939 projects."_s);
}

/// Opening a project switches the filter off, so that only a modifier file brings one here.
void groupFilter(Check &check)
{
    if (check.general().isOn(u"drv_group_filter"_s))
        check.warning(WG_CONFIG,
                      u"<strong>Warning: </strong>Group filter is only useful for CANopen or mixed projects."_s);
}

void dynamicWithoutCobs(Check &check)
{
    if (isJ1939OnForLine(check, u"dynsupport"_s) &&
        check.store().getGeneralSetting(u"additional_cob_count"_s).trimmed().isEmpty())
        check.error(u"Additional COBs need to be specific with dynamic PGN support."_s);
}

void manufacturerIsNorvane(Check &check)
{
    constexpr quint32 norvane = 1447;
    if (check.j1939().number(u"manufacturercode"_s, check.line().number()) == norvane)
        check.warning(
            WG_IDENTITY,
            u"<strong>Warning: The manufacturer code 1447 (Norvane Fieldbus GmbH) may not be used for production. "
            "</strong>"_s);
}

void pgnIsSpecial(LocalCheck &check, const CheckedPGN &pgn)
{
    const quint32 number = pgn.data.number;
    if (check.isSpecialPGN(number))
        check.error(u"Special PGN %1/0x%2 is handled by the J1939 stack directly and may not be included in the signal "
                    "definitions.\n"_s.arg(dec(number), hex(number)));
}

void pgnWithoutName(LocalCheck &check, const CheckedPGN &pgn)
{
    if (pgn.data.name.trimmed().isEmpty())
        check.warning(WG_NAMING, u"<strong>Warning: </strong>The PGN %1 des not have a name."_s.arg(pgn.data.number));
}

void pgnWithoutSpns(LocalCheck &check, const CheckedPGN &pgn)
{
    const quint32 number = pgn.data.number;
    if (pgn.spns.empty())
        check.error(u"PG (%1/0x%2) does not contain any SPNs."_s.arg(dec(number), hex(number)));
}

void safetyTypeUnassigned(LocalCheck &check, const CheckedPGN &pgn)
{
    const quint32 number = pgn.data.number;
    if (isSafe(check, pgn) && pgn.data.safetytype == unassignedSafetyType)
        check.error(u"PG (%1/0x%2) A safety type needs to be assigned to this PGN."_s.arg(dec(number), hex(number)));
}

void safetyTypeNeedsFd(LocalCheck &check, const CheckedPGN &pgn)
{
    const quint32 number = pgn.data.number;
    const SafetyType *type = safetyType(pgn.data.safetytype);
    if (isSafe(check, pgn) && type && type->frameBits > check.settings().frameBits())
        check.error(
            u"PG (%1/0x%2) This safety type is not supported with classical CAN."_s.arg(dec(number), hex(number)));
}

/// Safety data is packed from variables of the application.
void sdmWithManaged(LocalCheck &check, const CheckedPGN &pgn)
{
    const quint32 number = pgn.data.number;
    const auto isManaged = [](const CheckedSignal &spn) { return spn.data.implementation != Implementation::Variable; };
    if (isSDM(check, pgn) && std::ranges::any_of(pgn.spns, isManaged))
        check.error(
            u"PG (%1/0x%2) transmitted as SDM may not contain managed variables."_s.arg(dec(number), hex(number)));
}

void sdmTypeUnsupported(LocalCheck &check, const CheckedPGN &pgn)
{
    const quint32 number = pgn.data.number;
    const auto isUnsupported = [](const CheckedSignal &spn) { return !isSafetyDataType(spn.data.datatype); };
    if (isSDM(check, pgn) && std::ranges::any_of(pgn.spns, isUnsupported))
        check.error(u"PG (%1/0x%2) contains unsuppported data types."_s.arg(dec(number), hex(number)));
}

/// The header messages come with the support of safety data.
void sdmWithoutShm(LocalCheck &check, const CheckedPGN &pgn)
{
    const quint32 number = pgn.data.number;
    if (isMeantAsSDM(pgn) && !check.settings().safetySupport)
        check.warning(
            WG_CONFIG,
            u"<strong>Warning: </strong>PG (%1/0x%2) shall be transmitted as SDM but SHM support is not activated."_s
                .arg(dec(number), hex(number)));
}

void sdmTooLong(LocalCheck &check, const CheckedPGN &pgn)
{
    const quint32 number = pgn.data.number;
    if (isSDM(check, pgn) && pgn.bits > classicalFrameBits)
        check.error(u"PG (%1/0x%2) transmitted as SDM may not exceed 64 bit."_s.arg(dec(number), hex(number)));
}

void transportMissing(Check &check, const CheckedPGN & /*pgn*/)
{
    if (!isJ1939OnForLine(check, u"bamsupport"_s) && !isJ1939OnForLine(check, u"cmdtsupport"_s))
        check.error(u"Neither BAM nor TP.CMDT supported but PGNs with length > 64 bit defined."_s);
}

void transportWithoutPackets(Check &check)
{
    if (isJ1939OnForLine(check, u"cmdtsupport"_s) && !isJ1939OnForLine(check, u"cmdtpackets"_s))
        check.error(u"CMDT packet count should not be 0 in J1939 configuration."_s);
}

void spnWithoutVariable(LocalCheck &check, const CheckedSignal &signal)
{
    const StoreRecords::SPN &spn = signal.data;
    if (spn.implementation == Implementation::Variable && spn.varname.trimmed().isEmpty())
        check.error(u"The SPN %1 in PGN %2 needs a variable name."_s.arg(dec(spn.spnnumber), dec(spn.pgnnumber)));
}

void spnWithoutName(LocalCheck &check, const CheckedSignal &signal)
{
    const StoreRecords::SPN &spn = signal.data;
    if (spn.name.trimmed().isEmpty())
        check.warning(WG_NAMING, u"<strong>Warning: </strong>The SPN %1 in PGN %2 needs a name."_s.arg(
                                     dec(spn.spnnumber), dec(spn.pgnnumber)));
}

void spnNameWithDigit(LocalCheck &check, const CheckedSignal &signal)
{
    const StoreRecords::SPN &spn = signal.data;
    const QString name = spn.name.trimmed();
    if (!name.isEmpty() && name.front().isDigit())
        check.warning(WG_NAMING,
                      u"<strong>Warning: </strong>The name of SPN %1 in PGN %2 should not start with a number."_s.arg(
                          dec(spn.spnnumber), dec(spn.pgnnumber)));
}

void spnOutOfOrder(LocalCheck &check, const CheckedSignal &signal)
{
    const StoreRecords::SPN &spn = signal.data;
    if (!signal.ascends)
        check.error(
            u"The SPN %1 in PGN %2: position not in ascending order."_s.arg(dec(spn.spnnumber), dec(spn.pgnnumber)));
}

void spnOverlaps(LocalCheck &check, const CheckedSignal &signal)
{
    const StoreRecords::SPN &spn = signal.data;
    if (signal.overlapsEarlier)
        check.warning(
            WG_LAYOUT,
            u"<strong>Warning: </strong>SPN %1 in PGN %2 overlaps in bit position with another SPN in the same PGN."_s
                .arg(dec(spn.spnnumber), dec(spn.pgnnumber)));
}

void spnVariableUsedTwice(VariableCheck &check, const CheckedSignal &signal)
{
    const StoreRecords::SPN &spn = signal.data;
    const CheckedSignal *first = check.firstSpnWith(spn.varname);
    if (first && first != &signal)
        check.warning(
            WG_NAMING,
            u"<strong>Warning: </strong>SPN %1 in PGN %2: variable name '%3' is already used by SPN %4 in PGN %5."_s
                .arg(dec(spn.spnnumber), dec(spn.pgnnumber), spn.varname, dec(first->data.spnnumber),
                     dec(first->data.pgnnumber)));
}

} // namespace

std::span<const LineRule> RuleLists::j1939()
{
    static const LineRule rules[] = {
        rule("sortedCobList"_L1, sortedCobList),
        rule("groupFilter"_L1, groupFilter),
        rule("dynamicWithoutCobs"_L1, dynamicWithoutCobs),
        unset("identityNumberUnset"_L1, u"identitynumber"_s,
              u"Identity number not defined in J1939 configuration tab for line %1."_s),
        unset("manufacturerUnset"_L1, u"manufacturercode"_s,
              u"Manufacturer code not defined in J1939 configuration tab for line %1."_s),
        rule("manufacturerIsNorvane"_L1, manufacturerIsNorvane),
        unset("ecuInstanceUnset"_L1, u"ecuinstance"_s,
              u"ECU instance not defined in J1939 configuration tab for line %1."_s),
        unset("functionInstanceUnset"_L1, u"functioninstance"_s,
              u"Function instance not defined in J1939 configuration tab for line %1"_s),
        unset("functionUnset"_L1, u"function"_s, u"Function not defined in J1939 configuration tab for line %1."_s),
        unset("vehicleSystemUnset"_L1, u"vehiclesystem"_s,
              u"Vehicle system not defined in J1939 configuration tab for line %1."_s),
        unset("vehicleInstanceUnset"_L1, u"vehicleinstance"_s,
              u"Vehicle instance not defined in J1939 configuration tab for line %1."_s),
        unset("industryGroupUnset"_L1, u"industrygroup"_s,
              u"Industry Group not defined in J1939 configuration tab for line %1."_s),
        unset("addressUnset"_L1, u"startaddress"_s,
              u"An address needs to defined in the J1939 configuration for line %1."_s),
        rule("pgnIsSpecial"_L1, eachPGN, pgnIsSpecial),
        rule("pgnWithoutName"_L1, eachPGN, pgnWithoutName).inNewPass(),
        rule("pgnWithoutSpns"_L1, eachPGN, pgnWithoutSpns),
        rule("safetyTypeUnassigned"_L1, eachPGN, safetyTypeUnassigned),
        rule("safetyTypeNeedsFd"_L1, eachPGN, safetyTypeNeedsFd),
        rule("sdmWithManaged"_L1, eachPGN, sdmWithManaged),
        rule("sdmTypeUnsupported"_L1, eachPGN, sdmTypeUnsupported),
        rule("sdmWithoutShm"_L1, eachPGN, sdmWithoutShm),
        rule("sdmTooLong"_L1, eachPGN, sdmTooLong),
        rule("transportMissing"_L1, firstWhere<Check, CheckedPGN, eachPGN, isLongerThanFrame>, transportMissing),
        rule("transportWithoutPackets"_L1, transportWithoutPackets),
        rule("spnWithoutVariable"_L1, eachPGN, itsSPNs, spnWithoutVariable),
        rule("spnWithoutName"_L1, eachPGN, itsSPNs, spnWithoutName),
        rule("spnNameWithDigit"_L1, eachPGN, itsSPNs, spnNameWithDigit),
        rule("spnOutOfOrder"_L1, eachPGN, itsSPNs, spnOutOfOrder),
        rule("spnOverlaps"_L1, eachPGN, itsSPNs, spnOverlaps),
        rule("spnVariableUsedTwice"_L1, eachPGN, itsSPNs, spnVariableUsedTwice),
    };
    return rules;
}
