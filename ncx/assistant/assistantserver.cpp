#include "ncx/assistant/assistantserver.h"

#include "mcp/tools/toolfamilies.h"
#include "ncx/assistant/assistantfamilies.h"
#include "ncx/assistant/assistantform.h"
#include "ncx/assistant/assistantsession.h"
#include "ncx/guide/guide.h"

using namespace Qt::StringLiterals;

namespace {

constexpr auto instructions =
    "Design tool for embedded CAN devices (CANopen, J1939, raw CAN): a project describes one device, is checked, and "
    "C sources, device descriptions and documents are generated from it.\n"
    "Begin with new_project or open_project; add objects, messages and settings; read what each edit tells of the "
    "check; "
    "generate when check_model has no errors; save_project. Edits are in a working copy until then, undo takes them "
    "back.\n"
    "While a device is being built, findings are normal: a PDO may be there before its mapping. Object indices are "
    "given "
    "in decimal (24640 for 0x6040). Take objects from a reference profile (list_profiles, import_profile_indices) "
    "rather "
    "than writing them by hand. The resources ncx://docs/... tell whole ways with examples.\n"_L1;

constexpr QLatin1StringView revisions[] = {"2025-11-25"_L1, "2025-06-18"_L1, "2025-03-26"_L1, "2024-11-05"_L1};
constexpr QLatin1StringView capabilities[] = {"tools"_L1, "resources"_L1, "prompts"_L1};

constexpr Method methods[] = {
    {"initialize"_L1, Methods::initialize},      {"ping"_L1, Methods::ping},
    {"tools/list"_L1, Methods::listTools},       {"tools/call"_L1, Methods::callTool},
    {"resources/list"_L1, Guide::listResources}, {"resources/templates/list"_L1, Guide::listResourceTemplates},
    {"resources/read"_L1, Guide::readResource},  {"prompts/list"_L1, Guide::listPrompts},
    {"prompts/get"_L1, Guide::getPrompt},
};

constexpr ToolFamily families[] = {
    AssistantFamilies::project,    AssistantFamilies::files, AssistantFamilies::reading,
    AssistantFamilies::journal,    ToolFamilies::lines,      ToolFamilies::lineEdits,
    AssistantFamilies::lines,      ToolFamilies::dictionary, ToolFamilies::dictionaryEdits,
    AssistantFamilies::dictionary, ToolFamilies::profiles,   ToolFamilies::j1939,
    ToolFamilies::rawCan,          AssistantFamilies::lists, ToolFamilies::settings,
    AssistantFamilies::settings,
};

} // namespace

ServerForm assistantServer(const Roots &roots)
{
    return {
        .name = "ncx"_L1,
        .instructions = instructions,
        .revisions = revisions,
        .capabilities = capabilities,
        .methods = methods,
        .families = families,
        .answers = AssistantForm::form,
        .makeProject = [roots] { return std::make_unique<AssistantSession>(roots); },
        .hearsCancellation = true,
    };
}
