#pragma once

#include "mcp/server/serversession.h"
#include "mcp/wire/requestqueue.h"

#include <QObject>

#include <memory>

class MCPStdinReader;

/// Serves one client over standard input and output: each line of the input is a message, each reply a line of the
/// output. The server ends with its input.
class StreamServer : public QObject
{
    Q_OBJECT

public:
    explicit StreamServer(const ServerForm &form, QObject *parent = nullptr);
    ~StreamServer() override;
    Q_DISABLE_COPY_MOVE(StreamServer)

    ServerSession &session() { return session_; }
    /// Begins to read.
    void start();

Q_SIGNALS:
    /// The input has ended and all that came before is answered.
    void finished();

private:
    void onLineReceived(const QByteArray &line);
    void onInputEnded();

    ServerSession session_;
    RequestQueue queue_;
    std::unique_ptr<MCPStdinReader> reader_;
    bool inputEnded_ = false;
};
