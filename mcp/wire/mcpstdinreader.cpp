#include "mcp/wire/mcpstdinreader.h"

#include "mcp/wire/standardstreams.h"

#include <QMutexLocker>

namespace {

constexpr qsizetype maxLineLength = 128 << 20;

} // namespace

void MCPStdinReader::setReadingEnabled(bool enabled)
{
    const QMutexLocker locker(&mutex_);
    readingEnabled_ = enabled;
    if (enabled)
        enabled_.wakeAll();
}

void MCPStdinReader::run()
{
    QByteArray line;
    for (waitUntilEnabled(); readLine(line); waitUntilEnabled())
        Q_EMIT lineReceived(line.trimmed());
}

void MCPStdinReader::waitUntilEnabled()
{
    const QMutexLocker locker(&mutex_);
    while (!readingEnabled_)
        enabled_.wait(&mutex_);
}

/// False at the end of the input. A line beyond any request is left out, so that one without an end takes no memory; an
/// empty one stands for it.
bool MCPStdinReader::readLine(QByteArray &line)
{
    line.clear();
    bool tooLong = false;
    for (;;) {
        const qsizetype end = chunk_.indexOf('\n', position_);
        const qsizetype size = (end >= 0 ? end : chunk_.size()) - position_;
        tooLong = tooLong || line.size() + size > maxLineLength;
        if (tooLong)
            line = QByteArray();
        else
            line.append(chunk_.constData() + position_, size);
        if (end >= 0) {
            position_ = end + 1;
            return true;
        }
        position_ = 0;
        chunk_ = StandardStreams::readInput();
        if (chunk_.isEmpty())
            return !line.isEmpty();
    }
}
