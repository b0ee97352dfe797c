// Rules of a J1939 line: its settings, its parameter groups with their safety, and their signals.

#include "check/checktext.h"
#include "check/modelchecker.h"
#include "check/safetytypes.h"
#include "nodedict/canopendatatype.h"
#include "store/objectdatabase.h"
#include "store/settings.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr quint8 applicationVariable = 2;
constexpr quint32 classicalFrameBits = 64;

bool isOnForLine(ModelChecker &checker, const QString &j1939Setting)
{
    return Settings(checker.store(), Settings::Table::J1939).isOn(j1939Setting, checker.line().number());
}

/// A rule that finds a setting of the line without a value.
CheckRule unset(QLatin1StringView name, const QString &key, const QString &message)
{
    return {name, [key, message](ModelChecker &checker, const CheckSubject & /*subject*/) {
                const quint8 line = checker.line().number();
                if (checker.store().getJ1939Setting(key, line).trimmed().isEmpty())
                    checker.reportError(message.arg(line));
            }};
}

/// True for a PGN with safety data, in a project that supports it.
bool isSafe(ModelChecker &checker, const CheckedPGN &pgn)
{
    return pgn.data.issafe && checker.line().settings().safetySupport;
}

/// True for a PGN that the project wants to be sent as SDM, whether or not it supports that.
bool isMeantAsSDM(const CheckedPGN &pgn)
{
    const SafetyType *type = safetyType(pgn.data.safetytype);
    return pgn.data.issafe && type && type->isSDM;
}

bool isSDM(ModelChecker &checker, const CheckedPGN &pgn)
{
    return isMeantAsSDM(pgn) && checker.line().settings().safetySupport;
}

bool isLongerThanFrame(ModelChecker & /*checker*/, const CheckSubject &subject)
{
    return subject.pgn->bits > classicalFrameBits;
}

// ---- Settings

void sortedCobList(ModelChecker &checker, const CheckSubject & /*subject*/)
{
    if (Settings(checker.store()).isOn(u"sorted_coblist"_s))
        checker.reportError(u"<strong>Error: </strong>Sorted COB list may not used with J1939 projects."_s);
}

/// Opening a project switches the filter off, so that only a modifier file brings one here.
void groupFilter(ModelChecker &checker, const CheckSubject & /*subject*/)
{
    if (Settings(checker.store()).isOn(u"drv_group_filter"_s))
        checker.reportWarning(
            WG_CONFIG, u"<strong>Warning: </strong>Group filter is only useful for CANopen or mixed projects."_s);
}

void dynamicWithoutCobs(ModelChecker &checker, const CheckSubject & /*subject*/)
{
    if (isOnForLine(checker, u"dynsupport"_s) &&
        checker.store().getGeneralSetting(u"additional_cob_count"_s).trimmed().isEmpty())
        checker.reportError(u"<strong>Error: </strong>Additional COBs need to be specific with dynamic PGN support."_s);
}

void manufacturerIsNorvane(ModelChecker &checker, const CheckSubject & /*subject*/)
{
    constexpr quint32 norvane = 1447;
    if (Settings(checker.store(), Settings::Table::J1939).number(u"manufacturercode"_s, checker.line().number()) ==
        norvane)
        checker.reportWarning(WG_IDENTITY, u"<strong>Warning: The manufacturer code 1447 (Norvane Fieldbus GmbH) may "
                                           "not be used for production. </strong>"_s);
}

// ---- PGNs

void pgnIsSpecial(ModelChecker &checker, const CheckSubject &subject)
{
    const quint32 number = subject.pgn->data.number;
    if (checker.isSpecialPGN(number))
        checker.reportError(u"<strong>Error: </strong>Special PGN %1/0x%2 is handled by the J1939 stack directly and "
                            "may not be included in the signal definitions.\n"_s.arg(dec(number), hex(number)));
}

void pgnWithoutName(ModelChecker &checker, const CheckSubject &subject)
{
    if (subject.pgn->data.name.trimmed().isEmpty())
        checker.reportWarning(
            WG_NAMING, u"<strong>Warning: </strong>The PGN %1 des not have a name."_s.arg(subject.pgn->data.number));
}

void pgnWithoutSpns(ModelChecker &checker, const CheckSubject &subject)
{
    const quint32 number = subject.pgn->data.number;
    if (subject.pgn->spns.empty())
        checker.reportError(
            u"<strong>Error: </strong>PG (%1/0x%2) does not contain any SPNs."_s.arg(dec(number), hex(number)));
}

void safetyTypeUnassigned(ModelChecker &checker, const CheckSubject &subject)
{
    const quint32 number = subject.pgn->data.number;
    if (isSafe(checker, *subject.pgn) && subject.pgn->data.safetytype == unassignedSafetyType)
        checker.reportError(
            u"<strong>Error: </strong>PG (%1/0x%2) A safety type needs to be assigned to this PGN."_s.arg(dec(number),
                                                                                                          hex(number)));
}

void safetyTypeNeedsFd(ModelChecker &checker, const CheckSubject &subject)
{
    const quint32 number = subject.pgn->data.number;
    const SafetyType *type = safetyType(subject.pgn->data.safetytype);
    if (isSafe(checker, *subject.pgn) && type && type->frameBits > checker.line().settings().frameBits())
        checker.reportError(
            u"<strong>Error: </strong>PG (%1/0x%2) This safety type is not supported with classical CAN."_s.arg(
                dec(number), hex(number)));
}

/// Safety data is packed from variables of the application.
void sdmWithManaged(ModelChecker &checker, const CheckSubject &subject)
{
    const quint32 number = subject.pgn->data.number;
    const auto isManaged = [](const CheckedSignal &spn) { return spn.data.implementation != applicationVariable; };
    if (isSDM(checker, *subject.pgn) && std::ranges::any_of(subject.pgn->spns, isManaged))
        checker.reportError(
            u"<strong>Error: </strong>PG (%1/0x%2) transmitted as SDM may not contain managed variables."_s.arg(
                dec(number), hex(number)));
}

void sdmTypeUnsupported(ModelChecker &checker, const CheckSubject &subject)
{
    const quint32 number = subject.pgn->data.number;
    const auto isUnsupported = [](const CheckedSignal &spn) { return !isSafetyDataType(spn.data.datatype); };
    if (isSDM(checker, *subject.pgn) && std::ranges::any_of(subject.pgn->spns, isUnsupported))
        checker.reportError(
            u"<strong>Error: </strong>PG (%1/0x%2) contains unsuppported data types."_s.arg(dec(number), hex(number)));
}

/// The header messages come with the support of safety data.
void sdmWithoutShm(ModelChecker &checker, const CheckSubject &subject)
{
    const quint32 number = subject.pgn->data.number;
    if (isMeantAsSDM(*subject.pgn) && !checker.line().settings().safetySupport)
        checker.reportWarning(
            WG_CONFIG,
            u"<strong>Warning: </strong>PG (%1/0x%2) shall be transmitted as SDM but SHM support is not activated."_s
                .arg(dec(number), hex(number)));
}

void sdmTooLong(ModelChecker &checker, const CheckSubject &subject)
{
    const quint32 number = subject.pgn->data.number;
    if (isSDM(checker, *subject.pgn) && subject.pgn->bits > classicalFrameBits)
        checker.reportError(u"<strong>Error: </strong>PG (%1/0x%2) transmitted as SDM may not exceed 64 bit."_s.arg(
            dec(number), hex(number)));
}

// ---- Transport

void transportMissing(ModelChecker &checker, const CheckSubject & /*subject*/)
{
    if (!isOnForLine(checker, u"bamsupport"_s) && !isOnForLine(checker, u"cmdtsupport"_s))
        checker.reportError(
            u"<strong>Error: </strong>Neither BAM nor TP.CMDT supported but PGNs with length > 64 bit defined."_s);
}

void transportWithoutPackets(ModelChecker &checker, const CheckSubject & /*subject*/)
{
    if (isOnForLine(checker, u"cmdtsupport"_s) && !isOnForLine(checker, u"cmdtpackets"_s))
        checker.reportError(u"<strong>Error: </strong>CMDT packet count should not be 0 in J1939 configuration."_s);
}

// ---- SPNs

void spnWithoutVariable(ModelChecker &checker, const CheckSubject &subject)
{
    const StoreRecords::SPN &spn = subject.signal->data;
    if (spn.implementation == applicationVariable && spn.varname.trimmed().isEmpty())
        checker.reportError(u"<strong>Error: </strong>The SPN %1 in PGN %2 needs a variable name."_s.arg(
            dec(spn.spnnumber), dec(spn.pgnnumber)));
}

void spnWithoutName(ModelChecker &checker, const CheckSubject &subject)
{
    const StoreRecords::SPN &spn = subject.signal->data;
    if (spn.name.trimmed().isEmpty())
        checker.reportWarning(WG_NAMING, u"<strong>Warning: </strong>The SPN %1 in PGN %2 needs a name."_s.arg(
                                             dec(spn.spnnumber), dec(spn.pgnnumber)));
}

void spnNameWithDigit(ModelChecker &checker, const CheckSubject &subject)
{
    const StoreRecords::SPN &spn = subject.signal->data;
    const QString name = spn.name.trimmed();
    if (!name.isEmpty() && name.front().isDigit())
        checker.reportWarning(
            WG_NAMING, u"<strong>Warning: </strong>The name of SPN %1 in PGN %2 should not start with a number."_s.arg(
                           dec(spn.spnnumber), dec(spn.pgnnumber)));
}

void spnOutOfOrder(ModelChecker &checker, const CheckSubject &subject)
{
    const StoreRecords::SPN &spn = subject.signal->data;
    if (!subject.signal->ascends)
        checker.reportError(u"<strong>Error: </strong>The SPN %1 in PGN %2: position not in ascending order."_s.arg(
            dec(spn.spnnumber), dec(spn.pgnnumber)));
}

void spnOverlaps(ModelChecker &checker, const CheckSubject &subject)
{
    const StoreRecords::SPN &spn = subject.signal->data;
    if (subject.signal->overlapsEarlier)
        checker.reportWarning(WG_LAYOUT, u"<strong>Warning: </strong>SPN %1 in PGN %2 overlaps in bit position with "
                                         "another SPN in the same PGN."_s.arg(dec(spn.spnnumber), dec(spn.pgnnumber)));
}

void spnVariableUsedTwice(ModelChecker &checker, const CheckSubject &subject)
{
    const StoreRecords::SPN &spn = subject.signal->data;
    const CheckedSignal *first = checker.line().firstSpnWith(spn.varname);
    if (first && first != subject.signal)
        checker.reportWarning(
            WG_NAMING,
            u"<strong>Warning: </strong>SPN %1 in PGN %2: variable name '%3' is already used by SPN %4 in PGN %5."_s
                .arg(dec(spn.spnnumber), dec(spn.pgnnumber), spn.varname, dec(first->data.spnnumber),
                     dec(first->data.pgnnumber)));
}

} // namespace

std::span<const CheckRule> j1939Rules()
{
    static const CheckRule rules[] = {
        {"sortedCobList"_L1, sortedCobList},
        {"groupFilter"_L1, groupFilter},
        {"dynamicWithoutCobs"_L1, dynamicWithoutCobs},
        unset("identityNumberUnset"_L1, u"identitynumber"_s,
              u"<strong>Error: </strong>Identity number not defined in J1939 configuration tab for line %1."_s),
        unset("manufacturerUnset"_L1, u"manufacturercode"_s,
              u"<strong>Error: </strong>Manufacturer code not defined in J1939 configuration tab for line %1."_s),
        {"manufacturerIsNorvane"_L1, manufacturerIsNorvane},
        unset("ecuInstanceUnset"_L1, u"ecuinstance"_s,
              u"<strong>Error: </strong>ECU instance not defined in J1939 configuration tab for line %1."_s),
        unset("functionInstanceUnset"_L1, u"functioninstance"_s,
              u"<strong>Error: </strong>Function instance not defined in J1939 configuration tab for line %1"_s),
        unset("functionUnset"_L1, u"function"_s,
              u"<strong>Error: </strong>Function not defined in J1939 configuration tab for line %1."_s),
        unset("vehicleSystemUnset"_L1, u"vehiclesystem"_s,
              u"<strong>Error: </strong>Vehicle system not defined in J1939 configuration tab for line %1."_s),
        unset("vehicleInstanceUnset"_L1, u"vehicleinstance"_s,
              u"<strong>Error: </strong>Vehicle instance not defined in J1939 configuration tab for line %1."_s),
        unset("industryGroupUnset"_L1, u"industrygroup"_s,
              u"<strong>Error: </strong>Industry Group not defined in J1939 configuration tab for line %1."_s),
        unset("addressUnset"_L1, u"startaddress"_s,
              u"<strong>Error: </strong>An address needs to defined in the J1939 configuration for line %1."_s),
        {"pgnIsSpecial"_L1, pgnIsSpecial, eachPGN},
        {"pgnWithoutName"_L1, pgnWithoutName, eachPGN, once, true},
        {"pgnWithoutSpns"_L1, pgnWithoutSpns, eachPGN},
        {"safetyTypeUnassigned"_L1, safetyTypeUnassigned, eachPGN},
        {"safetyTypeNeedsFd"_L1, safetyTypeNeedsFd, eachPGN},
        {"sdmWithManaged"_L1, sdmWithManaged, eachPGN},
        {"sdmTypeUnsupported"_L1, sdmTypeUnsupported, eachPGN},
        {"sdmWithoutShm"_L1, sdmWithoutShm, eachPGN},
        {"sdmTooLong"_L1, sdmTooLong, eachPGN},
        {"transportMissing"_L1, transportMissing, firstWhere<eachPGN, isLongerThanFrame>},
        {"transportWithoutPackets"_L1, transportWithoutPackets},
        {"spnWithoutVariable"_L1, spnWithoutVariable, eachPGN, itsSPNs},
        {"spnWithoutName"_L1, spnWithoutName, eachPGN, itsSPNs},
        {"spnNameWithDigit"_L1, spnNameWithDigit, eachPGN, itsSPNs},
        {"spnOutOfOrder"_L1, spnOutOfOrder, eachPGN, itsSPNs},
        {"spnOverlaps"_L1, spnOverlaps, eachPGN, itsSPNs},
        {"spnVariableUsedTwice"_L1, spnVariableUsedTwice, eachPGN, itsSPNs},
    };
    return rules;
}
