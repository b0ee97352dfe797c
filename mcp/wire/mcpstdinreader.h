#pragma once

#include <QByteArray>
#include <QMutex>
#include <QThread>
#include <QWaitCondition>

/// Reads standard input line by line on a thread of its own. The thread ends with the input.
class MCPStdinReader : public QThread
{
    Q_OBJECT

public:
    using QThread::QThread;

    /// While off, no further line is read; one whose read has begun still comes.
    void setReadingEnabled(bool enabled);

Q_SIGNALS:
    /// A line without white space at its ends, as soon as it is complete; at the end of the input also one that no line
    /// feed closes.
    void lineReceived(QByteArray line);

protected:
    void run() override;

private:
    void waitUntilEnabled();
    bool readLine(QByteArray &line);

    QMutex mutex_;
    QWaitCondition enabled_;
    bool readingEnabled_ = true;
    QByteArray chunk_; ///< what was read last; up to `position_` it belongs to lines that are out
    qsizetype position_ = 0;
};
