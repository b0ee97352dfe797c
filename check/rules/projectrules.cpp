// Rules of the project as a whole: UDS, what an update of the tool asks for, and settings of no single line.

#include "check/line/numericsettings.h"
#include "check/line/storevalue.h"
#include "check/rules/rulelists.h"
#include "store/edition.h"
#include "store/lineprotocols.h"
#include "store/objectdatabase.h"
#include "texttools/numbertext.h"

#include <QSet>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr QLatin1StringView udsFunctionKeys[] = {
    "uds_fct_check_req_session"_L1, "uds_fct_clear_dtc_info"_L1,    "uds_fct_dtc_info"_L1,
    "uds_fct_id_data_transmit"_L1,  "uds_fct_mem_data_transmit"_L1, "uds_fct_sec_access_req_key"_L1,
    "uds_fct_req_commgt"_L1,        "uds_fct_authent_req"_L1,       "uds_fct_ioctrl"_L1,
    "uds_fct_routine_ctrl"_L1,      "uds_fct_data_transfer"_L1,     "uds_fct_generic"_L1,
};

void eachUdsLine(ProjectCheck &check, const Visit<quint8> &visit)
{
    for (const quint8 line : check.store().getNodeList()) {
        if (line < firstLineBeyondStack)
            visit(line);
    }
}

QStringList udsFunctions(ObjectDataBase &store)
{
    QStringList names;
    for (const QLatin1StringView key : udsFunctionKeys) {
        if (const QString name = store.getGeneralSetting(key).trimmed(); !name.isEmpty())
            names.append(name);
    }
    return names;
}

/// Names of functions that stand for more than one service, each once.
void eachRepeatedUdsFunction(ProjectCheck &check, const Visit<QString> &visit)
{
    const QStringList names = udsFunctions(check.store());
    QSet<QString> told;
    for (const QString &name : names) {
        if (names.count(name) > 1 && !told.contains(name)) {
            told.insert(name);
            visit(name);
        }
    }
}

void eachNumericSetting(ProjectCheck &check, const Visit<CheckedSetting> &visit)
{
    visitNumericSettings(check.store(), visit);
}

bool isUdsActive(ProjectCheck &check)
{
    return std::ranges::any_of(check.store().getNodeList(), [&check](quint8 line) {
        return line < firstLineBeyondStack &&
               (check.general().isOn(u"uds_server_active"_s, line) || check.general().isOn(u"uds_client_cnt"_s, line));
    });
}

bool isStaticUds(ProjectCheck &check)
{
    return check.general().isOn(u"uds_static_indication"_s);
}

/// Minor version of a tool of major version 3 that saw the project before this one; 99 for any other.
int minorVersionBefore(ProjectCheck &check)
{
    const QStringList version = check.store().getMiscSetting(u"PreviousToolVersion"_s).split(u'.');
    return version.value(0) == "3"_L1 ? version.value(1).toInt() : 99;
}

/// The tool for CANopen alone comes with a stack that maps its objects by itself.
bool isCANopenTool()
{
    return currentEdition() == Edition::CanOpen;
}

bool hasSeveralProtocols(ObjectDataBase &store)
{
    LineProtocols all;
    for (const quint8 line : store.getNodeList()) {
        const LineProtocols own =
            line < firstLineWithoutProtocol ? LineProtocols::ofLine(store, line) : LineProtocols();
        all = {all.canOpen || own.canOpen, all.j1939 || own.j1939, all.rawCan || own.rawCan};
    }
    return all.combined();
}

/// A feature counts for a line that has it, and for every line as long as none is named.
bool isOnForLine(ProjectCheck &check, const QString &feature, const QString &perLine, quint8 line)
{
    const Settings &general = check.general();
    return general.isOn(feature, line) && (general.text(perLine).trimmed().isEmpty() || general.isOn(perLine, line));
}

void udsServerAndClient(ProjectCheck &check, const quint8 &line)
{
    if (isOnForLine(check, u"udsserver_supported"_s, u"uds_server_active"_s, line) &&
        isOnForLine(check, u"udsclient_supported"_s, u"uds_client_cnt"_s, line))
        check.redError(u"UDS server and UDS client together on one line is not possible."_s);
}

void staticUdsWithoutUds(ProjectCheck &check)
{
    if (isStaticUds(check) && !isUdsActive(check))
        check.warning(
            WG_CONFIG,
            u"<strong>Warning: </strong>Static UDS indication is enabled, but neither the UDS server nor a UDS "
            "client is active. Disable it in UDS Settings -> Static Indication or activate UDS."_s);
}

void staticUdsWithoutFunction(ProjectCheck &check)
{
    if (isStaticUds(check) && isUdsActive(check) && udsFunctions(check.store()).isEmpty())
        check.warning(
            WG_CONFIG,
            u"<strong>Warning: </strong>Static UDS indication is enabled but no service has a function name; no "
            "callback will be wired up."_s);
}

void udsFunctionUsedTwice(ProjectCheck &check, const QString &text)
{
    if (isStaticUds(check))
        check.redError(
            u"The function name '%1' is used for more than one UDS static indication service; each service needs its "
            "own callback (different signature)."_s.arg(text));
}

void sourcesSince37(ProjectCheck &check)
{
    if (minorVersionBefore(check) < 7)
        check.hint(
            WG_TOOLCHAIN,
            isCANopenTool()
                ? u"<strong>Hint: </strong>Add <font color='red'>co_common.c and co_memcpy.c</font> to your project "
                  "or Makefile."_s
                : u"<strong>Hint: </strong>Add <font color='red'>co_common.c, co_memcpy.c and co_mapping.c</font> to "
                  "your project or Makefile."_s);
}

void sourcesSince39(ProjectCheck &check)
{
    if (const int minor = minorVersionBefore(check); minor == 7 || minor == 8)
        check.hint(
            WG_TOOLCHAIN,
            isCANopenTool()
                ? u"<strong>Hint: </strong>Add <font color='red'>co_memcpy.c</font> to your project or Makefile."_s
                : u"<strong>Hint: </strong>Add <font color='red'>co_memcpy.c and co_mapping.c</font> to your project "
                  "or Makefile."_s);
}

void udsSourceSince39(ProjectCheck &check)
{
    if (minorVersionBefore(check) <= 8 && isUdsActive(check))
        check.hint(WG_TOOLCHAIN,
                   u"<strong>Hint: </strong>Add <font color='red'>uds_init.c</font> to your project or Makefile."_s);
}

void sdoBlockTooLarge(ProjectCheck &check)
{
    if (plainValue(check.general().text(u"sdo_blocktransfer_block_size"_s)).value_or(0) > 127)
        check.redError(u"CANopen SDO block size may not exceed 127."_s);
}

void timerIntervalUnset(ProjectCheck &check)
{
    if (check.store().getGeneralSetting(u"co_timer_interval"_s).trimmed().isEmpty())
        check.redError(u"Timer interval not set in Common Settings -> Hardware/Target."_s);
}

/// Told once, of whichever CANopen line it is.
void masterOfSeveralProtocols(ProjectCheck &check)
{
    ObjectDataBase &store = check.store();
    const bool someMaster = std::ranges::any_of(store.getNodeList(), [&](quint8 line) {
        return line < firstLineWithoutProtocol && LineProtocols::ofLine(store, line).canOpen &&
               check.general().isOn(u"nmtmaster"_s, line);
    });
    if (someMaster && hasSeveralProtocols(store))
        check.redError(u"The CANopen setting 'NMT Master or Slave' is not supported in multi-protocol projects."_s);
}

void settingIsNoNumber(ProjectCheck &check, const CheckedSetting &setting)
{
    constexpr int decimal = 10; // "08" is a number, but not an octal one
    const QString &value = setting.value;
    if (!NumberText::signedByPrefix(value) && !NumberText::signedInBase(value, decimal))
        check.error(u"\"%1\" has non-numeric value \"%2\"."_s.arg(setting.label, value));
}

} // namespace

std::span<const ProjectRule> RuleLists::project()
{
    static const ProjectRule rules[] = {
        rule("udsServerAndClient"_L1, eachUdsLine, udsServerAndClient),
        rule("staticUdsWithoutUds"_L1, staticUdsWithoutUds),
        rule("staticUdsWithoutFunction"_L1, staticUdsWithoutFunction),
        rule("udsFunctionUsedTwice"_L1, eachRepeatedUdsFunction, udsFunctionUsedTwice),
        rule("sourcesSince37"_L1, sourcesSince37),
        rule("sourcesSince39"_L1, sourcesSince39),
        rule("udsSourceSince39"_L1, udsSourceSince39),
        rule("sdoBlockTooLarge"_L1, sdoBlockTooLarge),
        rule("timerIntervalUnset"_L1, timerIntervalUnset),
        rule("masterOfSeveralProtocols"_L1, masterOfSeveralProtocols),
        rule("settingIsNoNumber"_L1, eachNumericSetting, settingIsNoNumber),
    };
    return rules;
}
