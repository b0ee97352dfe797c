#pragma once

#include "mcp/server/serverform.h"
#include "mcp/session/projectsession.h"

#include <QByteArray>

#include <optional>

/// One client's session with a server: its own open project, and answers to its messages. It knows nothing of how
/// these come and go; a transport has a session for each of its clients, and a `RequestQueue` for all of them.
class ServerSession
{
public:
    explicit ServerSession(const ServerForm &form);
    ~ServerSession();
    Q_DISABLE_COPY_MOVE(ServerSession)

    const ServerForm &form() const { return form_; }
    const AnswerForm &answers() const { return answers_; }
    ProjectSession &project() { return *project_; }
    const ToolCatalogue &catalogue();

    /// The reply to a message, one JSON-RPC 2.0 object as text; nothing for one that gets none.
    std::optional<QByteArray> answer(const QByteArray &message);

private:
    Reply dispatch(const QString &method, const QJsonObject &params);

    const ServerForm &form_;
    const AnswerForm &answers_;
    std::unique_ptr<ProjectSession> project_;
    std::unique_ptr<ToolCatalogue> catalogue_;
};
