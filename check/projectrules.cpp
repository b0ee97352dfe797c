// Rules of the project as a whole: UDS, what an update of the tool asks for, and settings of no single line.

#include "check/modelchecker.h"
#include "check/storevalue.h"
#include "store/lineprotocols.h"
#include "store/objectdatabase.h"
#include "store/settings.h"

#include <QCoreApplication>
#include <QSet>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr quint8 udsLines = 32; ///< lines from here on have no UDS

constexpr QLatin1StringView udsFunctionKeys[] = {
    "uds_fct_check_req_session"_L1, "uds_fct_clear_dtc_info"_L1,    "uds_fct_dtc_info"_L1,
    "uds_fct_id_data_transmit"_L1,  "uds_fct_mem_data_transmit"_L1, "uds_fct_sec_access_req_key"_L1,
    "uds_fct_req_commgt"_L1,        "uds_fct_authent_req"_L1,       "uds_fct_ioctrl"_L1,
    "uds_fct_routine_ctrl"_L1,      "uds_fct_data_transfer"_L1,     "uds_fct_generic"_L1,
};

void eachUdsLine(ModelChecker &checker, const CheckSubject & /*outer*/, const CheckVisit &visit)
{
    for (const quint8 line : checker.store().getNodeList()) {
        if (line < udsLines)
            visit({.line = line});
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
void eachRepeatedUdsFunction(ModelChecker &checker, const CheckSubject & /*outer*/, const CheckVisit &visit)
{
    const QStringList names = udsFunctions(checker.store());
    QSet<QString> told;
    for (const QString &name : names) {
        if (names.count(name) > 1 && !told.contains(name)) {
            told.insert(name);
            visit({.text = &name});
        }
    }
}

void eachNumericSetting(ModelChecker &checker, const CheckSubject & /*outer*/, const CheckVisit &visit)
{
    visitNumericSettings(checker.store(), [&visit](const CheckedSetting &setting) { visit({.setting = &setting}); });
}

bool isUdsActive(ObjectDataBase &store)
{
    const Settings settings(store);
    return std::ranges::any_of(store.getNodeList(), [&settings](quint8 line) {
        return line < udsLines &&
               (settings.isOn(u"uds_server_active"_s, line) || settings.isOn(u"uds_client_cnt"_s, line));
    });
}

bool isStaticUds(ModelChecker &checker)
{
    return Settings(checker.store()).isOn(u"uds_static_indication"_s);
}

/// Minor version of a tool of major version 3 that saw the project before this one; 99 for any other.
int minorVersionBefore(ModelChecker &checker)
{
    const QStringList version = checker.store().getMiscSetting(u"PreviousToolVersion"_s).split(u'.');
    return version.value(0) == "3"_L1 ? version.value(1).toInt() : 99;
}

/// The tool for CANopen alone comes with a stack that maps its objects by itself.
bool isCANopenTool()
{
    return QCoreApplication::applicationName() == "CANopen NodeComposer"_L1;
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
bool isOnForLine(ObjectDataBase &store, const QString &feature, const QString &perLine, quint8 line)
{
    const Settings settings(store);
    return settings.isOn(feature, line) && (settings.text(perLine).trimmed().isEmpty() || settings.isOn(perLine, line));
}

void udsServerAndClient(ModelChecker &checker, const CheckSubject &subject)
{
    ObjectDataBase &store = checker.store();
    if (isOnForLine(store, u"udsserver_supported"_s, u"uds_server_active"_s, *subject.line) &&
        isOnForLine(store, u"udsclient_supported"_s, u"uds_client_cnt"_s, *subject.line))
        checker.reportError(u"<strong><font color='red'>Error: </font></strong>UDS server and UDS client together on "
                            "one line is not possible."_s);
}

void staticUdsWithoutUds(ModelChecker &checker, const CheckSubject & /*subject*/)
{
    if (isStaticUds(checker) && !isUdsActive(checker.store()))
        checker.reportWarning(WG_CONFIG, u"<strong>Warning: </strong>Static UDS indication is enabled, but neither the "
                                         "UDS server nor a UDS client is active. Disable it in UDS Settings -> Static "
                                         "Indication or activate UDS."_s);
}

void staticUdsWithoutFunction(ModelChecker &checker, const CheckSubject & /*subject*/)
{
    if (isStaticUds(checker) && isUdsActive(checker.store()) && udsFunctions(checker.store()).isEmpty())
        checker.reportWarning(WG_CONFIG, u"<strong>Warning: </strong>Static UDS indication is enabled but no service "
                                         "has a function name; no callback will be wired up."_s);
}

void udsFunctionUsedTwice(ModelChecker &checker, const CheckSubject &subject)
{
    if (isStaticUds(checker))
        checker.reportError(u"<strong><font color='red'>Error: </font></strong>The function name '%1' is used for more "
                            "than one UDS static indication service; each service needs its own callback (different "
                            "signature)."_s.arg(*subject.text));
}

void sourcesSince37(ModelChecker &checker, const CheckSubject & /*subject*/)
{
    if (minorVersionBefore(checker) < 7)
        checker.reportHint(WG_TOOLCHAIN,
                           isCANopenTool()
                               ? u"<strong>Hint: </strong>Add <font color='red'>co_common.c and co_memcpy.c</font> to "
                                 "your project or Makefile."_s
                               : u"<strong>Hint: </strong>Add <font color='red'>co_common.c, co_memcpy.c and "
                                 "co_mapping.c</font> to your project or Makefile."_s);
}

void sourcesSince39(ModelChecker &checker, const CheckSubject & /*subject*/)
{
    if (const int minor = minorVersionBefore(checker); minor == 7 || minor == 8)
        checker.reportHint(WG_TOOLCHAIN,
                           isCANopenTool()
                               ? u"<strong>Hint: </strong>Add <font color='red'>co_memcpy.c</font> to your project or "
                                 "Makefile."_s
                               : u"<strong>Hint: </strong>Add <font color='red'>co_memcpy.c and co_mapping.c</font> to "
                                 "your project or Makefile."_s);
}

void udsSourceSince39(ModelChecker &checker, const CheckSubject & /*subject*/)
{
    if (minorVersionBefore(checker) <= 8 && isUdsActive(checker.store()))
        checker.reportHint(WG_TOOLCHAIN, u"<strong>Hint: </strong>Add <font color='red'>uds_init.c</font> to your "
                                         "project or Makefile."_s);
}

void sdoBlockTooLarge(ModelChecker &checker, const CheckSubject & /*subject*/)
{
    if (plainValue(Settings(checker.store()).text(u"sdo_blocktransfer_block_size"_s)).value_or(0) > 127)
        checker.reportError(u"<strong><font color='red'>Error: </font></strong>CANopen SDO block size may not exceed "
                            "127."_s);
}

void timerIntervalUnset(ModelChecker &checker, const CheckSubject & /*subject*/)
{
    if (checker.store().getGeneralSetting(u"co_timer_interval"_s).trimmed().isEmpty())
        checker.reportError(u"<strong><font color='red'>Error: </font></strong>Timer interval not set in Common "
                            "Settings -> Hardware/Target."_s);
}

/// Told once, of whichever CANopen line it is.
void masterOfSeveralProtocols(ModelChecker &checker, const CheckSubject & /*subject*/)
{
    ObjectDataBase &store = checker.store();
    const Settings settings(store);
    const bool someMaster = std::ranges::any_of(store.getNodeList(), [&](quint8 line) {
        return line < firstLineWithoutProtocol && LineProtocols::ofLine(store, line).canOpen &&
               settings.isOn(u"nmtmaster"_s, line);
    });
    if (someMaster && hasSeveralProtocols(store))
        checker.reportError(u"<strong><font color='red'>Error: </font></strong>The CANopen setting 'NMT Master or "
                            "Slave' is not supported in multi-protocol projects."_s);
}

void settingIsNoNumber(ModelChecker &checker, const CheckSubject &subject)
{
    bool isNumber = false;
    const QString &value = subject.setting->value;
    value.toLongLong(&isNumber, 0);
    if (!isNumber)
        value.toLongLong(&isNumber, 10); // "08" is a number, but not an octal one
    if (!isNumber)
        checker.reportError(
            u"<strong>Error: </strong>\"%1\" has non-numeric value \"%2\"."_s.arg(subject.setting->label, value));
}

} // namespace

std::span<const CheckRule> projectRules()
{
    static const CheckRule rules[] = {
        {"udsServerAndClient"_L1, udsServerAndClient, eachUdsLine},
        {"staticUdsWithoutUds"_L1, staticUdsWithoutUds},
        {"staticUdsWithoutFunction"_L1, staticUdsWithoutFunction},
        {"udsFunctionUsedTwice"_L1, udsFunctionUsedTwice, eachRepeatedUdsFunction},
        {"sourcesSince37"_L1, sourcesSince37},
        {"sourcesSince39"_L1, sourcesSince39},
        {"udsSourceSince39"_L1, udsSourceSince39},
        {"sdoBlockTooLarge"_L1, sdoBlockTooLarge},
        {"timerIntervalUnset"_L1, timerIntervalUnset},
        {"masterOfSeveralProtocols"_L1, masterOfSeveralProtocols},
        {"settingIsNoNumber"_L1, settingIsNoNumber, eachNumericSetting},
    };
    return rules;
}
