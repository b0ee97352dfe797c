#pragma once

#include "mcp/http/httplistener.h"

#include <QMutex>
#include <QWaitCondition>

#include <chrono>

/// What a server says to one message, on its way from the thread that works to the one that has the connection. A
/// reply that comes soon is JSON; one that others come before, or that takes its time, is the end of a stream of
/// events.
class Exchange
{
public:
    /// After this time without a reply its stream begins, so that no client takes the connection for a dead one, and
    /// after each such time a remark in the stream says that it lives.
    explicit Exchange(std::chrono::milliseconds silence)
        : silence_(silence)
    {
    }

    /// Of the thread that works: that there will be an answer of the protocol; a message that comes before the reply;
    /// the reply; an answer that is none of the protocol's; the end, after which nothing comes.
    void accept();
    void notify(const QByteArray &message);
    void reply(const QByteArray &message);
    void refuse(const HttpResponse &response);
    void end();

    /// Of the thread that has the connection: waits for the answer, or until it is to be a stream. `isRequest` is false
    /// for a message that gets no reply.
    static HttpResponse answer(const std::shared_ptr<Exchange> &exchange, bool isRequest);

private:
    bool waitForNews();
    std::optional<QByteArray> nextEvent();

    std::chrono::milliseconds silence_;
    QMutex mutex_;
    QWaitCondition changed_;
    QByteArrayList messages_;
    std::optional<HttpResponse> refusal_;
    bool isAccepted_ = false;
    bool isReplied_ = false;
    bool isEnded_ = false;
};

/// The end of an exchange that whoever is to answer holds: when it goes, whatever the reason, the client is told that
/// nothing comes any more.
class OpenExchange
{
public:
    explicit OpenExchange(std::shared_ptr<Exchange> exchange)
        : exchange_(std::move(exchange))
    {
    }
    ~OpenExchange() { exchange_->end(); }
    Q_DISABLE_COPY_MOVE(OpenExchange)

    const std::shared_ptr<Exchange> &operator->() const { return exchange_; }
    const std::shared_ptr<Exchange> &shared() const { return exchange_; }

private:
    std::shared_ptr<Exchange> exchange_;
};
