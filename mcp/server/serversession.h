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
    /// Takes messages to the client that are no replies, each with a line feed.
    void setNotify(std::function<void(const QByteArray &)> notify) { notify_ = std::move(notify); }

    /// The id of the request that a message takes back, as JSON; nothing for another message, and where the server
    /// does not hear of that.
    std::optional<QJsonValue> cancelledBy(const QByteArray &message) const;
    /// Takes a request back if it is under way: what it has done by then is undone, as far as its tool can.
    void cancel(const QJsonValue &id);
    /// True for the request of that id.
    static bool isRequest(const QByteArray &message, const QJsonValue &id);

private:
    Reply dispatch(const QString &method, const QJsonObject &params);
    void beginRequest(const QJsonObject &request);

    const ServerForm &form_;
    const AnswerForm &answers_;
    std::unique_ptr<ProjectSession> project_;
    std::unique_ptr<ToolCatalogue> catalogue_;
    std::function<void(const QByteArray &)> notify_ = [](const QByteArray &) {};
    QJsonValue underWay_; ///< id of the request
};
