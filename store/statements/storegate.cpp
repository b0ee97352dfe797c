#include "store/statements/storegate.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QMutexLocker>
#include <QThread>

#include <utility>

void StoreGate::close()
{
    const QMutexLocker locker(&mutex_);
    ended_.removeOne(QThread::currentThreadId());
    if (!holders_.contains(QThread::currentThreadId()))
        holders_.append(QThread::currentThreadId());
    closed_ = true;
}

void StoreGate::open()
{
    const QMutexLocker locker(&mutex_);
    if (ended_.removeOne(QThread::currentThreadId()))
        return;
    if (!holders_.removeOne(QThread::currentThreadId()))
        ended_.append(std::exchange(holders_, {}));
    closed_ = !holders_.isEmpty();
}

void StoreGate::waitUntilIdle(int milliseconds) const
{
    const QDeadlineTimer deadline(milliseconds);
    while (inFlight_ != 0 && !deadline.hasExpired())
        QThread::yieldCurrentThread();
}

bool StoreGate::mayPass() const
{
    if (!closed_)
        return true;
    const QMutexLocker locker(&mutex_);
    return holders_.contains(QThread::currentThreadId());
}

StoreGate::Passage::Passage(StoreGate &gate)
    : gate_(gate)
{
    ++gate_.inFlight_;
    while (!gate_.mayPass()) {
        // A thread that must wait goes on serving its events, and does not count as busy meanwhile.
        --gate_.inFlight_;
        QCoreApplication::processEvents();
        QThread::yieldCurrentThread();
        ++gate_.inFlight_;
    }
}

StoreGate::Passage::~Passage()
{
    --gate_.inFlight_;
}
