#pragma once

#include "mcp/call/reply.h"

class ServerSession;

/// Methods of the protocol that tell an assistant how to work: documents as resources, and prompts for whole tasks.
/// Lists come in pages, with a cursor to the next one.
namespace Guide {

/// The documents, then the reference profiles.
Reply listResources(ServerSession &session, const QJsonObject &params);
Reply listResourceTemplates(ServerSession &session, const QJsonObject &params);
Reply readResource(ServerSession &session, const QJsonObject &params);

Reply listPrompts(ServerSession &session, const QJsonObject &params);
Reply getPrompt(ServerSession &session, const QJsonObject &params);

} // namespace Guide
