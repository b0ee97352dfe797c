// Rules of a CANopen line's settings: whether the installed stack fits, the node-id, and lists with an entry per line.

#include "check/line/storevalue.h"
#include "check/line/versionreader.h"
#include "check/rules/rulelists.h"
#include "store/lineprotocols.h"
#include "store/objectdatabase.h"

#include <QCoreApplication>
#include <QDir>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

const QString featureFiles = u"*_featureinfo_*.xml"_s;

QString stackPath(Check &check)
{
    return check.store().getMiscSetting(u"costackpath"_s);
}

/// A relative path starts at the output folder. One that does not exist stays as it is written, but absolute.
QDir stackFolder(Check &check)
{
    const QString path = QDir::cleanPath(QDir(check.outputFolder()).absoluteFilePath(stackPath(check)));
    const QString canonical = QDir(path).canonicalPath();
    return QDir(canonical.isEmpty() ? path : canonical);
}

/// The version of this tool as a stack names it: without its patch level, "4.3" of "4.3.3".
QString comparableToolVersion()
{
    QString version = QCoreApplication::applicationVersion();
    switch (version.count(u'.')) {
    case 2:
        return version.first(version.lastIndexOf(u'.'));
    case 3:
        return version.first(version.lastIndexOf(u'.') - 2);
    default:
        return version;
    }
}

/// Tells of each feature file in the stack's folder which version of this tool the stack requires.
void eachRequiredVersion(Check &check, const Visit<QString> &visit)
{
    if (stackPath(check).isEmpty())
        return;
    const QDir folder = stackFolder(check);
    for (const QString &name : folder.entryList({featureFiles}, QDir::Files)) {
        VersionReader reader;
        reader.setFile(folder.filePath(name));
        QString version;
        reader.requiredToolVersion(version);
        visit(version.trimmed());
    }
}

/// False for a comma list that lacks the entry of a line of the project. A list of blanks alone is not set.
bool hasEntryPerLine(Check &check, const QString &key)
{
    const QStringList entries = check.store().getGeneralSetting(key).split(u',');
    const auto isBlank = [](const QString &entry) { return entry.trimmed().isEmpty(); };
    if (entries.size() < 2 || std::ranges::all_of(entries, isBlank))
        return true;
    return std::ranges::none_of(check.store().getNodeList(), [&](quint8 line) {
        return line < firstLineWithoutProtocol && (line >= entries.size() || isBlank(entries.at(line)));
    });
}

QString nodeIdFunction(Check &check)
{
    return check.store().getGeneralSetting(u"co_node_id_fct"_s, check.line().number());
}

void stackPathUnset(Check &check)
{
    if (!stackPath(check).isEmpty())
        return;
    check.hint(WG_TOOLCHAIN,
               u"Info: Path to protocol stack not specified. Cannot check if generated code fits to installed "
               "stack/framework."_s);
    check.hint(WG_TOOLCHAIN, u"Specify path to protocol stack at Options -> Settings."_s);
}

void stackWithoutFeatureFile(Check &check)
{
    if (stackPath(check).isEmpty())
        return;
    const QDir folder = stackFolder(check);
    if (folder.entryList({featureFiles}, QDir::Files).isEmpty())
        check.hint(
            WG_TOOLCHAIN,
            u"Info: No *_featureinfo_*.xml file found in protocol stack folder %1. Cannot check if generated code "
            "fits to installed stack/framework."_s.arg(folder.path()));
}

void stackNeedsOlderTool(Check &check, const QString &required)
{
    if (required != comparableToolVersion() && required == "0.0"_L1)
        check.redError(
            u"Version of installed stack does not fit. It requires an older version of the tool. Cannot generate "
            "files."_s);
}

void stackNeedsOtherTool(Check &check, const QString &required)
{
    const QString own = comparableToolVersion();
    if (required != own && required != "0.0"_L1)
        check.redError(
            u"Version of installed stack does not fit. It requires tool version %1. Cannot generate files. This is "
            "version %2."_s.arg(required, own));
}

void nodeIdUnset(Check &check)
{
    const quint8 line = check.line().number();
    if (check.store().getGeneralSetting(u"co_node_id"_s, line).trimmed().isEmpty() &&
        nodeIdFunction(check).trimmed().isEmpty())
        check.error(
            u"CANopen basic Stack Settings: No Node-Id specified for line %1: Specify a number between 1 and 127, or "
            "255 for LSS or a function name like e.g. readDipSwitch in the line below."_s.arg(line));
}

void nodeIdFunctionOpens(Check &check)
{
    if (nodeIdFunction(check).contains(u'('))
        check.error(u"CANopen basic Stack Settings: The name of the NodeId function may not include a (."_s);
}

void nodeIdFunctionCloses(Check &check)
{
    if (nodeIdFunction(check).contains(u')'))
        check.error(u"CANopen basic Stack Settings: The name of the NodeId function may not include a )."_s);
}

void receiveBufferList(Check &check)
{
    if (!hasEntryPerLine(check, u"receivebuffersize"_s))
        check.error(u"Common Settings: CAN receive buffer size must be specified individually for each line."_s);
}

void transmitBufferList(Check &check)
{
    if (!hasEntryPerLine(check, u"transmitbuffersize"_s))
        check.error(u"Common Settings: CAN transmit buffer size must be specified individually for each line."_s);
}

/// Opening a project moves such a list elsewhere, so that only a modifier file brings one here.
void masterList(Check &check)
{
    if (!hasEntryPerLine(check, u"co_ml_ms"_s))
        check.error(
            u"General Settings: The ML master/slave settings size must be specified individually for each line. (e.g "
            "0,1)"_s);
}

} // namespace

std::span<const LineRule> RuleLists::lines()
{
    static const LineRule rules[] = {
        rule("stackPathUnset"_L1, stackPathUnset),
        rule("stackWithoutFeatureFile"_L1, stackWithoutFeatureFile),
        rule("stackNeedsOlderTool"_L1, eachRequiredVersion, stackNeedsOlderTool),
        rule("stackNeedsOtherTool"_L1, eachRequiredVersion, stackNeedsOtherTool),
        rule("nodeIdUnset"_L1, nodeIdUnset),
        rule("nodeIdFunctionOpens"_L1, nodeIdFunctionOpens),
        rule("nodeIdFunctionCloses"_L1, nodeIdFunctionCloses),
        rule("receiveBufferList"_L1, receiveBufferList),
        rule("transmitBufferList"_L1, transmitBufferList),
        rule("masterList"_L1, masterList),
    };
    return rules;
}
