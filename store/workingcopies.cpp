#include "store/workingcopies.h"

#include <QFile>

#include <atomic>
#include <csignal>

#include <unistd.h>

namespace {

/// A link of a list that only grows: a signal may come at any moment, and nothing may vanish under its handler.
struct Copy
{
    QByteArray path;
    std::atomic<bool> exists = true;
    Copy *next = nullptr;
};

std::atomic<Copy *> first = nullptr;
static_assert(std::atomic<Copy *>::is_always_lock_free && std::atomic<bool>::is_always_lock_free);

void removeAndEnd(int signal)
{
    for (const Copy *copy = first; copy; copy = copy->next) {
        if (copy->exists)
            unlink(copy->path.constData());
    }
    raise(signal);
}

} // namespace

void WorkingCopies::add(const QString &path)
{
    auto *copy = new Copy{.path = QFile::encodeName(path), .next = first};
    while (!first.compare_exchange_weak(copy->next, copy)) {
    }
}

void WorkingCopies::remove(const QString &path)
{
    QFile::remove(path);
    const QByteArray name = QFile::encodeName(path);
    for (Copy *copy = first; copy; copy = copy->next) {
        if (copy->path == name)
            copy->exists = false;
    }
}

void WorkingCopies::removeOnSignals()
{
    for (const int signal : {SIGHUP, SIGINT, SIGTERM}) {
        struct sigaction action = {};
        // What the caller has chosen to ignore stays ignored.
        if (sigaction(signal, nullptr, &action) != 0 || action.sa_handler == SIG_IGN)
            continue;
        action.sa_handler = removeAndEnd;
        action.sa_flags = static_cast<int>(SA_RESETHAND);
        sigaction(signal, &action, nullptr);
    }
}
