#include "store/file/workingcopies.h"

#include <QDebug>
#include <QDir>
#include <QMap>
#include <QMutex>
#include <QRegularExpression>
#include <QStandardPaths>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <optional>

#include <fcntl.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

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

void list(const QString &path)
{
    auto *copy = new Copy{.path = QFile::encodeName(path), .next = first};
    while (!first.compare_exchange_weak(copy->next, copy)) {
    }
}

/// Opens the file of a folder in which each working copy has a byte of its own, locked as long as a process holds the
/// copy; -1 if there can be none.
int openLocks(const QString &folder)
{
    const QByteArray path = QFile::encodeName(QDir(folder).filePath(u".qvxdatalock"_s));
    return open(path.constData(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, S_IRUSR | S_IWUSR);
}

/// The descriptor that holds this process's locks. It stays open: the system takes the locks back when the process
/// ends, however that comes.
int ownLocks(const QString &folder)
{
    static QMutex mutex;
    static QMap<QString, int> files;
    const QMutexLocker locker(&mutex);
    if (!files.contains(folder)) {
        const int file = openLocks(folder);
        if (file < 0)
            return file;
        files.insert(folder, file);
    }
    return files.value(folder);
}

/// The byte that stands for a working copy: the two numbers of its name side by side. Nothing for another name.
std::optional<off_t> byteOf(const QString &name)
{
    static const QRegularExpression form(u"\\Aqvxdatatemp_(\\d{1,10})_(\\d{1,10})\\z"_s);
    const QRegularExpressionMatch match = form.match(name);
    const qint64 high = match.captured(1).toLongLong();
    const qint64 low = match.captured(2).toLongLong();
    if (!match.hasMatch() || high > RAND_MAX || low > RAND_MAX)
        return {};
    return off_t{high * (qint64{RAND_MAX} + 1) + low};
}

enum class Lock
{
    Done,
    HeldByAnother,
    Impossible
};

/// Takes or gives back the lock of a byte for a descriptor, not for the process as a whole.
Lock setLock(int file, off_t byte, short type)
{
    struct flock range = {};
    range.l_type = type;
    range.l_whence = SEEK_SET;
    range.l_start = byte;
    range.l_len = 1;
    if (fcntl(file, F_OFD_SETLK, &range) == 0)
        return Lock::Done;
    return errno == EAGAIN || errno == EACCES ? Lock::HeldByAnother : Lock::Impossible;
}

} // namespace

QString WorkingCopies::folder()
{
    return QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation);
}

bool WorkingCopies::create(QFile &file)
{
    const QString place = folder();
    QDir().mkpath(place);
    const int locks = ownLocks(place);
    constexpr int attempts = 10000;
    for (int attempt = 0; attempt < attempts; ++attempt) {
        const QString name = u"qvxdatatemp_%1_%2"_s.arg(QString::number(std::rand()), QString::number(std::rand()));
        file.setFileName(place + u'/' + name);
        // Held before it is there, so that it is never taken for an abandoned one. The exclusive creation is what keeps
        // two processes apart, whatever names they draw.
        if (file.exists() || setLock(locks, *byteOf(name), F_WRLCK) == Lock::HeldByAnother)
            continue;
        if (file.open(QIODevice::WriteOnly | QIODevice::NewOnly)) {
            list(file.fileName());
            return true;
        }
        if (!file.exists()) {
            qDebug() << "working copy" << file.fileName() << file.errorString();
            return false;
        }
    }
    return false;
}

void WorkingCopies::remove(const QString &path)
{
    QFile::remove(path);
    const QByteArray name = QFile::encodeName(path);
    for (Copy *copy = first; copy; copy = copy->next) {
        if (copy->path == name)
            copy->exists = false;
    }
    const QFileInfo info(path);
    if (const auto byte = byteOf(info.fileName()))
        setLock(ownLocks(info.path()), *byte, F_UNLCK);
}

void WorkingCopies::removeAbandoned()
{
    const QDir place(folder());
    const QStringList names = place.entryList({u"qvxdatatemp_*"_s}, QDir::Files);
    if (names.isEmpty())
        return;
    const int locks = openLocks(place.path());
    for (const QString &name : names) {
        const auto byte = byteOf(name);
        if (!byte || setLock(locks, *byte, F_WRLCK) != Lock::Done)
            continue;
        QFile::remove(place.filePath(name));
        setLock(locks, *byte, F_UNLCK);
    }
    if (locks >= 0)
        close(locks);
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
