#pragma once

#include <QList>
#include <QMutex>

#include <atomic>

/// Keeps threads off the store's one connection while a job uses it.
///
/// While the gate is closed only the threads that closed it pass; others wait with their event loop turning. It opens
/// when the last of them has opened it, or at once for a thread that did not close it. The gate also counts the
/// statements under way, so that closing the connection can wait for them.
class StoreGate
{
public:
    /// Lets the calling thread pass from now on and closes the gate for all others.
    void close();
    /// Ends what the calling thread has closed; where others have closed the gate, too, it stays closed for them. A
    /// thread that has not closed it ends what the others have, and none of them passes any more when it closes again;
    /// an `open` of theirs that comes later has nothing left to end.
    void open();
    /// Waits until no statement is under way, at most `milliseconds`.
    void waitUntilIdle(int milliseconds) const;

    /// A statement's passage through the gate: waits in the constructor, ends the count in the destructor.
    class Passage
    {
    public:
        explicit Passage(StoreGate &gate);
        ~Passage();
        Q_DISABLE_COPY_MOVE(Passage)

    private:
        StoreGate &gate_;
    };

private:
    bool mayPass() const;

    std::atomic<bool> closed_ = false;
    std::atomic<int> inFlight_ = 0;
    mutable QMutex mutex_;
    QList<Qt::HANDLE> holders_; ///< the threads that have closed the gate
    QList<Qt::HANDLE> ended_;   ///< those for which another has opened it
};
