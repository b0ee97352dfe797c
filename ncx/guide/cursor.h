#pragma once

#include "mcp/call/reply.h"

/// The pages of a list of the protocol: a client hands the cursor of one page back to have the next.
namespace Cursor {

/// The page of `entries` that the parameters ask for, as the result's member of that name.
Reply page(const QJsonArray &entries, const QString &member, const QJsonObject &params);

} // namespace Cursor
