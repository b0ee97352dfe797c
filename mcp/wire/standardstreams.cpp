#include "mcp/wire/standardstreams.h"

#include <cerrno>

#include <poll.h>
#include <unistd.h>

namespace {

constexpr qsizetype chunkSize = 65536;

/// Repeats a transfer that a signal interrupts, or that a client's stream refuses because it is set not to block.
template <typename Transfer>
ssize_t patiently(int file, short event, Transfer transfer)
{
    for (;;) {
        const ssize_t size = transfer();
        if (size >= 0 || (errno != EINTR && errno != EAGAIN))
            return size;
        if (errno == EAGAIN) {
            pollfd ready{.fd = file, .events = event, .revents = 0};
            poll(&ready, 1, -1);
        }
    }
}

} // namespace

QByteArray StandardStreams::readInput()
{
    QByteArray chunk(chunkSize, Qt::Uninitialized);
    const ssize_t size =
        patiently(STDIN_FILENO, POLLIN, [&] { return read(STDIN_FILENO, chunk.data(), size_t{chunkSize}); });
    chunk.truncate(size > 0 ? size : 0);
    return chunk;
}

bool StandardStreams::writeOutput(const QByteArray &bytes)
{
    for (qsizetype done = 0; done < bytes.size();) {
        const ssize_t size = patiently(STDOUT_FILENO, POLLOUT, [&] {
            return write(STDOUT_FILENO, bytes.constData() + done, static_cast<size_t>(bytes.size() - done));
        });
        if (size <= 0)
            return false;
        done += size;
    }
    return true;
}
