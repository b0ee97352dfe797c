#include "mcp/http/exchange.h"

#include <QDeadlineTimer>
#include <QMutexLocker>

namespace {

QByteArray event(const QByteArray &message)
{
    return "event: message\ndata: " + message.trimmed() + "\n\n";
}

} // namespace

void Exchange::accept()
{
    const QMutexLocker locker(&mutex_);
    isAccepted_ = true;
    changed_.wakeAll();
}

void Exchange::notify(const QByteArray &message)
{
    const QMutexLocker locker(&mutex_);
    messages_.append(message);
    changed_.wakeAll();
}

void Exchange::reply(const QByteArray &message)
{
    const QMutexLocker locker(&mutex_);
    messages_.append(message);
    isReplied_ = true;
    changed_.wakeAll();
}

void Exchange::refuse(const HttpResponse &response)
{
    const QMutexLocker locker(&mutex_);
    refusal_ = response;
    changed_.wakeAll();
}

void Exchange::end()
{
    const QMutexLocker locker(&mutex_);
    isEnded_ = true;
    changed_.wakeAll();
}

/// With the mutex held; false if nothing has come in this time.
bool Exchange::waitForNews()
{
    const QDeadlineTimer deadline(silence_);
    while (messages_.isEmpty() && !refusal_ && !isEnded_) {
        if (!changed_.wait(&mutex_, deadline))
            return false;
    }
    return true;
}

HttpResponse Exchange::answer(const std::shared_ptr<Exchange> &exchange, bool isRequest)
{
    const QMutexLocker locker(&exchange->mutex_);
    while (!exchange->isAccepted_ && !exchange->refusal_ && !exchange->isEnded_)
        exchange->changed_.wait(&exchange->mutex_);
    if (isRequest)
        exchange->waitForNews();
    if (exchange->refusal_)
        return *exchange->refusal_;
    // Nothing comes of it, so nobody waits for that.
    if (!isRequest)
        return {.status = 202};
    HttpResponse response;
    if (exchange->isReplied_ && exchange->messages_.size() == 1) {
        response.headers.insert("Content-Type", "application/json");
        response.body = exchange->messages_.takeFirst().trimmed();
    } else {
        response.headers.insert("Content-Type", "text/event-stream");
        response.headers.insert("Cache-Control", "no-cache");
        // To what was taken back nothing is said, and nothing is to be waited for.
        if (!exchange->isEnded_ || !exchange->messages_.isEmpty())
            response.nextPart = [exchange] { return exchange->nextEvent(); };
    }
    return response;
}

std::optional<QByteArray> Exchange::nextEvent()
{
    const QMutexLocker locker(&mutex_);
    if (!waitForNews())
        return ":\n\n";
    if (messages_.isEmpty())
        return {};
    return event(messages_.takeFirst());
}
