#include "ncx_cli/mcp/mcpstdinreader.h"

#include "ncx_cli/mcp/standardstreams.h"

#include <QMutexLocker>

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

/// False at the end of the input.
bool MCPStdinReader::readLine(QByteArray &line)
{
    line.clear();
    for (;;) {
        const qsizetype end = chunk_.indexOf('\n', position_);
        if (end >= 0) {
            line.append(chunk_.constData() + position_, end - position_);
            position_ = end + 1;
            return true;
        }
        line.append(chunk_.constData() + position_, chunk_.size() - position_);
        position_ = 0;
        chunk_ = StandardStreams::readInput();
        if (chunk_.isEmpty())
            return !line.isEmpty();
    }
}
