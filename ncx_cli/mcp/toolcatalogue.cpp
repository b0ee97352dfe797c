#include "ncx_cli/mcp/toolcatalogue.h"

#include "ncx_cli/mcp/tools/toolfamilies.h"

namespace {

constexpr std::span<const Tool> (*families[])() = {
    ToolFamilies::project,   ToolFamilies::lines,           ToolFamilies::dictionary,
    ToolFamilies::lineEdits, ToolFamilies::dictionaryEdits, ToolFamilies::profiles,
    ToolFamilies::j1939,     ToolFamilies::rawCan,          ToolFamilies::settings,
};

} // namespace

ToolCatalogue::ToolCatalogue()
{
    for (const auto family : families) {
        for (const Tool &tool : family()) {
            descriptors_.append(tool.descriptor());
            tools_.insert(tool.name, &tool);
        }
    }
}
