#pragma once

#include "mcp/call/tool.h"

/// The tests that tools share. Each is named after what must hold, and answers in its own words where it does not.
namespace Guards {

/// A project was opened. Comes before everything else.
std::optional<Reply> projectIsOpen(const ToolCall &call);
/// All required arguments are there. The schema has seen to that for calls over the wire.
std::optional<Reply> keysAreGiven(const ToolCall &call);
/// No write has failed halfway: what such a store still says of the project is not the project.
std::optional<Reply> storeIsWhole(const ToolCall &call);
/// The store is there and whole.
std::optional<Reply> storeIsReachable(const ToolCall &call);

std::optional<Reply> lineExists(const ToolCall &call);
/// The build knows CANopen, and `line` speaks it. A line that does not exist has type code 0, so this one refuses it.
std::optional<Reply> lineIsCANopen(const ToolCall &call);
/// The build knows J1939, and `line` speaks it.
std::optional<Reply> lineIsJ1939(const ToolCall &call);
/// `line` speaks raw CAN, alone or beside another protocol, and the build knows that combination.
std::optional<Reply> lineIsRawCAN(const ToolCall &call);
/// The build knows CANopen, and there is a folder of reference profiles.
std::optional<Reply> profilesAreServed(const ToolCall &call);

/// The same as `lineIsCANopen` for a line under another name.
std::optional<Reply> canOpenRefusal(const ToolCall &call, quint8 line);

} // namespace Guards
