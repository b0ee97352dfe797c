#pragma once

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QPair>
#include <QTcpSocket>

#include <functional>

namespace TestSupport {

struct HttpAnswer
{
    int status = 0;                       ///< 0 if the connection ended without an answer
    QMap<QByteArray, QByteArray> headers; ///< by their names in lower case
    QByteArray body;

    /// The messages of a stream of events, or the one of a plain body.
    QByteArrayList messages() const;
};

/// A client that speaks HTTP as plainly as can be, in the thread that calls it: what the official one would never send
/// is sent as well. A connection has one request.
class HttpDriver
{
public:
    using Headers = QList<QPair<QByteArray, QByteArray>>;

    HttpDriver(quint16 port, const QByteArray &token);

    /// Headers of a good request, the session's among them once there is one.
    Headers headers() const;
    /// Sends a request with these headers, and waits for the answer.
    HttpAnswer send(const QByteArray &method, const QByteArray &path, const Headers &headers,
                    const QByteArray &body = {});
    /// Sends a message as a good client does.
    HttpAnswer post(const QByteArray &message) { return send("POST", "/mcp", headers(), message); }
    HttpAnswer endSession() { return send("DELETE", "/mcp", headers()); }
    /// Begins a session and remembers it.
    HttpAnswer initialize();
    /// Sends a message, and after a while goes away without an answer.
    void postAndVanish(const QByteArray &message, const std::function<void()> &aWhile);

    QByteArray session;

private:
    static void write(QTcpSocket &socket, const QByteArray &method, const QByteArray &path, const Headers &headers,
                      const QByteArray &body);

    quint16 port_;
    QByteArray token_;
};

} // namespace TestSupport
