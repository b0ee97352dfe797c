#pragma once

#include "mcp/call/property.h"
#include "mcp/call/reply.h"

#include <optional>

class ToolCall;

/// Arguments that name files and folders, and the guard that keeps them inside of the folders of the server.
namespace FileArguments {

inline constexpr Property path =
    Properties::string(QLatin1StringView("path"), QLatin1StringView("File path, inside of the folders of this server"));
inline constexpr Property outputPath = Properties::string(
    QLatin1StringView("outputPath"), QLatin1StringView("Folder for the files (default: that of the project)"));

std::optional<Reply> pathIsInside(const ToolCall &call);

} // namespace FileArguments
