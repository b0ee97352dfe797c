// Makes a project that passes its check.

#include "ncx/commands/commands.h"
#include "ncx/commands/findingtext.h"
#include "ncx/commands/outputfile.h"
#include "ncx/findings/projectfindings.h"
#include "ncx/making/newproject.h"
#include "ncx/project/identity.h"
#include "ncx/project/openedproject.h"
#include "ncx/settling/settling.h"
#include "ncx/usage/invocation.h"
#include "store/lineprotocols.h"
#include "store/objectdatabase.h"
#include "texttools/wholefile.h"

#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr Operand newOperands[] = {{.name = "PROJECT"_L1,
                                    .text = "the new file; in text form if its name ends in .ncxt, else a database"_L1,
                                    .offer = Offer::Projects}};

constexpr QLatin1StringView types[] = {"CANopen"_L1,       "J1939"_L1,          "RawCAN"_L1,
                                       "CANopen+J1939"_L1, "CANopen+RawCAN"_L1, "J1939+RawCAN"_L1};

constexpr Option newOptions[] = {
    {.name = "configured"_L1, .text = "take the parameter values of a DCF as default values"_L1},
    {.name = "force"_L1, .text = "replace PROJECT if it exists; a database that is replaced stays as PROJECT.bak"_L1},
    {.name = "from"_L1,
     .value = "FILE"_L1,
     .text = "take the objects of a device description (.eds, .dcf), and settle what it does not say"_L1},
    {.name = "json"_L1, .letter = 'j', .text = "answer in JSON, form ncx-new version 1"_L1},
    {.name = "line"_L1,
     .letter = 'l',
     .value = "TYPE"_L1,
     .text = "a line of this type; CANopen without it"_L1,
     .words = types,
     .isRepeatable = true},
    {.name = "node-id"_L1,
     .letter = 'n',
     .value = "N"_L1,
     .text = "the node-id of CANopen lines, 1 to 127; 1 without it"_L1},
    {.name = "profile"_L1,
     .letter = 'p',
     .value = "ID"_L1,
     .text = "take the mandatory objects and the device type of this profile, as 401"_L1,
     .isRepeatable = true},
    {.name = "repair"_L1, .text = "mend what is wrong in the description, by the smallest change"_L1},
};

constexpr QLatin1StringView newDetails[] = {
    "Makes a project that passes the check and generates: CANopen lines have the objects that CiA 301 and the profiles "
    "demand, J1939 lines a name and an address. What only its maker knows is 0 and wants to be set: vendor-ID, product "
    "code and revision in 0x1018, and the name of a J1939 line in the J1939 settings."_L1,
    "With --from the first CANopen line has the objects of a description. What a description cannot say is settled, "
    "and "
    "what is wrong in it is left, or mended with --repair; a report tells each decision, at the terminal in short, and "
    "whole in PROJECT.report.txt."_L1,
};

constexpr Example newExamples[] = {
    {"ncx new device.ncxt --node-id=32 --profile=401"_L1, "an I/O module on one CANopen line"_L1},
    {"ncx new gateway.ncxp --line=CANopen --line=J1939"_L1, "a device of two lines"_L1},
    {"ncx new drive.ncxt --from=drive.eds --repair"_L1, "a project from what a maker delivers"_L1},
};

constexpr int newJsonVersion = 1;
constexpr int lowestNodeId = 1;
constexpr int highestNodeId = 127;

/// False, with that told, where the options for descriptions do not fit.
bool fitsDescription(const Invocation &call)
{
    const bool hasFile = call.isSet("from"_L1);
    if (!hasFile && (call.isSet("configured"_L1) || call.isSet("repair"_L1)))
        call.refuse(u"--configured and --repair are about a description, which --from names"_s);
    else if (hasFile && call.isSet("profile"_L1))
        call.refuse(u"a description has the objects of its profile; --profile does not go with --from"_s);
    else
        return true;
    return false;
}

/// What the call asks for; nothing, with that told, where its options do not fit.
std::optional<NewProject> wishOf(const Invocation &call)
{
    NewProject wish;
    if (call.isSet("line"_L1)) {
        wish.lineTypes.clear();
        for (const QString &name : call.values("line"_L1))
            wish.lineTypes.append(NewProject::lineType(name));
    }
    if (wish.lineTypes.size() > firstLineBeyondStack) {
        call.refuse(u"a device has at most %1 lines"_s.arg(firstLineBeyondStack));
        return {};
    }
    const auto canOpen =
        std::ranges::find_if(wish.lineTypes, [](int type) { return LineProtocols::ofType(type).canOpen; });
    const bool hasCANopen = canOpen != wish.lineTypes.end();
    if (!hasCANopen && (call.isSet("node-id"_L1) || call.isSet("profile"_L1) || call.isSet("from"_L1))) {
        call.refuse(u"a node-id, profiles and descriptions are for CANopen lines, and there is none"_s);
        return {};
    }
    if (!fitsDescription(call))
        return {};
    if (call.isSet("from"_L1))
        wish.describedLine = static_cast<int>(canOpen - wish.lineTypes.begin());
    if (call.isSet("node-id"_L1)) {
        bool ok = false;
        wish.nodeId = call.value("node-id"_L1).toInt(&ok, 0);
        if (!ok || wish.nodeId < lowestNodeId || wish.nodeId > highestNodeId) {
            call.refuse(u"'%1' is no node-id; these go from 1 to 127"_s.arg(call.value("node-id"_L1)));
            return {};
        }
    }
    wish.profiles = call.values("profile"_L1);
    // The text of a project without CANopen says nothing of its lines.
    wish.namesLines = hasCANopen || !OpenedProject::isTextPath(call.operand());
    return wish;
}

/// Writes the project. The reason for which that could not be; empty if it is done.
QString make(const NewProject &wish, const QString &path)
{
    ObjectDataBase store;
    if (QString reason = wish.makeIn(store); !reason.isEmpty())
        return reason;
    Identity::take(Identity::leastFor(store, path));
    return OpenedProject::save(store, path);
}

QString reportPath(const QString &path)
{
    return path + ".report.txt"_L1;
}

int fail(const Invocation &call, const QString &path, const QString &reason)
{
    call.terminal().fail(u"%1: %2"_s.arg(path, reason));
    return CouldNot;
}

QString summary(const SettlingReport &report)
{
    using Kind = SettlingTopic::Kind;
    QStringList parts;
    for (const auto &[kind, word] : {std::pair(Kind::Read, u"read otherwise"_s),
                                     {Kind::Settled, u"settled"_s},
                                     {Kind::Repaired, u"mended"_s},
                                     {Kind::Left, u"left"_s},
                                     {Kind::Doubtful, u"doubtful"_s}}) {
        if (const qsizetype count = report.count(kind); count > 0)
            parts.append(u"%1 %2"_s.arg(count).arg(word));
    }
    return parts.isEmpty() ? u"nothing to settle"_s : parts.join(", "_L1);
}

/// Writes the report, all of which is in the file before the project is, and the project. The reason for which that
/// could not be; empty if it is done.
QString saveBoth(OpenedProject &project, const QString &path, const QByteArray &report)
{
    if (!QFileInfo(QFileInfo(path).absolutePath()).isDir())
        return u"there is no such folder"_s;
    WholeFile file(reportPath(path));
    if (!file.open(QIODevice::WriteOnly) || file.write(report) != report.size() || !file.flush())
        return u"its report cannot be written: %1"_s.arg(file.errorString());
    const bool isNew = !QFileInfo::exists(path);
    if (QString reason = project.saveAs(path); !reason.isEmpty())
        return reason;
    if (file.commitWhole())
        return {};
    if (isNew)
        QFile::remove(path);
    return u"its report cannot be written: %1"_s.arg(file.errorString());
}

/// Answers a program; `content` is what a project that was made in this way has to tell.
void answerJson(const Invocation &call, QJsonObject content)
{
    content.insert(u"format"_s, u"ncx-new"_s);
    content.insert(u"version"_s, newJsonVersion);
    content.insert(u"project"_s, call.operand());
    call.terminal().write(QString::fromUtf8(QJsonDocument(content).toJson()));
}

int runWithDescription(const Invocation &call, const NewProject &wish)
{
    constexpr qsizetype placesAtTerminal = 5;
    const QString path = call.operand();
    const QString file = call.value("from"_L1);
    if (OutputFile::isTaken(call, reportPath(path)))
        return CouldNot;
    OpenedProject project;
    if (const QString reason = wish.makeIn(project.store()); !reason.isEmpty())
        return fail(call, path, reason);
    Identity::take(Identity::leastFor(project.store(), path));
    call.terminal().step(u"reading and settling %1"_s.arg(file));
    SettlingReport report(QFileInfo(file).fileName());
    const Settling settling{.file = file,
                            .line = static_cast<quint8>(wish.describedLine),
                            .isConfigured = call.isSet("configured"_L1),
                            .repairs = call.isSet("repair"_L1),
                            .isText = OpenedProject::isTextPath(path),
                            .takesNodeId = !call.isSet("node-id"_L1)};
    if (const QString reason = settling.settle(project, report); !reason.isEmpty())
        return fail(call, file, reason);
    const QString head = u"%1 from %2: %3"_s.arg(path, QFileInfo(file).fileName(), summary(report));
    const QString whole = head + u'\n' + report.lines().join(u'\n') + u'\n';
    // It took a while, in which another process may have been faster.
    if (OutputFile::isTaken(call, path) || OutputFile::isTaken(call, reportPath(path)))
        return CouldNot;
    call.terminal().step(u"writing %1"_s.arg(path));
    if (const QString reason = saveBoth(project, path, whole.toUtf8()); !reason.isEmpty())
        return fail(call, path, reason);
    if (call.isSet("json"_L1)) {
        answerJson(call, {{u"description"_s, file}, {u"report"_s, reportPath(path)}, {u"topics"_s, report.toJson()}});
    } else {
        for (const QString &text : report.lines(placesAtTerminal).sliced(report.lines().isEmpty() ? 0 : 1))
            call.terminal().answer(text);
        call.terminal().answer(head);
        call.terminal().answer(u"%1 tells all of it"_s.arg(reportPath(path)));
    }
    return report.count(SettlingTopic::Kind::Left) > 0 ? Findings : Done;
}

int runNew(const Invocation &call)
{
    const QString path = call.operand();
    const std::optional<NewProject> wish = wishOf(call);
    if (!wish || OutputFile::isTaken(call, path))
        return CouldNot;
    if (call.isSet("from"_L1))
        return runWithDescription(call, *wish);
    call.terminal().step(u"making %1"_s.arg(path));
    if (const QString reason = make(*wish, path); !reason.isEmpty())
        return fail(call, path, reason);
    OpenedProject project;
    if (!project.open(path))
        return fail(call, path, project.reason());
    // A profile may ask for what only the maker of the device knows.
    ProjectFindings findings = ProjectFindings::of(project);
    findings.findings.removeIf([](const ProjectFinding &finding) { return finding.severity() == "note"_L1; });
    if (call.isSet("json"_L1))
        answerJson(call, {{u"check"_s, findings.toJson(path)}});
    else
        FindingText::tellAll(call.terminal(), path, findings);
    return findings.count(u"error"_s) > 0 ? Findings : Done;
}

} // namespace

constexpr Command Commands::newProject{
    .name = "new"_L1,
    .summary = "make a project that passes its check"_L1,
    .operands = newOperands,
    .options = newOptions,
    .details = newDetails,
    .examples = newExamples,
    .run = runNew,
};
