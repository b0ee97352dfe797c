// Checks a project and writes its files.

#include "ncx/commands/commands.h"
#include "ncx/commands/findingtext.h"
#include "ncx/findings/projectfindings.h"
#include "ncx/outputs/foldergeneration.h"
#include "ncx/project/openedproject.h"
#include "ncx/usage/invocation.h"
#include "store/databasemodifier.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

using Change = FolderGeneration::Change;
using File = FolderGeneration::File;

constexpr Operand generateOperands[] = {
    {.name = "PROJECT"_L1, .text = "the project to generate from"_L1, .offer = Offer::Projects}};

constexpr Option generateOptions[] = {
    {.name = "import"_L1,
     .letter = 'i',
     .value = "FILE"_L1,
     .text = "import this file into line 0 before; the project stays without it"_L1,
     .isRepeatable = true},
    {.name = "modifier"_L1,
     .letter = 'm',
     .value = "FILE"_L1,
     .text = "change settings by this modifier file before; the project keeps its own"_L1},
    {.name = "stack"_L1,
     .letter = 's',
     .value = "DIR"_L1,
     .text = "the folder of the protocol stack, in place of the one in the project"_L1},
    {.name = "user-section"_L1,
     .letter = 'u',
     .value = "FILE"_L1,
     .text = "the gen_define.h whose user-specific section the new one gets"_L1},
    {.name = "dry-run"_L1, .letter = 'n', .text = "write nothing; end with 1 if a file would change"_L1},
    {.name = "only"_L1,
     .letter = 'f',
     .value = "FILE"_L1,
     .text = "write only the files of this name or pattern"_L1,
     .isRepeatable = true},
    {.name = "out"_L1,
     .letter = 'o',
     .value = "DIR"_L1,
     .text = "the folder of the files; that of the project without it"_L1},
    {.name = "quiet"_L1, .letter = 'q', .text = "tell warnings and errors only"_L1},
};

constexpr QLatin1StringView generateDetails[] = {
    "Writes what a run of ncx_cli writes, into the folder of choice. A file in which nothing but the moment of its "
    "generation would change stays as it is, so that nothing is compiled anew without a reason. The project is not "
    "changed."_L1,
    "The project is checked first; if that finds errors, they are told as by 'ncx check', nothing is written, and the "
    "exit code is 1."_L1,
};

constexpr Example generateExamples[] = {
    {"ncx generate device.ncxt"_L1, "writes the sources and documents beside the project"_L1},
    {"ncx generate device.ncxt --out=generated --only='gen_*'"_L1,
     "writes the C sources into a folder of their own"_L1},
    {"ncx generate device.ncxt --modifier=axis2.txt --out=axis2"_L1, "generates a variant of the device"_L1},
    {"ncx generate --dry-run device.ncxt"_L1, "tells whether the files are those of the project, for a pipeline"_L1},
};

QString wordOf(Change change, bool isDry)
{
    switch (change) {
    case Change::New:
        return isDry ? u"would be new"_s : u"new"_s;
    case Change::Changed:
        return isDry ? u"would change"_s : u"changed"_s;
    case Change::Removed:
        return isDry ? u"would be removed"_s : u"removed"_s;
    case Change::None:
        break;
    }
    return u"unchanged"_s;
}

/// What the check has to say, what stops the generation first; notes only to who has not asked for quiet.
void tellFindings(const Invocation &call, const OpenedProject &project, const FolderGeneration &generation)
{
    ProjectFindings all = ProjectFindings::of(project, generation.findings());
    if (call.isSet("quiet"_L1))
        all.findings.removeIf([](const ProjectFinding &finding) { return finding.severity() == "note"_L1; });
    std::stable_partition(all.findings.begin(), all.findings.end(),
                          [](const ProjectFinding &finding) { return finding.severity() == "error"_L1; });
    for (const QString &text : FindingText::ofAll(call.terminal(), project.path(), all))
        call.terminal().tell(text);
}

/// The files that --only asks for; nothing, with that told, if one of its names fits none.
std::optional<QList<File>> wantedFiles(const Invocation &call, const QList<File> &files)
{
    const QStringList patterns = call.values("only"_L1);
    if (patterns.isEmpty())
        return files;
    QList<File> wanted;
    for (const QString &pattern : patterns) {
        const auto form = QRegularExpression::fromWildcard(pattern);
        const auto fits = [&form](const File &file) { return form.match(file.name).hasMatch(); };
        if (std::ranges::none_of(files, fits)) {
            QStringList names;
            for (const File &file : files)
                names.append(file.name);
            call.terminal().fail(
                u"no file of this project is named %1; there are %2"_s.arg(pattern, names.join(", "_L1)));
            return {};
        }
        std::ranges::copy_if(files, std::back_inserter(wanted), [&](const File &file) {
            return fits(file) && std::ranges::find(wanted, file.name, &File::name) == wanted.end();
        });
    }
    std::ranges::sort(wanted, {}, &File::name);
    return wanted;
}

/// Brings the files into their folder and tells of each. False, with that told, if that could not be.
bool install(const Invocation &call, FolderGeneration &generation, const QList<File> &files)
{
    const bool isDry = call.isSet("dry-run"_L1);
    if (const QString reason = isDry ? QString() : generation.install(files); !reason.isEmpty()) {
        call.terminal().fail(reason);
        return false;
    }
    for (const File &file : files) {
        if (!call.isSet("quiet"_L1) && (!isDry || file.change != Change::None))
            call.terminal().answer(u"%1: %2"_s.arg(file.name, wordOf(file.change, isDry)));
    }
    return true;
}

/// Why a file, which may be a pipe, cannot be read; empty if it can.
QString reasonAgainstFile(const QString &path)
{
    if (!QFileInfo::exists(path))
        return u"there is no such file"_s;
    if (QFileInfo(path).isDir())
        return u"it is a folder"_s;
    return QFileInfo(path).isReadable() ? QString() : u"it cannot be read"_s;
}

/// What a modifier file could not do; empty if it has been applied.
QString reasonAgainstModifier(const OpenedProject &project, const QString &path)
{
    if (QString reason = reasonAgainstFile(path); !reason.isEmpty())
        return reason;
    DatabaseModifier modifier;
    modifier.setDatabase(project.sharedStore());
    modifier.setModifierFile(path);
    return modifier.applyModifierFile() ? QString() : u"the project does not take '%1'"_s.arg(modifier.failedLine());
}

/// Makes of the opened project the variant that the options ask for. False, with that told, if one of its files is
/// none.
bool makeVariant(const Invocation &call, OpenedProject &project)
{
    Terminal &terminal = call.terminal();
    if (call.isSet("stack"_L1))
        project.handler().setStackPath(QDir(call.value("stack"_L1)).absolutePath());
    for (const QString &path : call.values("import"_L1)) {
        QString reason = reasonAgainstFile(path);
        if (reason.isEmpty() && !project.handler().importFile(path))
            reason = u"no importer takes it; 'ncx import' tells more"_s;
        if (!reason.isEmpty()) {
            terminal.fail(u"%1: %2"_s.arg(path, reason));
            return false;
        }
    }
    if (!call.isSet("modifier"_L1))
        return true;
    const QString reason = reasonAgainstModifier(project, call.value("modifier"_L1));
    if (!reason.isEmpty())
        terminal.fail(u"%1: %2"_s.arg(call.value("modifier"_L1), reason));
    return reason.isEmpty();
}

int runGenerate(const Invocation &call)
{
    Terminal &terminal = call.terminal();
    OpenedProject project;
    call.terminal().step(u"reading %1"_s.arg(call.operand()));
    if (!project.open(call.operand())) {
        terminal.fail(u"%1: %2"_s.arg(call.operand(), project.reason()));
        return CouldNot;
    }
    if (!makeVariant(call, project))
        return CouldNot;
    const QString folder = call.isSet("out"_L1) ? call.value("out"_L1) : project.handler().outputFolder();
    FolderGeneration generation(project, folder);
    if (const QString path = call.value("user-section"_L1);
        call.isSet("user-section"_L1) && !generation.takeUserSection(path)) {
        const QString reason = reasonAgainstFile(path);
        terminal.fail(u"%1: %2"_s.arg(path, reason.isEmpty() ? u"it cannot be copied"_s : reason));
        return CouldNot;
    }
    call.terminal().step(u"generating"_s);
    const FolderGeneration::Outcome outcome = generation.generate();
    tellFindings(call, project, generation);
    const auto tellMessages = [&] {
        for (const QString &message : generation.messages()) {
            if (outcome == FolderGeneration::Outcome::Failed)
                terminal.fail(message);
            else if (!call.isSet("quiet"_L1) || message.contains("arning"_L1))
                terminal.tell(message);
        }
    };
    tellMessages();
    if (outcome == FolderGeneration::Outcome::CheckFailed) {
        terminal.fail(u"%1 does not pass its check; nothing is written"_s.arg(call.operand()));
        return Findings;
    }
    if (outcome == FolderGeneration::Outcome::Failed)
        return CouldNot;

    const std::optional<QList<File>> files = wantedFiles(call, generation.files());
    if (!files || !install(call, generation, *files))
        return CouldNot;
    const bool changes = std::ranges::any_of(*files, [](const File &file) { return file.change != Change::None; });
    if (call.isSet("dry-run"_L1))
        return changes ? Findings : Done;
    const bool isFollowed = generation.followUp();
    tellMessages();
    return isFollowed ? Done : CouldNot;
}

} // namespace

constexpr Command Commands::generate{
    .name = "generate"_L1,
    .summary = "check a project and write its sources, descriptions and documents"_L1,
    .operands = generateOperands,
    .options = generateOptions,
    .details = generateDetails,
    .examples = generateExamples,
    .run = runGenerate,
};
