#include "store/workingcopies.h"

#include <QDebug>
#include <QDir>
#include <QStandardPaths>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdlib>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

/// A link of a list that only grows: a signal may come at any moment, and nothing may vanish under its handler.
struct Copy
{
    QByteArray path;
    int holder; ///< a descriptor of the file that keeps its lock
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

void list(const QString &path, int holder)
{
    auto *copy = new Copy{.path = QFile::encodeName(path), .holder = holder, .next = first};
    while (!first.compare_exchange_weak(copy->next, copy)) {
    }
}

/// Locks the first `bytes` of a file, or all of it with 0, for the open file and not for the process: the database
/// locks by process, and a process loses such locks when it closes the file anywhere.
bool lock(int file, off_t bytes, bool wait)
{
    struct flock range = {};
    range.l_type = F_WRLCK;
    range.l_whence = SEEK_SET;
    range.l_len = bytes;
    int result = 0;
    do
        result = fcntl(file, wait ? F_OFD_SETLKW : F_OFD_SETLK, &range);
    while (result != 0 && errno == EINTR);
    return result == 0;
}

/// A second descriptor of a file, which keeps it locked where the database never locks; a command that this process
/// starts does not keep it.
int hold(int file)
{
    lock(file, 1, true);
    return fcntl(file, F_DUPFD_CLOEXEC, 0);
}

bool isThere(int file)
{
    struct stat status = {};
    return fstat(file, &status) == 0 && status.st_nlink > 0;
}

} // namespace

QString WorkingCopies::folder()
{
    return QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation);
}

bool WorkingCopies::create(QFile &file)
{
    QDir().mkpath(folder());
    constexpr int attempts = 10000;
    for (int attempt = 0; attempt < attempts; ++attempt) {
        file.setFileName(
            u"%1/qvxdatatemp_%2_%3"_s.arg(folder(), QString::number(std::rand()), QString::number(std::rand())));
        // The exclusive creation is what keeps two processes apart, whatever names they draw.
        if (!file.open(QIODevice::WriteOnly | QIODevice::NewOnly)) {
            if (file.exists())
                continue;
            qDebug() << "working copy" << file.fileName() << file.errorString();
            return false;
        }
        const int holder = hold(file.handle());
        if (isThere(file.handle())) {
            list(file.fileName(), holder);
            return true;
        }
        close(holder); // another process took it for an abandoned one before it was held
        file.close();
    }
    return false;
}

void WorkingCopies::remove(const QString &path)
{
    QFile::remove(path);
    const QByteArray name = QFile::encodeName(path);
    for (Copy *copy = first; copy; copy = copy->next) {
        if (copy->path == name && copy->exists.exchange(false))
            close(copy->holder);
    }
}

void WorkingCopies::removeAbandoned()
{
    for (const QString &name : QDir(folder()).entryList({u"qvxdatatemp_*"_s}, QDir::Files | QDir::NoSymLinks)) {
        const QByteArray path = QFile::encodeName(QDir(folder()).filePath(name));
        const int file = open(path.constData(), O_RDWR | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
        if (file < 0)
            continue;
        // The whole file: the locks of a database that an older version of the program works with count, too.
        if (lock(file, 0, false))
            unlink(path.constData());
        close(file);
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
