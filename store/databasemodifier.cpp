#include "store/databasemodifier.h"

#include "store/objectdatabase.h"

#include <QDebug>
#include <QFile>
#include <QTextStream>

#include <fcntl.h>
#include <optional>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 maxFileSize = 16 << 20;

/// Opens a file or a pipe. A device may never end, and a pipe that nobody writes to within five seconds is none.
bool openToRead(QFile &file, const QString &path)
{
    constexpr int patience = 5000; // milliseconds
    const int descriptor = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (descriptor < 0)
        return false;
    struct stat status
    {
    };
    pollfd ready{.fd = descriptor, .events = POLLIN, .revents = 0};
    const bool readable = fstat(descriptor, &status) == 0 &&
                          (S_ISREG(status.st_mode) || (S_ISFIFO(status.st_mode) && poll(&ready, 1, patience) > 0)) &&
                          fcntl(descriptor, F_SETFL, 0) == 0 &&
                          file.open(descriptor, QIODevice::ReadOnly, QFile::AutoCloseHandle);
    if (!readable)
        ::close(descriptor);
    return readable;
}

/// The whole of a file or a pipe; none if it cannot be read or is too large to be meant.
std::optional<QByteArray> contentOf(const QString &path)
{
    QFile file;
    if (!openToRead(file, path))
        return std::nullopt;
    QByteArray content;
    // A pipe gives what it has at the moment.
    for (QByteArray part = file.read(maxFileSize); !part.isEmpty(); part = file.read(maxFileSize)) {
        content += part;
        if (content.size() > maxFileSize)
            return std::nullopt;
    }
    return content;
}

} // namespace

bool DatabaseModifier::applyModifierFile()
{
    failedLine_.clear();
    if (!store_)
        return false;
    store_->setBlocked(false);
    qDebug().noquote() << "Applying " << path_;
    const std::optional<QByteArray> content = contentOf(path_);
    if (!content)
        return false;
    QTextStream stream(*content);
    QString line;
    while (stream.readLineInto(&line)) {
        qDebug().noquote() << line;
        if (!applyLine(line)) {
            failedLine_ = line;
            return false;
        }
    }
    return true;
}

bool DatabaseModifier::applyLine(const QString &line)
{
    constexpr qsizetype fieldCount = 3;
    if (line.startsWith(u'#') || line.count(u':') != fieldCount - 1)
        return true;
    const QStringList fields = line.split(u':');
    const QString &table = fields.at(0);
    if (table == "GeneralSettings"_L1)
        return store_->setGeneralSetting(fields.at(1), fields.at(2));
    if (table == "J1939Settings"_L1)
        return store_->setJ1939Setting(fields.at(1), fields.at(2));
    return true;
}
