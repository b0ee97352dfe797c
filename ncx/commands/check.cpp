// Tells what is wrong with projects, without writing anything.

#include "ncx/commands/commands.h"
#include "ncx/commands/findingtext.h"
#include "ncx/findings/projectfindings.h"
#include "ncx/project/openedproject.h"
#include "ncx/usage/invocation.h"
#include "store/objectdatabase.h"

#include <QJsonArray>
#include <QJsonDocument>

using namespace Qt::StringLiterals;

namespace {

constexpr int checkJsonVersion = 1;

constexpr Operand checkOperands[] = {{.name = "PROJECT"_L1,
                                      .text = "the projects to check"_L1,
                                      .least = 1,
                                      .most = anyNumber,
                                      .offer = Offer::Projects}};

constexpr Option checkOptions[] = {
    {.name = "group"_L1,
     .letter = 'g',
     .value = "NAME"_L1,
     .text = "of the warnings and notes, tell only those of this group"_L1,
     .words = warningGroupKeys,
     .isRepeatable = true},
    {.name = "json"_L1, .letter = 'j', .text = "answer in JSON, form ncx-check version 1"_L1},
    {.name = "strict"_L1, .letter = 's', .text = "let warnings count as errors do"_L1},
};

constexpr QLatin1StringView checkDetails[] = {
    "Each finding is told as FILE:LINE: error: object INDEX:SUBINDEX: ..., with the line in a project in text form, "
    "and "
    "below it what to do. Errors stop a generation; a warning belongs to a group, in brackets, which a project may "
    "suppress as a whole. A correction is what a generation would correct in the project by itself."_L1,
    "The exit code is 1 if there is an error, or with --strict a warning, and 2 if a project could not be opened."_L1,
};

constexpr Example checkExamples[] = {
    {"ncx check device.ncxt"_L1, "tells what is wrong, and where"_L1},
    {"ncx check --strict --group=WG_NAMING *.ncxt"_L1, "fails where a name is missing or used twice"_L1},
    {"ncx check --json device.ncxp"_L1, "the same for a program"_L1},
};

/// The findings that the call asks for: a group holds back the warnings and notes of others.
QList<ProjectFinding> wanted(const ProjectFindings &all, const QStringList &keys)
{
    QList<ProjectFinding> list;
    for (const ProjectFinding &finding : all.findings) {
        const QString key = finding.groupKey();
        if (keys.isEmpty() || key.isEmpty() || keys.contains(key, Qt::CaseInsensitive))
            list.append(finding);
    }
    return list;
}

/// What one project adds to the answer, and the exit code that it asks for.
int checkProject(const Invocation &call, const QString &path, QJsonArray &projects)
{
    const bool isJson = call.isSet("json"_L1);
    OpenedProject project;
    call.terminal().step(u"reading %1"_s.arg(path));
    if (!project.open(path)) {
        call.terminal().fail(u"%1: %2"_s.arg(path, project.reason()));
        projects.append(QJsonObject{{u"file"_s, path}, {u"failure"_s, project.reason()}});
        return CouldNot;
    }
    call.terminal().step(u"checking %1"_s.arg(path));
    ProjectFindings findings = ProjectFindings::of(project);
    if (project.store().isDamaged()) {
        const QString reason = u"it is broken: not all of it could be read"_s;
        call.terminal().fail(u"%1: %2"_s.arg(path, reason));
        projects.append(QJsonObject{{u"file"_s, path}, {u"failure"_s, reason}});
        return CouldNot;
    }
    findings.findings = wanted(findings, call.values("group"_L1));
    if (isJson)
        projects.append(findings.toJson(path));
    else
        FindingText::tellAll(call.terminal(), path, findings);
    const bool counts = findings.count(u"error"_s) > 0 || (call.isSet("strict"_L1) && findings.count(u"warning"_s) > 0);
    return counts ? Findings : Done;
}

int runCheck(const Invocation &call)
{
    QJsonArray projects;
    int result = Done;
    for (const QString &path : call.operands())
        result = std::max(result, checkProject(call, path, projects));
    if (call.isSet("json"_L1))
        call.terminal().write(QString::fromUtf8(
            QJsonDocument(
                QJsonObject{{u"format"_s, u"ncx-check"_s}, {u"version"_s, checkJsonVersion}, {u"projects"_s, projects}})
                .toJson()));
    return result;
}

} // namespace

constexpr Command Commands::check{
    .name = "check"_L1,
    .summary = "tell what is wrong with projects, without changing them"_L1,
    .operands = checkOperands,
    .options = checkOptions,
    .details = checkDetails,
    .examples = checkExamples,
    .run = runCheck,
};
