#include "store/storegate.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QMutexLocker>
#include <QThread>

void StoreGate::close()
{
    {
        const QMutexLocker locker(&mutex_);
        if (!allowed_.contains(QThread::currentThreadId()))
            allowed_.append(QThread::currentThreadId());
    }
    closed_ = true;
}

void StoreGate::open()
{
    {
        const QMutexLocker locker(&mutex_);
        allowed_.removeAll(QThread::currentThreadId());
    }
    closed_ = false;
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
    return allowed_.contains(QThread::currentThreadId());
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
