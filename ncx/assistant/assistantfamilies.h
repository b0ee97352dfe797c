#pragma once

#include "mcp/call/tool.h"

#include <span>

/// The families of tools that this server has beside those of `ToolFamilies`, whose tools of the same name they
/// replace.
namespace AssistantFamilies {

std::span<const Tool> project();    ///< projecttools.cpp
std::span<const Tool> files();      ///< filetools.cpp
std::span<const Tool> reading();    ///< readingtools.cpp
std::span<const Tool> lists();      ///< listtools.cpp
std::span<const Tool> lines();      ///< linetools.cpp
std::span<const Tool> dictionary(); ///< dictionarytools.cpp
std::span<const Tool> settings();   ///< settingtools.cpp
std::span<const Tool> journal();    ///< journaltools.cpp

} // namespace AssistantFamilies
