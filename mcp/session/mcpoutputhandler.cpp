#include "mcp/session/mcpoutputhandler.h"

#include <utility>

void MCPOutputHandler::message(const QVariant &value)
{
    captured_.append(withoutMarkup(value.toString()) + u'\n');
}

QString MCPOutputHandler::takeOutput()
{
    return std::exchange(captured_, QString());
}
