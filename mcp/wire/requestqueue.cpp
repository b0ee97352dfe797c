#include "mcp/wire/requestqueue.h"

#include "mcp/server/serversession.h"

#include <utility>

void RequestQueue::serve(ServerSession &session, const QByteArray &message, Answered answered, Told told)
{
    if (const auto cancelled = session.cancelledBy(message)) {
        session.cancel(*cancelled);
        waiting_.removeIf([&](const Waiting &one) {
            return one.session == &session && ServerSession::isRequest(one.message, *cancelled);
        });
        return;
    }
    waiting_.enqueue({&session, message, std::move(answered), std::move(told)});
    if (serving_)
        return;
    serving_ = true;
    while (!waiting_.isEmpty()) {
        const Waiting next = waiting_.dequeue();
        if (next.told)
            next.session->setNotify(next.told);
        if (const auto reply = next.session->answer(next.message))
            next.answered(*reply);
    }
    serving_ = false;
}

void RequestQueue::forget(const ServerSession &session)
{
    waiting_.removeIf([&session](const Waiting &one) { return one.session == &session; });
}
