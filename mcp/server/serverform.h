#pragma once

#include "mcp/call/answerform.h"
#include "mcp/server/toolcatalogue.h"

#include <functional>
#include <memory>
#include <span>

class ServerSession;

/// A method of the protocol that a server has an answer to.
struct Method
{
    QLatin1StringView name;
    Reply (*answer)(ServerSession &session, const QJsonObject &params);
};

/// What tells one server from another, as data: how it introduces itself, which methods and families of tools it has,
/// and which form its answers take.
struct ServerForm
{
    QLatin1StringView name;
    QLatin1StringView instructions; ///< clients hand them to their model
    /// Revisions of the protocol, the newest first. A client gets the one that it asks for, or else the first.
    std::span<const QLatin1StringView> revisions;
    std::span<const QLatin1StringView> capabilities;
    std::span<const Method> methods;
    std::span<const ToolFamily> families;
    const AnswerForm &(*answers)();
    /// Makes what the tools of one client work on.
    std::function<std::unique_ptr<ProjectSession>()> makeProject;
    /// Whether a client can take a request back, as notifications/cancelled has it.
    bool hearsCancellation = false;
};

/// The methods that are there to be named in a form.
namespace Methods {

Reply initialize(ServerSession &session, const QJsonObject &params);
Reply ping(ServerSession &session, const QJsonObject &params);
Reply listTools(ServerSession &session, const QJsonObject &params);
Reply callTool(ServerSession &session, const QJsonObject &params);
Reply listResources(ServerSession &session, const QJsonObject &params);
Reply readResource(ServerSession &session, const QJsonObject &params);

} // namespace Methods
