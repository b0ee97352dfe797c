#pragma once

#include <QByteArray>
#include <QMultiMap>

#include <functional>
#include <optional>

/// A request as it came over HTTP/1.1.
struct HttpRequest
{
    QByteArray method;
    QByteArray path;                           ///< without the query
    QMultiMap<QByteArray, QByteArray> headers; ///< by their names in lower case
    QByteArray body;

    /// The value of a header; several ones with commas between them, empty where it is missing.
    QByteArray header(const QByteArray &name) const { return headers.values(name).join(", "); }
};

/// What is answered to a request.
struct HttpResponse
{
    int status = 200;
    QMultiMap<QByteArray, QByteArray> headers = {};
    QByteArray body = {};
    /// Waits for the next part of a body whose length nobody knows yet, and returns nothing at its end; unset for a
    /// body that is there.
    std::function<std::optional<QByteArray>()> nextPart = {};
};

/// Takes connections of programs on this machine, and no others. It is implemented in a module of its own, which alone
/// opens sockets, and which a program loads when it is asked to listen.
class HttpListener
{
public:
    /// Both are called in threads of the listener, several at a time.
    struct Handlers
    {
        /// Looks at a request whose body has not been read; what comes is the answer to one that goes no further.
        std::function<std::optional<HttpResponse>(const HttpRequest &)> refusal;
        std::function<HttpResponse(const HttpRequest &)> answer;
    };

    HttpListener() = default;
    virtual ~HttpListener() = default;
    Q_DISABLE_COPY_MOVE(HttpListener)

    /// Takes a port of 127.0.0.1, a free one for 0, and returns it; nothing if another program has it, or if the user
    /// may not.
    virtual std::optional<quint16> open(quint16 port) = 0;
    /// Begins to answer. A body of more bytes than `maxBody` is refused.
    virtual void start(Handlers handlers, qsizetype maxBody) = 0;
    /// Ends once all that is under way has been answered.
    virtual void close() = 0;
};

/// What the module is asked for: a new listener.
using MakeHttpListener = HttpListener *(*)();
inline constexpr const char *makeHttpListenerName = "ncxMakeHttpListener";
