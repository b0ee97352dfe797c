// The project as a whole: make, open, import, generate, save.

#include "generate/run/importdispatch.h"
#include "mcp/tools/guards.h"
#include "ncx/assistant/assistantfamilies.h"
#include "ncx/assistant/assistantsession.h"
#include "ncx/making/newproject.h"
#include "ncx/outputs/foldergeneration.h"
#include "ncx/project/identity.h"
#include "ncx/settling/settling.h"
#include "store/lineprotocols.h"
#include "store/objectdatabase.h"

#include <QFileInfo>

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace Guards;

namespace {

constexpr QLatin1StringView lineTypeNames[]{"CANopen"_L1,       "J1939"_L1,          "RawCAN"_L1,
                                            "CANopen+J1939"_L1, "CANopen+RawCAN"_L1, "J1939+RawCAN"_L1};
constexpr Property lineTypeName{.name = {}, .types = Properties::Types::string, .choices = lineTypeNames};
constexpr Property profileId{.name = {}, .types = Properties::Types::string};

constexpr Property path = Properties::string("path"_L1, "File path, inside of the folders of this server"_L1);
constexpr Property projectPath = Properties::string(
    "path"_L1, "New file. A name that ends in .ncxt is the text form for version control, which holds no raw CAN; any "
               "other is a database, .ncxp"_L1);
constexpr Property lineTypes =
    Properties::array("lineTypes"_L1, lineTypeName, R"(Protocols of each line, from line 0 (default: ["CANopen"]))"_L1);
constexpr Property nodeId = Properties::integer("nodeId"_L1, 1, 127, "Node-id of CANopen lines (default: 1)"_L1);
constexpr Property profiles = Properties::array(
    "profiles"_L1, profileId,
    R"(Profiles whose mandatory objects and device type CANopen lines get, e.g. ["401"]; see list_profiles)"_L1);
constexpr Property emptyLine = Properties::integer(
    "emptyLine"_L1, 0, 31, "This CANopen line gets no objects, for import_file with adopt (optional)"_L1);
constexpr Property overwrite = Properties::boolean("overwrite"_L1, "Replace the file if it exists (default: false)"_L1);
constexpr Property discard =
    Properties::boolean("discard"_L1, "Give up the unsaved edits of the open project (default: false)"_L1);
constexpr Property importLine =
    Properties::integer("line"_L1, 0, 239, "Line id that takes the file (default: 0; a project goes line by line)"_L1);
constexpr Property node = Properties::string(
    "node"_L1, "Of a CAN database (.dbc): the device among its nodes; what it sends is transmitted"_L1);
constexpr Property adopt = Properties::boolean(
    "adopt"_L1, "Of an EDS or DCF, into a CANopen line without objects: settle what a description cannot say, so that "
                "the project generates, and report each decision (default: false)"_L1);
constexpr Property repair =
    Properties::boolean("repair"_L1, "With adopt: mend what is wrong in the description (default: false)"_L1);
constexpr Property configured =
    Properties::boolean("configured"_L1, "With adopt: take the parameter values of a DCF as default values"_L1);
constexpr Property outputPath =
    Properties::string("outputPath"_L1, "Folder for the files (default: that of the project)"_L1);
constexpr Property dryRun =
    Properties::boolean("dryRun"_L1, "Write nothing, tell which files would change (default: false)"_L1);
constexpr Property savePath =
    Properties::string("path"_L1, "Save a copy there; the open project stays the one that it is (optional)"_L1);
constexpr Property lossy = Properties::boolean(
    "lossy"_L1, "Save as text even what the text form cannot hold, which is lost (default: false)"_L1);

std::optional<Reply> pathIsInside(const ToolCall &call)
{
    for (const QLatin1StringView name : {path.name, outputPath.name}) {
        if (!call.has(name))
            continue;
        if (call.text(name).isEmpty())
            return Reply::invalidParams(u"Argument \"%1\" must not be empty."_s.arg(name));
        if (const QString refusal = sessionOf(call).roots().refusal(call.text(name)); !refusal.isEmpty())
            return Reply::refusal(u"Argument: %1. "_s.arg(name) + refusal);
    }
    return {};
}

std::optional<Reply> nothingIsUnsaved(const ToolCall &call)
{
    const AssistantSession &session = sessionOf(call);
    if (!session.isProjectOpen() || !session.isChanged() || call.flag(discard.name))
        return {};
    return Reply::refusal(u"The open project %1 has unsaved edits. Call save_project first, or give \"discard\": true "
                          "to lose them."_s.arg(session.project().path()));
}

QJsonObject lineOf(ObjectDataBase &store, quint8 line)
{
    return {{u"line"_s, line}, {u"lineTypeCode"_s, store.getGeneralSetting(u"line%1type"_s.arg(line)).toInt()}};
}

/// What there is to say of a project that has been opened.
Reply openedReply(const AssistantSession &session, const QString &what, QJsonObject data = {})
{
    QJsonArray lines;
    for (const quint8 line : session.store().getNodeList())
        lines.append(lineOf(session.store(), line));
    const QJsonObject counts = FindingsReport::counts(session.findings());
    qsizetype untold = 0;
    constexpr qsizetype mostBytes = 800;
    const QJsonArray groups = FindingsReport::grouped(session.findings(), mostBytes, untold);
    data.insert(u"path"_s, session.project().path());
    data.insert(u"lines"_s, lines);
    data.insert(u"findings"_s, counts);
    data.insert(u"items"_s, groups);
    QString text = u"%1: %2\nCheck: %3."_s.arg(what, session.project().path(), FindingsReport::countText(counts));
    for (const QJsonValue group : groups)
        text += u'\n' + FindingsReport::line(group.toObject());
    if (untold > 0)
        text += u"\ncheck_model tells %1 more."_s.arg(untold);
    return Reply::both(text, data);
}

Reply openProject(const ToolCall &call)
{
    AssistantSession &session = sessionOf(call);
    const QString file = call.text(path.name);
    if (const QString reason = session.open(file); !reason.isEmpty())
        return Reply::refusal(u"Failed to open project %1: %2. No project is open now; call open_project with another "
                              "path, or new_project."_s.arg(file, reason));
    return openedReply(session, u"Project opened"_s);
}

NewProject wishOf(const ToolCall &call, const QString &file)
{
    NewProject wish;
    if (call.has(lineTypes.name)) {
        wish.lineTypes.clear();
        for (const QJsonValue name : call.value(lineTypes.name).toArray())
            wish.lineTypes.append(NewProject::lineType(name.toString()));
    }
    if (call.has(nodeId.name))
        wish.nodeId = call.number<int>(nodeId.name);
    for (const QJsonValue id : call.value(profiles.name).toArray())
        wish.profiles.append(id.toString());
    if (call.has(emptyLine.name))
        wish.describedLine = call.number<int>(emptyLine.name);
    const bool hasCANopen =
        std::ranges::any_of(wish.lineTypes, [](int type) { return LineProtocols::ofType(type).canOpen; });
    wish.namesLines = hasCANopen || !OpenedProject::isTextPath(file);
    return wish;
}

std::optional<Reply> lineTypesAreGiven(const ToolCall &call)
{
    const qsizetype count = call.value(lineTypes.name).toArray().size();
    if (!call.has(lineTypes.name) || (count > 0 && count <= firstLineBeyondStack))
        return {};
    return Reply::invalidParams(u"Argument \"lineTypes\" must have 1 to %1 elements."_s.arg(firstLineBeyondStack));
}

/// The text form has no place for raw CAN messages.
std::optional<Reply> formFitsLines(const ToolCall &call)
{
    const QJsonArray types = call.value(lineTypes.name).toArray();
    const bool hasRaw =
        std::ranges::any_of(types, [](const QJsonValue &name) { return name.toString().contains("RawCAN"_L1); });
    if (!hasRaw || !OpenedProject::isTextPath(call.text(path.name)))
        return {};
    return Reply::refusal(u"Argument: path. The text form (.ncxt) holds no raw CAN messages. Give the file a name that "
                          "ends in .ncxp."_s);
}

Reply newProject(const ToolCall &call)
{
    AssistantSession &session = sessionOf(call);
    const QString file = call.text(path.name);
    if (QFileInfo::exists(file) && !call.flag(overwrite.name))
        return Reply::refusal(
            u"Argument: path. %1 exists. Choose another name, or give \"overwrite\": true."_s.arg(file));
    ObjectDataBase store;
    QString reason = wishOf(call, file).makeIn(store);
    if (reason.isEmpty()) {
        Identity::take(Identity::leastFor(store, file));
        reason = OpenedProject::save(store, file);
    }
    if (reason.isEmpty())
        reason = session.open(file);
    if (!reason.isEmpty())
        return Reply::refusal(u"Failed to make %1: %2."_s.arg(file, reason));
    return openedReply(session, u"Project made and opened"_s);
}

QJsonArray partsOf(const QList<ImportReport::Dropped> &parts)
{
    constexpr qsizetype mostParts = 10;
    QJsonArray list;
    for (const ImportReport::Dropped &part : parts.first(std::min(parts.size(), mostParts)))
        list.append(part.line > 0 ? u"line %1: %2"_s.arg(part.line).arg(part.what) : part.what);
    return list;
}

/// Why a file cannot come into a line; empty if it can.
QString reasonAgainst(const ToolCall &call, const QString &file, quint8 line)
{
    ObjectDataBase &store = call.store();
    if (!store.nodeExists(line))
        return u"there is no line %1"_s.arg(line);
    const LineProtocols own = LineProtocols::ofLine(store, line);
    if (call.flag(adopt.name) && !own.canOpen)
        return u"a description is for CANopen, which line %1 does not speak"_s.arg(line);
    if (call.flag(adopt.name) && !store.getAllIndices(line).isEmpty())
        return u"adopt needs a line without objects, and line %1 has some; delete_line and add_line give an empty one"_s
            .arg(line);
    if (call.flag(adopt.name))
        return {};
    if (ImportDispatch::isDbc(file))
        return own.j1939 || own.rawCan ? QString()
                                       : u"it is for J1939 or raw CAN, which line %1 does not speak"_s.arg(line);
    const std::optional<LineProtocols> needed = ImportDispatch::protocolFor(file);
    if (!needed)
        return u"no importer takes a file of this name; .eds, .dcf, .csv, .dbc, *doc*.txt and .ncxp are imported"_s;
    if ((needed->canOpen && !own.canOpen) || (needed->j1939 && !own.j1939))
        return u"it is for %1, which line %2 does not speak"_s.arg(needed->canOpen ? u"CANopen"_s : u"J1939"_s)
            .arg(line);
    return {};
}

QString runImport(const ToolCall &call, const QString &file, quint8 line, ImportReport &report)
{
    OpenedProject &project = sessionOf(call).project();
    if (ImportDispatch::isDbc(file))
        return ImportDispatch::importDbc(project.sharedStore(), file, line, call.text(node.name), report);
    const std::optional<quint8> into = call.has(importLine.name) ? std::optional(line) : std::nullopt;
    if (!ImportDispatch::importFile(project.sharedStore(), file, into, report))
        return u"it cannot be read"_s;
    return {};
}

Reply adoptFile(const ToolCall &call, const QString &file, quint8 line)
{
    OpenedProject &project = sessionOf(call).project();
    SettlingReport report(QFileInfo(file).fileName());
    const Settling settling{.file = file,
                            .line = line,
                            .isConfigured = call.flag(configured.name),
                            .repairs = call.flag(repair.name),
                            .isText = project.isText(),
                            .takesNodeId = true};
    call.session().tellProgress(0, 2, u"adopting"_s);
    if (const QString reason = settling.settle(project, report); !reason.isEmpty())
        return Reply::refusal(u"Import failed: %1: %2."_s.arg(file, reason));
    call.session().tellProgress(1, 2, u"checking"_s);
    constexpr qsizetype placesOfTopic = 3;
    return call.edited(
        u"Adopted %1 into line %2.\n%3"_s.arg(file).arg(line).arg(report.lines(placesOfTopic).join(u'\n')));
}

Reply importFile(const ToolCall &call)
{
    const QString file = call.text(path.name);
    const auto line = call.number<quint8>(importLine.name);
    QString reason = QFileInfo(file).isFile() ? reasonAgainst(call, file, line) : u"there is no such file"_s;
    if (reason.isEmpty() && call.flag(adopt.name))
        return adoptFile(call, file, line);
    ImportReport report;
    call.session().tellProgress(0, 2, u"importing"_s);
    if (reason.isEmpty())
        reason = runImport(call, file, line, report);
    call.session().tellProgress(1, 2, u"checking"_s);
    Identity::takeWidest();
    if (reason.isEmpty() && report.objects + report.subObjects + report.messages + report.signalCount == 0)
        reason = u"nothing in it could be imported"_s;
    if (!reason.isEmpty())
        return Reply::refusal(u"Import failed: %1: %2."_s.arg(file, reason));
    QString text = u"Imported %1: %2 objects, %3 subindices, %4 messages, %5 signals; dropped: %6."_s.arg(file)
                       .arg(report.objects)
                       .arg(report.subObjects)
                       .arg(report.messages)
                       .arg(report.signalCount)
                       .arg(report.droppedCount);
    for (const QJsonValue part : partsOf(report.dropped))
        text += u"\ndropped: "_s + part.toString();
    for (const QJsonValue part : partsOf(report.notes))
        text += u"\nnote: "_s + part.toString();
    return call.edited(text);
}

QString wordOf(FolderGeneration::Change change)
{
    switch (change) {
    case FolderGeneration::Change::New:
        return u"new"_s;
    case FolderGeneration::Change::Changed:
        return u"changed"_s;
    case FolderGeneration::Change::Removed:
        return u"removed"_s;
    case FolderGeneration::Change::None:
        break;
    }
    return u"unchanged"_s;
}

/// Brings the files to their folder, all or none. The reason for which that could not be; empty if done.
QString install(const ToolCall &call, FolderGeneration &generation, QJsonObject &files)
{
    if (const QString reason = call.flag(dryRun.name) ? QString() : generation.install(generation.files());
        !reason.isEmpty())
        return reason;
    for (const FolderGeneration::File &file : generation.files()) {
        const QString word = wordOf(file.change);
        QJsonArray names = files.value(word).toArray();
        names.append(file.name);
        files.insert(word, names);
    }
    return {};
}

Reply generationFailure(const FindingsReport::Findings &findings, const QString &reason)
{
    FindingsReport::Findings errors = findings;
    errors.removeIf([](const CheckFinding &finding) { return finding.kind != CheckFinding::Kind::Error; });
    qsizetype untold = 0;
    constexpr qsizetype mostBytes = 1500;
    QString text = u"Generation failed, nothing is written: %1."_s.arg(reason);
    for (const QJsonValue group : FindingsReport::grouped(errors, mostBytes, untold))
        text += u'\n' + FindingsReport::line(group.toObject());
    return Reply::refusal(text);
}

/// A run works on the project as it is now, and leaves it so.
Reply generate(const ToolCall &call)
{
    AssistantSession &session = sessionOf(call);
    OpenedProject &project = session.project();
    const QString folder = call.has(outputPath.name) ? call.text(outputPath.name) : session.handler().outputFolder();
    const QString usualFolder = session.handler().outputFolder();
    const ObjectDataBase::Step step(session.store());
    Identity::take(Identity::leastFor(session.store(), project.path()));
    FolderGeneration generation(project, folder);
    const auto counted = QObject::connect(
        &session.handler(), &GeneratorMainHandler::checked,
        [&](const GeneratorMainHandler::ModelFindings &) { session.tellProgress(1, 3, u"writing"_s); });
    session.tellProgress(0, 3, u"checking"_s);
    const FolderGeneration::Outcome outcome = generation.generate();
    QObject::disconnect(counted);
    session.tellProgress(2, 3, u"comparing"_s);
    session.handler().setOutputFolder(usualFolder);
    Identity::takeWidest();
    if (session.isCancelled())
        return Reply::refusal(u"Cancelled; nothing is written."_s);
    if (outcome == FolderGeneration::Outcome::CheckFailed)
        return generationFailure(generation.findings().findings, u"the project does not pass its check"_s);
    if (outcome == FolderGeneration::Outcome::Failed)
        return generationFailure({}, generation.messages().join("; "_L1));
    QJsonObject changes;
    if (const QString reason = install(call, generation, changes); !reason.isEmpty())
        return generationFailure({}, reason);
    QStringList parts;
    for (auto part = changes.begin(); part != changes.end(); ++part) {
        QStringList names;
        for (const QJsonValue name : part.value().toArray())
            names.append(name.toString());
        parts.append(part.key() + ": "_L1 + names.join(", "_L1));
    }
    QJsonObject data{{u"folder"_s, folder}, {u"files"_s, changes}};
    return Reply::both((call.flag(dryRun.name) ? u"Dry run for %1"_s : u"Generated into %1"_s).arg(folder) + "\n"_L1 +
                           parts.join(u'\n'),
                       data);
}

Reply saveProject(const ToolCall &call)
{
    AssistantSession &session = sessionOf(call);
    const bool isCopy = call.has(savePath.name);
    const QString file = isCopy ? call.text(savePath.name) : session.project().path();
    if (isCopy && QFileInfo::exists(file) && !call.flag(overwrite.name))
        return Reply::refusal(
            u"Argument: path. %1 exists. Choose another name, or give \"overwrite\": true."_s.arg(file));
    QStringList losses;
    if (OpenedProject::isTextPath(file)) {
        for (const TextScope::Loss &loss : session.store().textLosses())
            losses.append((loss.column.isEmpty() ? loss.table : loss.table + u'.' + loss.column) +
                          u" (%1 rows)"_s.arg(loss.rows));
    }
    if (!losses.isEmpty() && !call.flag(lossy.name))
        return Reply::refusal(u"Not saved: the text form cannot hold %1. Save to a path that ends in .ncxp, or give "
                              "\"lossy\": true to leave this out of the file."_s.arg(losses.join(", "_L1)));
    if (!isCopy && !call.flag(overwrite.name) && session.project().hasChangedOnDisk())
        return Reply::refusal(
            u"Not saved: somebody else has changed %1 since it was opened or saved here. Compare with "
            "diff_project, then give \"overwrite\": true to replace it, or save a copy to another "
            "path."_s.arg(file));
    if (const QString reason = session.save(file); !reason.isEmpty())
        return Reply::refusal(u"Not saved: %1: %2."_s.arg(file, reason));
    QJsonObject data{{u"path"_s, file}};
    QString text = u"Project saved: %1"_s.arg(file);
    if (!losses.isEmpty()) {
        data.insert(u"lost"_s, QJsonArray::fromStringList(losses));
        text += u"\nLeft out: "_s + losses.join(", "_L1);
    }
    return Reply::both(text, data);
}

constexpr Tool tools[] = {
    {"new_project"_L1,
     "Make a project file that passes its check and open it; use this to build a device from nothing. CANopen lines "
     "have the mandatory objects of CiA 301 and of the profiles, J1939 lines a NAME and an address. Example: "
     "{\"path\": "
     "\"module.ncxt\", \"nodeId\": 32, \"profiles\": [\"401\"]}"_L1,
     {projectPath},
     {lineTypes, nodeId, profiles, emptyLine, overwrite, discard},
     {pathIsInside, lineTypesAreGiven, formFitsLines, nothingIsUnsaved},
     newProject},
    {"open_project"_L1,
     "Open a project file (.ncxp, .ncxt) in the place of the one that is open. Example: {\"path\": \"device.ncxt\"}"_L1,
     {path},
     {discard},
     {pathIsInside, nothingIsUnsaved},
     openProject},
    {"import_file"_L1,
     "Import a file into a line of the open project: device descriptions (.eds, .dcf), tables (.csv), CAN databases "
     "(.dbc), text documents (*doc*.txt), projects (.ncxp). The answer reports what came in and what was dropped. Use "
     "adopt for a maker's description that is to become a device. Example: {\"path\": \"drive.eds\", \"line\": 0, "
     "\"adopt\": true}"_L1,
     {path},
     {importLine, adopt, repair, configured, node},
     {projectIsOpen, pathIsInside, storeIsWhole},
     importFile},
    {"generate"_L1,
     "Check the open project, unsaved edits included, and write its C sources, descriptions and documents. Use it when "
     "check_model tells no errors. Nothing is written if there are some. Example: {\"outputPath\": \"src/generated\"}"_L1,
     {},
     {outputPath, dryRun},
     {projectIsOpen, pathIsInside, storeIsWhole},
     generate},
    {"save_project"_L1,
     "Save the open project to its file, or a copy to another path. Refuses, and tells what, if the form of the file "
     "would lose something. Example: {\"path\": \"device.ncxp\"}"_L1,
     {},
     {savePath, lossy, overwrite},
     {projectIsOpen, pathIsInside, storeIsWhole},
     saveProject},
};

} // namespace

std::span<const Tool> AssistantFamilies::project()
{
    return tools;
}
