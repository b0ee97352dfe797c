#pragma once

#include "mcp/wire/streamserver.h"

#include <QStringList>

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

    const QString &buildId() const { return buildId_; }
    ProjectSession &session() { return server_.session().project(); }
    /// The reply to a message; nothing for one that gets none.
    std::optional<QByteArray> answer(const QByteArray &message) { return server_.session().answer(message); }

    /// The server as data.
    static const ServerForm &form();

public Q_SLOTS:
    /// Begins to read; in a build that cannot serve, ends the event loop with exit code 1.
    void start();

Q_SIGNALS:
    /// The input has ended and all that came before is answered.
    void finished();

private:
    QStringList arguments_;
    QString buildId_;
    StreamServer server_;
};
