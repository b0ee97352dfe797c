#pragma once

#include <QFileDevice>
#include <QString>

#include <memory>

/// A generated file, which appears whole or not at all: the text goes to a temporary file beside it, which takes its
/// place on `commit`. Until then, and after any failure, a former file of that name stays as it was.
///
/// What exists and is no regular file, a pipe or device, is written to directly.
class OutputFile
{
public:
    explicit OutputFile(QString path)
        : path_(std::move(path))
    {
    }

    /// False, with an error text, if the file cannot be written.
    bool open();
    /// The device to write to, after a successful open.
    QIODevice *device() { return file_.get(); }
    /// False, with an error text, if any part of the file could not be written.
    bool commit();
    QString errorText() const { return errorText_; }

private:
    bool failed();

    QString path_;
    std::unique_ptr<QFileDevice> file_;
    QString errorText_;
};
