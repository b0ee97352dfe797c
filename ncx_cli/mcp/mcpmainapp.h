#pragma once

#include "ncx_cli/mcp/call/reply.h"
#include "ncx_cli/mcp/session/projectsession.h"

#include <QQueue>
#include <QStringList>

class MCPStdinReader;
class ToolCatalogue;

/// The server mode: a Model Context Protocol server for one client on standard input and output.
///
/// Each line of the input is a JSON-RPC 2.0 message, each reply a line of compact JSON. Requests are served one at a
/// time in their order; what comes while one is under way waits. Notifications, lines that are no JSON object and empty
/// lines get no answer. The server ends with its input; what was not saved by then stays unsaved.
class MCPMainApp : public QObject
{
    Q_OBJECT

public:
    /// `arguments` are the process's, as given; of them "-codbpath FOLDER" counts.
    MCPMainApp(QStringList arguments, QString buildId, QObject *parent = nullptr);
    ~MCPMainApp() override;
    Q_DISABLE_COPY_MOVE(MCPMainApp)

    const QString &buildId() const { return buildId_; }
    ProjectSession &session() { return session_; }

    /// The reply to a message; nothing for one that gets none.
    std::optional<QByteArray> answer(const QByteArray &message);
    /// The reply to a method of the protocol.
    Reply dispatch(const QString &method, const QJsonObject &params);

public Q_SLOTS:
    /// Begins to read; in a build that cannot serve, ends the event loop with exit code 1.
    void start();
    void onLineReceived(const QByteArray &line);

Q_SIGNALS:
    /// The input has ended and all that came before is answered.
    void finished();

private:
    Reply callTool(const QJsonObject &params);
    const ToolCatalogue &catalogue();
    void onInputEnded();

    QStringList arguments_;
    QString buildId_;
    ProjectSession session_;
    std::unique_ptr<MCPStdinReader> reader_;
    std::unique_ptr<ToolCatalogue> catalogue_;
    QQueue<QByteArray> waiting_;
    bool serving_ = false; ///< a request is under way, perhaps with an event loop of its own
    bool inputEnded_ = false;
};
