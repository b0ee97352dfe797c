#include "texttools/wholefile.h"

#include <QFileInfo>

#include <cerrno>
#include <system_error>
#include <tuple>

#include <fcntl.h>

qint64 WholeFile::writeData(const char *data, qint64 length)
{
    const qint64 written = QSaveFile::writeData(data, length);
    lost_ = lost_ || written != length;
    beginWriteBack();
    if (lost_)
        tellFull();
    return written;
}

/// Has the system begin to bring to the disk what was written, so that the commit, which waits for all of it, finds
/// little left.
void WholeFile::beginWriteBack()
{
#ifdef SYNC_FILE_RANGE_WRITE
    constexpr qint64 enough = 1 << 20;
    const qint64 size = pos();
    if (size - begun_ < enough)
        return;
    // Where that cannot be done, the commit takes its time.
    std::ignore = sync_file_range(handle(), begun_, size - begun_, SYNC_FILE_RANGE_WRITE);
    begun_ = size;
#endif
}

void WholeFile::tellFull()
{
    // A part was taken: the framework counts that as no error, or as one without a reason.
    if (error() == NoError || errorString() == QSaveFile().errorString())
        setErrorString(QString::fromLocal8Bit(std::generic_category().message(ENOSPC)));
}

bool WholeFile::isWritten()
{
    if (flush() && error() == NoError && !lost_)
        return true;
    tellFull();
    return false;
}

bool WholeFile::commitWhole()
{
    // The file gives itself up if it is not committed; a commit that fails would also forget why.
    return isWritten() && commit();
}

bool WholeFile::overwriteInClosedFolder(const QString &path, const QByteArray &content)
{
    const QFileInfo info(path);
    QFile file(path);
    if (!info.isFile() || QFileInfo(info.path()).isWritable() || !file.open(QIODevice::ReadWrite))
        return false;
    // A disk without room for the new content must not cost the old.
    const qint64 formerSize = file.size();
    if (!content.isEmpty() && posix_fallocate(file.handle(), 0, content.size()) != 0) {
        file.resize(formerSize);
        return false;
    }
    return file.write(content) == content.size() && file.flush() && file.resize(content.size());
}
