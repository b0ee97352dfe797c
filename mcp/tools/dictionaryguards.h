#pragma once

#include "mcp/call/tool.h"

/// Tests and refusals about the object that `line`, `index` and `sub` of a call address.
namespace DictionaryGuards {

Reply noIndex(const ToolCall &call);
Reply noSubindex(const ToolCall &call);

std::optional<Reply> indexExists(const ToolCall &call);
std::optional<Reply> indexIsNew(const ToolCall &call);
std::optional<Reply> subindexExists(const ToolCall &call);
std::optional<Reply> subindexIsNew(const ToolCall &call);

} // namespace DictionaryGuards
