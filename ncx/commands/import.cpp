// Brings files into a project.

#include "generate/run/importdispatch.h"
#include "ncx/commands/commands.h"
#include "ncx/project/identity.h"
#include "ncx/project/openedproject.h"
#include "ncx/usage/invocation.h"
#include "store/objectdatabase.h"
#include "texttools/textfile.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <optional>

using namespace Qt::StringLiterals;

namespace {

constexpr int importJsonVersion = 1;

constexpr Operand importOperands[] = {
    {.name = "PROJECT"_L1, .text = "the project that takes the files, and is saved"_L1, .offer = Offer::Projects},
    {.name = "FILE"_L1,
     .text = "device descriptions (.eds, .dcf), tables (.csv), CAN databases (.dbc), text documents "
             "(*doc*.txt), projects (.ncxp)"_L1,
     .most = anyNumber,
     .offer = Offer::Files},
};

constexpr Option importOptions[] = {
    {.name = "json"_L1, .letter = 'j', .text = "answer in JSON, form ncx-import version 1"_L1},
    {.name = "line"_L1, .letter = 'l', .value = "N"_L1, .text = "the line that takes the files; 0 without it"_L1},
    {.name = "node"_L1,
     .letter = 'n',
     .value = "NAME"_L1,
     .text = "the device among the nodes of a CAN database: what it sends is transmitted, what it gets received"_L1},
    {.name = "lossy"_L1, .text = "save as text even what the text form cannot hold"_L1},
};

constexpr QLatin1StringView importDetails[] = {
    "Adds to the line and replaces what is there under the same address; nothing is removed. The answer tells what was "
    "taken, and each part of a file that was dropped, with its line. If a file cannot be imported, or brings nothing, "
    "the "
    "project stays as it was."_L1,
    "The frames of a CAN database become PGNs with SPNs on a J1939 line, CAN-IDs with data elements on a raw CAN line. "
    "Scales, units, names of values and multiplexing go into the descriptions; the answer tells that, and signals that "
    "a project cannot hold, such as those in Motorola byte order."_L1,
    "A project as FILE is merged line by line, or into --line alone. A database keeps its former version as "
    "PROJECT.bak."_L1,
};

constexpr Example importExamples[] = {
    {"ncx import device.ncxt drive.eds"_L1, "takes a maker's objects into line 0"_L1},
    {"ncx import sensor.ncxp bus.dbc --node=Sensor"_L1, "takes what one node of a bus sends and receives"_L1},
    {"ncx import gateway.ncxp sensors.csv --line=2"_L1, "takes a table into line 2"_L1},
};

struct Imported
{
    QString path;
    ImportReport report = {};

    QJsonObject toJson() const;
};

QJsonArray listOf(const QList<ImportReport::Dropped> &parts)
{
    QJsonArray list;
    for (const ImportReport::Dropped &part : parts) {
        QJsonObject json{{u"what"_s, part.what}};
        if (part.line > 0)
            json.insert(u"fileLine"_s, part.line);
        list.append(json);
    }
    return list;
}

QJsonObject Imported::toJson() const
{
    return {{u"file"_s, path},
            {u"objects"_s, report.objects},
            {u"subindices"_s, report.subObjects},
            {u"messages"_s, report.messages},
            {u"signals"_s, report.signalCount},
            {u"droppedCount"_s, report.droppedCount},
            {u"dropped"_s, listOf(report.dropped)},
            {u"noteCount"_s, report.noteCount},
            {u"notes"_s, listOf(report.notes)}};
}

bool speaksOneOf(const LineProtocols &own, const LineProtocols &needed)
{
    return (own.canOpen && needed.canOpen) || (own.j1939 && needed.j1939) || (own.rawCan && needed.rawCan);
}

QString namesOf(const LineProtocols &protocols)
{
    QStringList names;
    for (const auto &[speaks, name] : {std::pair(protocols.canOpen, u"CANopen"_s),
                                       {protocols.j1939, u"J1939"_s},
                                       {protocols.rawCan, u"raw CAN"_s}}) {
        if (speaks)
            names.append(name);
    }
    return names.join(" or "_L1);
}

/// The end of a message that names the first line which can take what another one cannot.
QString otherLine(ObjectDataBase &store, const LineProtocols &needed)
{
    for (const quint8 line : store.getNodeList()) {
        if (speaksOneOf(LineProtocols::ofLine(store, line), needed))
            return u"; --line=%1 does"_s.arg(line);
    }
    return u", nor does another line of the project"_s;
}

/// Why a line cannot take a file; empty if it can.
QString reasonAgainst(ObjectDataBase &store, const QString &path, quint8 line)
{
    const LineProtocols dbc{.j1939 = true, .rawCan = true};
    const std::optional<LineProtocols> needed = ImportDispatch::isDbc(path) ? dbc : ImportDispatch::protocolFor(path);
    if (QString reason = OpenedProject::reasonNotToRead(path); !reason.isEmpty())
        return reason;
    if (!needed)
        return OpenedProject::isTextPath(path)
                   ? u"a project in text form is not merged; 'ncx convert' makes a database of it"_s
                   : u"no importer takes a file of this name; 'ncx import --help' tells which there are"_s;
    if (!needed->any()) // a project
        return OpenedProject::reasonAgainst(path);
    if (!speaksOneOf(LineProtocols::ofLine(store, line), *needed))
        return u"it is for %1, which line %2 does not speak%3"_s.arg(namesOf(*needed))
            .arg(line)
            .arg(otherLine(store, *needed));
    return QFileInfo(path).size() > TextFile::maxFileSize ? OpenedProject::tooLargeText() : QString();
}

bool takesSomething(const ImportReport &report)
{
    return report.objects + report.subObjects + report.messages + report.signalCount > 0;
}

/// Imports all files; nothing, with that told, if one of them cannot be.
std::optional<QList<Imported>> importAll(const Invocation &call, const OpenedProject &project,
                                         std::optional<quint8> line)
{
    QList<Imported> all;
    for (const QString &path : call.operands().sliced(1)) {
        call.terminal().step(u"importing %1"_s.arg(path));
        Imported imported{.path = path};
        QString reason = reasonAgainst(project.store(), path, line.value_or(0));
        if (reason.isEmpty() && ImportDispatch::isDbc(path))
            reason = ImportDispatch::importDbc(project.sharedStore(), path, line.value_or(0), call.value("node"_L1),
                                               imported.report);
        else if (reason.isEmpty() && call.isSet("node"_L1))
            reason = u"--node is for CAN databases"_s;
        else if (reason.isEmpty() && !ImportDispatch::importFile(project.sharedStore(), path, line, imported.report))
            reason = u"it cannot be read, or is no such file"_s;
        if (reason.isEmpty() && !takesSomething(imported.report))
            reason = u"nothing in it could be imported"_s;
        if (!reason.isEmpty()) {
            call.terminal().fail(u"%1: %2"_s.arg(path, reason));
            return {};
        }
        all.append(imported);
    }
    return all;
}

void tellParts(Terminal &terminal, const QString &path, const QString &kind, const QList<ImportReport::Dropped> &parts)
{
    for (const ImportReport::Dropped &part : parts) {
        const QString place = part.line > 0 ? u"%1:%2"_s.arg(path).arg(part.line) : path;
        terminal.answer(u"%1: %2: %3"_s.arg(place, kind, part.what));
    }
}

void tell(const Invocation &call, const QList<Imported> &all)
{
    Terminal &terminal = call.terminal();
    QJsonArray list;
    for (const Imported &imported : all) {
        const ImportReport &report = imported.report;
        list.append(imported.toJson());
        if (call.isSet("json"_L1))
            continue;
        tellParts(terminal, imported.path, u"dropped"_s, report.dropped);
        tellParts(terminal, imported.path, u"note"_s, report.notes);
        terminal.answer(u"%1: %2 objects, %3 subindices, %4 messages, %5 signals; dropped: %6"_s.arg(imported.path)
                            .arg(report.objects)
                            .arg(report.subObjects)
                            .arg(report.messages)
                            .arg(report.signalCount)
                            .arg(report.droppedCount));
    }
    if (call.isSet("json"_L1))
        terminal.write(QString::fromUtf8(QJsonDocument(QJsonObject{{u"format"_s, u"ncx-import"_s},
                                                                   {u"version"_s, importJsonVersion},
                                                                   {u"project"_s, call.operand()},
                                                                   {u"files"_s, list}})
                                             .toJson()));
}

/// Saves the project. The reason for which that is not done; empty if it is.
QString save(const Invocation &call, OpenedProject &project)
{
    if (project.isText() && !call.isSet("lossy"_L1)) {
        QStringList tables;
        for (const TextScope::Loss &loss : project.store().textLosses())
            tables.append(loss.column.isEmpty() ? loss.table : loss.table + u'.' + loss.column);
        if (!tables.isEmpty())
            return u"the text form cannot hold all of it (%1); --lossy leaves that out"_s.arg(tables.join(", "_L1));
    }
    if (project.hasChangedOnDisk())
        return u"another process has changed it meanwhile; it is left as it is"_s;
    call.terminal().step(u"writing %1"_s.arg(project.path()));
    return project.saveAs(project.path());
}

int runImport(const Invocation &call)
{
    OpenedProject project;
    call.terminal().step(u"reading %1"_s.arg(call.operand()));
    if (!project.open(call.operand(), OpenedProject::Purpose::Editing)) {
        call.terminal().fail(u"%1: %2"_s.arg(call.operand(), project.reason()));
        return CouldNot;
    }
    std::optional<quint8> line;
    if (call.isSet("line"_L1)) {
        bool ok = false;
        const uint number = call.value("line"_L1).toUInt(&ok);
        if (!ok || number > 0xff || !project.store().nodeExists(static_cast<quint8>(number))) {
            call.terminal().fail(
                OpenedProject::reasonWithoutLine(project.store(), call.operand(), call.value("line"_L1)));
            return CouldNot;
        }
        line = static_cast<quint8>(number);
    }
    // Projects of any edition can be merged.
    Identity::takeWidest();
    const std::optional<QList<Imported>> all = importAll(call, project, line);
    Identity::take(Identity::leastFor(project.store(), project.path()));
    if (!all)
        return CouldNot;
    if (const QString reason = save(call, project); !reason.isEmpty()) {
        call.terminal().fail(u"%1: %2"_s.arg(call.operand(), reason));
        return CouldNot;
    }
    tell(call, *all);
    return Done;
}

} // namespace

constexpr Command Commands::importFiles{
    .name = "import"_L1,
    .summary = "take descriptions, tables, documents and projects into a project"_L1,
    .operands = importOperands,
    .options = importOptions,
    .details = importDetails,
    .examples = importExamples,
    .run = runImport,
};
