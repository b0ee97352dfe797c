#pragma once

#include "mcp/call/tool.h"

#include <span>

/// The families of tools: each table stands beside its handlers in a file of its own.
///
/// To add a tool, write its handler and its row into the table of its family. To add a family, write a file with a
/// table, declare its function here and name it in the list of each server that has it (`ServerForm`), whose order is
/// that of the catalogue.
///
///     constexpr Tool lineEditTools[] = {
///         {"delete_line"_L1, "Delete a line ...",
///          {Arguments::line},                                   // required arguments
///          {},                                                  // optional ones
///          {projectIsOpen, keysAreGiven, storeIsReachable, lineExists},
///          deleteLine},
///     };
///     std::span<const Tool> ToolFamilies::lineEdits() { return lineEditTools; }
///
/// A handler is a function from a `ToolCall` to a `Reply`. It runs when the row's guards have let the call pass; one
/// that changes the project answers with `ToolCall::edited`.
namespace ToolFamilies {

std::span<const Tool> project();         ///< projecttools.cpp
std::span<const Tool> lines();           ///< linetools.cpp
std::span<const Tool> lineEdits();       ///< linetools.cpp
std::span<const Tool> dictionary();      ///< dictionarytools.cpp
std::span<const Tool> dictionaryEdits(); ///< dictionaryedits.cpp
std::span<const Tool> profiles();        ///< profiletools.cpp
std::span<const Tool> j1939();           ///< j1939tools.cpp
std::span<const Tool> rawCan();          ///< rawcantools.cpp
std::span<const Tool> settings();        ///< settingstools.cpp

} // namespace ToolFamilies
