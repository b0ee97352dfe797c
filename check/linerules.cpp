// Rules of a CANopen line's settings: whether the installed stack fits, the node-id, and lists with an entry per line.

#include "check/checktext.h"
#include "check/modelchecker.h"
#include "check/storevalue.h"
#include "check/versionreader.h"
#include "store/lineprotocols.h"
#include "store/objectdatabase.h"

#include <QCoreApplication>
#include <QDir>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

const QString featureFiles = u"*_featureinfo_*.xml"_s;

QString stackPath(ModelChecker &checker)
{
    return checker.store().getMiscSetting(u"costackpath"_s);
}

/// A relative path starts at the output folder. One that does not exist stays as it is written, but absolute.
QDir stackFolder(ModelChecker &checker)
{
    const QString path = QDir::cleanPath(QDir(checker.outputFolder()).absoluteFilePath(stackPath(checker)));
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
void eachRequiredVersion(ModelChecker &checker, const CheckSubject & /*outer*/, const CheckVisit &visit)
{
    if (stackPath(checker).isEmpty())
        return;
    const QDir folder = stackFolder(checker);
    for (const QString &name : folder.entryList({featureFiles}, QDir::Files)) {
        VersionReader reader;
        reader.setFile(folder.filePath(name));
        QString version;
        reader.requiredToolVersion(version);
        version = version.trimmed();
        visit({.text = &version});
    }
}

/// False for a comma list that lacks the entry of a line of the project. A list of blanks alone is not set.
bool hasEntryPerLine(ModelChecker &checker, const QString &key)
{
    const QStringList entries = checker.store().getGeneralSetting(key).split(u',');
    const auto isBlank = [](const QString &entry) { return entry.trimmed().isEmpty(); };
    if (entries.size() < 2 || std::ranges::all_of(entries, isBlank))
        return true;
    return std::ranges::none_of(checker.store().getNodeList(), [&](quint8 line) {
        return line < firstLineWithoutProtocol && (line >= entries.size() || isBlank(entries.at(line)));
    });
}

QString nodeIdFunction(ModelChecker &checker)
{
    return checker.store().getGeneralSetting(u"co_node_id_fct"_s, checker.line().number());
}

void stackPathUnset(ModelChecker &checker, const CheckSubject & /*subject*/)
{
    if (!stackPath(checker).isEmpty())
        return;
    checker.reportHint(WG_TOOLCHAIN, u"Info: Path to protocol stack not specified. Cannot check if generated code fits "
                                     "to installed stack/framework."_s);
    checker.reportHint(WG_TOOLCHAIN, u"Specify path to protocol stack at Options -> Settings."_s);
}

void stackWithoutFeatureFile(ModelChecker &checker, const CheckSubject & /*subject*/)
{
    if (stackPath(checker).isEmpty())
        return;
    const QDir folder = stackFolder(checker);
    if (folder.entryList({featureFiles}, QDir::Files).isEmpty())
        checker.reportHint(WG_TOOLCHAIN,
                           u"Info: No *_featureinfo_*.xml file found in protocol stack folder %1. Cannot check if "
                           "generated code fits to installed stack/framework."_s.arg(folder.path()));
}

void stackNeedsOlderTool(ModelChecker &checker, const CheckSubject &subject)
{
    if (*subject.text != comparableToolVersion() && *subject.text == "0.0"_L1)
        checker.reportError(
            u"<strong><font color='red'>Error: </font></strong>Version of installed stack does not fit. "
            "It requires an older version of the tool. Cannot generate files."_s);
}

void stackNeedsOtherTool(ModelChecker &checker, const CheckSubject &subject)
{
    const QString own = comparableToolVersion();
    if (*subject.text != own && *subject.text != "0.0"_L1)
        checker.reportError(
            u"<strong><font color='red'>Error: </font></strong>Version of installed stack does not fit. "
            "It requires tool version %1. Cannot generate files. This is version %2."_s.arg(*subject.text, own));
}

void nodeIdUnset(ModelChecker &checker, const CheckSubject & /*subject*/)
{
    const quint8 line = checker.line().number();
    if (checker.store().getGeneralSetting(u"co_node_id"_s, line).trimmed().isEmpty() &&
        nodeIdFunction(checker).trimmed().isEmpty())
        checker.reportError(u"<strong>Error: </strong>CANopen basic Stack Settings: No Node-Id specified for line %1: "
                            "Specify a number between 1 and 127, or 255 for LSS or a function name like e.g. "
                            "readDipSwitch in the line below."_s.arg(line));
}

void nodeIdFunctionOpens(ModelChecker &checker, const CheckSubject & /*subject*/)
{
    if (nodeIdFunction(checker).contains(u'('))
        checker.reportError(
            u"<strong>Error: </strong>CANopen basic Stack Settings: The name of the NodeId function may "
            "not include a (."_s);
}

void nodeIdFunctionCloses(ModelChecker &checker, const CheckSubject & /*subject*/)
{
    if (nodeIdFunction(checker).contains(u')'))
        checker.reportError(
            u"<strong>Error: </strong>CANopen basic Stack Settings: The name of the NodeId function may "
            "not include a )."_s);
}

void receiveBufferList(ModelChecker &checker, const CheckSubject & /*subject*/)
{
    if (!hasEntryPerLine(checker, u"receivebuffersize"_s))
        checker.reportError(u"<strong>Error: </strong>Common Settings: CAN receive buffer size must be specified "
                            "individually for each line."_s);
}

void transmitBufferList(ModelChecker &checker, const CheckSubject & /*subject*/)
{
    if (!hasEntryPerLine(checker, u"transmitbuffersize"_s))
        checker.reportError(u"<strong>Error: </strong>Common Settings: CAN transmit buffer size must be specified "
                            "individually for each line."_s);
}

/// Opening a project moves such a list elsewhere, so that only a modifier file brings one here.
void masterList(ModelChecker &checker, const CheckSubject & /*subject*/)
{
    if (!hasEntryPerLine(checker, u"co_ml_ms"_s))
        checker.reportError(u"<strong>Error: </strong>General Settings: The ML master/slave settings size must be "
                            "specified individually for each line. (e.g 0,1)"_s);
}

} // namespace

std::span<const CheckRule> lineRules()
{
    static const CheckRule rules[] = {
        {"stackPathUnset"_L1, stackPathUnset},
        {"stackWithoutFeatureFile"_L1, stackWithoutFeatureFile},
        {"stackNeedsOlderTool"_L1, stackNeedsOlderTool, eachRequiredVersion},
        {"stackNeedsOtherTool"_L1, stackNeedsOtherTool, eachRequiredVersion},
        {"nodeIdUnset"_L1, nodeIdUnset},
        {"nodeIdFunctionOpens"_L1, nodeIdFunctionOpens},
        {"nodeIdFunctionCloses"_L1, nodeIdFunctionCloses},
        {"receiveBufferList"_L1, receiveBufferList},
        {"transmitBufferList"_L1, transmitBufferList},
        {"masterList"_L1, masterList},
    };
    return rules;
}
