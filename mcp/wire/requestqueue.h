#pragma once

#include <QByteArray>
#include <QQueue>

#include <functional>

class ServerSession;

/// Serves the messages of all sessions of a process one at a time and in the order in which they came: a tool that runs
/// an event loop lets further ones in, and they wait until it has answered.
class RequestQueue
{
public:
    /// Receives the reply; not called for a message that gets none.
    using Answered = std::function<void(const QByteArray &reply)>;
    /// Receives what comes before the reply; unset where the session has one receiver for all of that.
    using Told = std::function<void(const QByteArray &message)>;

    /// Takes a message; without another one under way, it is answered before this returns. One that takes a request
    /// back is heard at once.
    void serve(ServerSession &session, const QByteArray &message, Answered answered, Told told = {});
    /// True while a request is under way.
    bool isServing() const { return serving_; }
    /// Forgets what waits of a session whose client has gone. One that is under way goes on to its end, and its session
    /// has to live until then.
    void forget(const ServerSession &session);

private:
    struct Waiting
    {
        ServerSession *session;
        QByteArray message;
        Answered answered;
        Told told;
    };

    QQueue<Waiting> waiting_;
    bool serving_ = false;
};
