// The project as a whole: open, import, generate, save, check.

#include "mcp/session/projectsession.h"
#include "mcp/tools/guards.h"
#include "mcp/tools/toolfamilies.h"
#include "store/objectdatabase.h"

#include <QFileInfo>

using namespace Qt::StringLiterals;
using namespace Guards;

namespace {

constexpr Property path = Properties::string("path"_L1, "Absolute file path"_L1);
constexpr Property disableCheck =
    Properties::boolean("disableCheck"_L1, "Skip model consistency check (default: false)"_L1);
constexpr Property outputPath = Properties::string(
    "outputPath"_L1, "Absolute directory to write generated files into (default: the open project's own directory)"_L1);

/// Runs an operation and returns what it said, without what was left over from before.
template <typename Operation>
QString captured(const ToolCall &call, Operation operation)
{
    MCPOutputHandler &output = call.session().output();
    output.takeOutput();
    operation(call.session().handler());
    return output.takeOutput();
}

std::optional<Reply> pathIsGiven(const ToolCall &call)
{
    if (!call.text(path.name).isEmpty())
        return {};
    return Reply::invalidParams(u"Missing required argument: path"_s);
}

Reply openProject(const ToolCall &call)
{
    const QString file = call.text(path.name);
    call.session().setProjectOpen(false);
    bool opened = false;
    QString messages = captured(call, [&](GeneratorMainHandler &handler) { opened = handler.openProject(file); });
    call.session().setProjectOpen(opened);
    if (!opened && QFileInfo::exists(file) && call.store().isDamaged())
        messages += u"The working copy of the project cannot be written (is the disk full?)."_s;
    const QString outcome = opened ? u"Project opened: %1\n%2"_s : u"Failed to open project: %1\n%2"_s;
    return Reply::text(outcome.arg(file, messages), !opened);
}

Reply importFile(const ToolCall &call)
{
    const QString file = call.text(path.name);
    bool imported = false;
    const QString messages =
        captured(call, [&](GeneratorMainHandler &handler) { imported = handler.importFile(file); });
    if (auto refusal = storeIsWhole(call))
        return *refusal;
    const QString outcome = imported ? u"Import successful: %1\n%2"_s : u"Import failed: %1\n%2"_s;
    return Reply::text(outcome.arg(file, messages), !imported);
}

/// Writes into another folder where one is given; it counts for this run alone.
void generateInto(const ToolCall &call, GeneratorMainHandler &handler)
{
    const QString usualFolder = handler.outputFolder();
    if (call.has(outputPath.name))
        handler.setOutputFolder(call.text(outputPath.name));
    call.session().setReadingEnabled(false);
    handler.generate(call.flag(disableCheck.name));
    call.session().setReadingEnabled(true);
    handler.setOutputFolder(usualFolder);
}

Reply generate(const ToolCall &call)
{
    const QString messages = captured(call, [&](GeneratorMainHandler &handler) { generateInto(call, handler); });
    if (auto refusal = storeIsWhole(call))
        return *refusal;
    const bool failed = call.session().generatorResult() != GeneratorMainHandler::GenerationDone;
    return Reply::text((failed ? u"Generation failed.\n"_s : u"Generation completed.\n"_s) + messages, failed);
}

/// Says "saved" in any case; a failure stands in the messages.
Reply saveProject(const ToolCall &call)
{
    const QString messages = captured(call, [](GeneratorMainHandler &handler) { handler.saveProject(); });
    return Reply::text(u"Project saved.\n"_s + messages);
}

/// The one tool that marks a valid answer as a failure, when there are errors.
Reply checkModel(const ToolCall &call)
{
    QStringList messages;
    const qint32 errors = call.session().handler().checkModel(messages);
    return Reply::json({{u"errorCount"_s, errors}, {u"errors"_s, QJsonArray::fromStringList(messages)}}, errors != 0);
}

constexpr Tool projectTools[] = {
    {"open_project"_L1, "Open a .ncxp project file"_L1, {path}, {}, {keysAreGiven, pathIsGiven}, openProject},
    {"import_file"_L1,
     "Import a file into the currently open project. Format is auto-detected: .csv, .eds, .dcf, a .txt file whose name "
     "contains \"doc\" (text documentation), or .ncxp (merges matching-line-type entities from another native "
     "project). XDD/DBC/CODB/J1939-XLSX import exist in the source tree but are not compiled into this build (see "
     "ncx_cli/MCP_PLAN.md Phase 6)."_L1,
     {path},
     {},
     {projectIsOpen, keysAreGiven, pathIsGiven, storeIsWhole},
     importFile},
    {"generate"_L1,
     "Run the generator pipeline on the currently open project - always generates every output applicable to the "
     "project's line type(s), there is no per-format selection."_L1,
     {},
     {disableCheck, outputPath},
     {projectIsOpen, storeIsWhole},
     generate},
    {"save_project"_L1, "Save the currently open project to disk"_L1, {}, {}, {projectIsOpen}, saveProject},
    {"check_model"_L1,
     "Run the model consistency check on the currently open project, without generating output"_L1,
     {},
     {},
     {projectIsOpen, storeIsWhole},
     checkModel},
};

} // namespace

std::span<const Tool> ToolFamilies::project()
{
    return projectTools;
}
