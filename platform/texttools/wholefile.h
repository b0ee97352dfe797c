#pragma once

#include <QSaveFile>

/// A file that takes the place of a former one if all of it could be written. QSaveFile alone commits what is left of
/// a file when the disk was full for a part of it only, or for the rest of its buffer.
class WholeFile : public QSaveFile
{
    Q_OBJECT

public:
    using QSaveFile::QSaveFile;

    /// True if all that was written so far has come to the disk, beside the former file; else the error is set.
    bool isWritten();
    /// False, with the error of the file set, leaves the former file in its place.
    bool commitWhole();

    /// Writes over a file in a folder that takes no new files, which is all that can be done there. False, with nothing
    /// done, in any other folder or for a file that is missing.
    static bool overwriteInClosedFolder(const QString &path, const QByteArray &content);

protected:
    qint64 writeData(const char *data, qint64 length) override;

private:
    void beginWriteBack();
    void tellFull();

    qint64 begun_ = 0;  ///< up to here the system was asked to bring it to the disk
    bool lost_ = false; ///< some data never came to the disk, whatever came behind it
};
