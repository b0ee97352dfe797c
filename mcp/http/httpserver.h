#pragma once

#include "mcp/http/exchange.h"
#include "mcp/http/httpguard.h"
#include "mcp/wire/requestqueue.h"

#include <QObject>
#include <QTimer>

#include <map>
#include <memory>
#include <vector>

struct ServerForm;

/// How much a server over HTTP takes upon itself.
struct HttpLimits
{
    qsizetype maxBody = 8 << 20; ///< bytes of a message
    qsizetype maxSessions = 16;
    std::chrono::milliseconds idle = std::chrono::hours(2);       ///< without a message a session ends
    std::chrono::milliseconds silence = std::chrono::seconds(10); ///< of an `Exchange`
};

/// Serves clients of this machine over Streamable HTTP: each has a session of its own, with a project of its own, which
/// it names in its messages. They are answered one at a time in the thread of this object, as on the streams; only
/// waiting for the answers is done in threads of the listener.
class HttpServer : public QObject
{
    Q_OBJECT

public:
    HttpServer(const ServerForm &form, const HttpLimits &limits, QObject *parent = nullptr);
    ~HttpServer() override;
    Q_DISABLE_COPY_MOVE(HttpServer)

    /// Takes a port, a free one for 0, and begins to answer clients that show the token. The reason against it, a
    /// sentence with the next step, or empty.
    QString start(quint16 port, const QByteArray &token);
    quint16 port() const { return port_; }

    /// A text of 256 random bits that fits a header.
    static QByteArray secret();

public Q_SLOTS:
    /// Takes nothing any more, and ends once what is under way, which is cancelled, has come to its end.
    void end();

Q_SIGNALS:
    void finished();

private:
    struct Client;
    struct Message;

    HttpResponse answer(const HttpRequest &request);
    HttpResponse handOver(const Message &message);
    void receive(const Message &message, const std::shared_ptr<OpenExchange> &open);
    Client *clientOf(const Message &message, const std::shared_ptr<OpenExchange> &open);
    void endSession(const QByteArray &id);
    void endIdleSessions();
    void afterServing();

    const ServerForm &form_;
    HttpLimits limits_;
    quint16 port_ = 0;
    std::unique_ptr<HttpGuard> guard_;
    std::unique_ptr<HttpListener> listener_;
    std::map<QByteArray, std::unique_ptr<Client>> clients_;
    std::vector<std::unique_ptr<Client>> ended_; ///< that wait for a request under way
    RequestQueue queue_;
    QTimer idleTimer_;
    QMutex closing_;
    bool isClosed_ = false;
};
