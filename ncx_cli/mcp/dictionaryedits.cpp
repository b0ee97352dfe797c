#include "ncx_cli/mcp/toolfamilies.h"

std::span<const Tool> ToolFamilies::dictionaryEdits()
{
    return {};
}
