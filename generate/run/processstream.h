#pragma once

#include <QString>
#include <QStringDecoder>

#include <utility>

/// One of the output streams of a process: its text, and whether its header has been shown.
class ProcessStream
{
public:
    explicit ProcessStream(QString header)
        : header_(std::move(header))
    {
    }

    const QString &header() const { return header_; }
    /// True the first time.
    bool takeHeader() { return !std::exchange(headerWritten_, true); }
    /// The text of the bytes that came, with white space simplified. A character may come in parts.
    QString text(const QByteArray &bytes) { return QString(decoder_.decode(bytes)).simplified(); }
    /// For a new process.
    void reset()
    {
        headerWritten_ = false;
        decoder_.resetState();
    }

private:
    QString header_;
    bool headerWritten_ = false;
    QStringDecoder decoder_{QStringDecoder::System};
};
