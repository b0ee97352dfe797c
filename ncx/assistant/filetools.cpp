// Files that come into the project, and those that are made of it.

#include "generate/run/importdispatch.h"
#include "mcp/tools/guards.h"
#include "ncx/assistant/assistantfamilies.h"
#include "ncx/assistant/assistantsession.h"
#include "ncx/assistant/filearguments.h"
#include "ncx/outputs/foldergeneration.h"
#include "ncx/project/identity.h"
#include "ncx/settling/settling.h"
#include "store/lineprotocols.h"
#include "store/objectdatabase.h"

#include <QFileInfo>

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace FileArguments;
using namespace Guards;

namespace {

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
constexpr Property dryRun =
    Properties::boolean("dryRun"_L1, "Write nothing, tell which files would change (default: false)"_L1);

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
        return u"adopt needs a line without objects, and line %1 has some"_s.arg(line);
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

Reply cancelled()
{
    return Reply::refusal(u"Cancelled; nothing is changed."_s);
}

Reply adoptFile(const ToolCall &call, const QString &file, quint8 line)
{
    AssistantSession &session = sessionOf(call);
    OpenedProject &project = session.project();
    int step = 0;
    const auto goesOn = [&session, &step] { return session.goesOn(step++, 0, u"adopting"_s); };
    SettlingReport report(QFileInfo(file).fileName());
    const Settling settling{.file = file,
                            .line = line,
                            .isConfigured = call.flag(configured.name),
                            .repairs = call.flag(repair.name),
                            .isText = project.isText(),
                            .takesNodeId = true,
                            .goesOn = goesOn};
    if (!goesOn())
        return cancelled();
    if (const QString reason = settling.settle(project, report); !reason.isEmpty())
        return Reply::refusal(u"Import failed: %1: %2."_s.arg(file, reason));
    if (!session.goesOn(step, 0, u"checking"_s))
        return cancelled();
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
    if (!sessionOf(call).goesOn(0, 2, u"importing"_s))
        return cancelled();
    if (reason.isEmpty())
        reason = runImport(call, file, line, report);
    Identity::takeWidest();
    if (!sessionOf(call).goesOn(1, 2, u"checking"_s))
        return cancelled();
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
    if (QString reason = call.flag(dryRun.name) ? QString() : generation.install(generation.files()); !reason.isEmpty())
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
    session.tellProgress(0, 0, u"checking"_s);
    session.handler().setWatch([&session](qsizetype done, qsizetype total) {
        return session.goesOn(static_cast<int>(done) + 1, static_cast<int>(total) + 1, u"writing"_s);
    });
    const FolderGeneration::Outcome outcome = generation.generate();
    session.handler().setWatch({});
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

constexpr Tool fileTools[] = {
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
};

} // namespace

std::span<const Tool> AssistantFamilies::files()
{
    return fileTools;
}
