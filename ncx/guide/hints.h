#pragma once

#include <QString>

class ToolCall;

/// What to do about a refusal of a tool, in sentences: which argument, which values it can have, which tool comes next.
QString hintFor(const ToolCall &call, const QString &refusal);
