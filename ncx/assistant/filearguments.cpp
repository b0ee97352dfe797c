#include "ncx/assistant/filearguments.h"

#include "mcp/call/tool.h"
#include "ncx/assistant/assistantsession.h"

using namespace Qt::StringLiterals;

std::optional<Reply> FileArguments::pathIsInside(const ToolCall &call)
{
    for (const QLatin1StringView name : {path.name, outputPath.name}) {
        if (!call.has(name))
            continue;
        if (call.text(name).isEmpty())
            return Reply::invalidParams(u"Argument \"%1\" must not be empty."_s.arg(name));
        if (const QString refusal = sessionOf(call).roots().refusal(call.text(name)); !refusal.isEmpty())
            return Reply::refusal(u"Argument: %1. "_s.arg(name) + refusal);
    }
    return {};
}
