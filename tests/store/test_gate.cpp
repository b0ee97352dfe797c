#include "store/statements/storegate.h"

#include <gtest/gtest.h>

#include <QDeadlineTimer>
#include <QThread>

namespace {

/// A thread that does one thing after the other.
class Worker
{
public:
    Worker()
    {
        context_.moveToThread(&thread_);
        thread_.start();
    }
    ~Worker()
    {
        thread_.quit();
        thread_.wait();
    }
    Q_DISABLE_COPY_MOVE(Worker)

    void close(StoreGate &gate)
    {
        QMetaObject::invokeMethod(
            &context_, [&gate] { gate.close(); }, Qt::BlockingQueuedConnection);
    }
    void open(StoreGate &gate)
    {
        QMetaObject::invokeMethod(
            &context_, [&gate] { gate.open(); }, Qt::BlockingQueuedConnection);
    }
    /// Sends the thread through the gate, where it may have to wait.
    void send(StoreGate &gate)
    {
        isThrough_ = false;
        QMetaObject::invokeMethod(&context_, [this, &gate] {
            const StoreGate::Passage passage(gate);
            isThrough_ = true;
        });
    }
    bool isThrough(int milliseconds) const { return comes(isThrough_, milliseconds); }
    /// Whether the thread serves its events.
    bool answers(int milliseconds)
    {
        answered_ = false;
        QMetaObject::invokeMethod(&context_, [this] { answered_ = true; });
        return comes(answered_, milliseconds);
    }

private:
    static bool comes(const std::atomic<bool> &flag, int milliseconds)
    {
        const QDeadlineTimer deadline(milliseconds);
        while (!flag && !deadline.hasExpired())
            QThread::msleep(1);
        return flag;
    }

    QThread thread_;
    QObject context_;
    std::atomic<bool> isThrough_ = false;
    std::atomic<bool> answered_ = false;
};

// What must not come is waited for a moment, what must come for as long as the busiest machine takes.
constexpr int waiting = 60;
constexpr int passing = 120'000;

TEST(StoreGate, EndOfOneJobLeavesItClosedForAnother)
{
    StoreGate gate;
    Worker first;
    Worker second;
    Worker other;
    first.close(gate);
    first.close(gate);
    second.close(gate);
    other.send(gate);
    first.open(gate);
    first.send(gate);
    EXPECT_FALSE(first.isThrough(waiting));
    EXPECT_FALSE(other.isThrough(0));
    second.send(gate);
    EXPECT_TRUE(second.isThrough(passing));
    second.open(gate);
    EXPECT_TRUE(first.isThrough(passing));
    EXPECT_TRUE(other.isThrough(passing));
}

TEST(StoreGate, ThreadWhoseBlockAnotherEndedHasNoPass)
{
    StoreGate gate;
    Worker former;
    Worker job;
    Worker other;
    former.close(gate);
    other.open(gate);
    other.send(gate);
    EXPECT_TRUE(other.isThrough(passing));

    job.close(gate);
    // What the former thread ends is over already; the job's block is not its own.
    former.open(gate);
    former.send(gate);
    other.send(gate);
    EXPECT_FALSE(former.isThrough(waiting));
    EXPECT_FALSE(other.isThrough(0));
    gate.open();
    EXPECT_TRUE(former.isThrough(passing));
    EXPECT_TRUE(other.isThrough(passing));

    former.close(gate);
    former.send(gate);
    EXPECT_TRUE(former.isThrough(passing));
    gate.open();
    former.close(gate);
    other.send(gate);
    EXPECT_FALSE(other.isThrough(waiting));
    EXPECT_TRUE(other.answers(passing));
    former.open(gate);
    EXPECT_TRUE(other.isThrough(passing));
}

TEST(StoreGate, WaitsForWhatIsUnderWayButNotForEver)
{
    StoreGate gate;
    {
        const StoreGate::Passage passage(gate);
        const QDeadlineTimer deadline(waiting);
        gate.waitUntilIdle(waiting);
        EXPECT_TRUE(deadline.hasExpired());
    }
    const QDeadlineTimer deadline(passing);
    gate.waitUntilIdle(passing);
    EXPECT_FALSE(deadline.hasExpired());
}

} // namespace
