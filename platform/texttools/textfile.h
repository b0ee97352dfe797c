#pragma once

#include <QByteArray>
#include <QString>

/// The text of a file, held once in one buffer whose views its readers hand about.
///
/// The encoding is decided for the file as a whole: UTF-16 with a byte order mark, or recognisable as such without
/// one; else UTF-8, if all of it is that; else Windows-1252, which holds Latin-1. A byte order mark is no part of the
/// text.
class TextFile
{
public:
    /// A file beyond this is no text that somebody means to have read.
    static constexpr qint64 maxFileSize = 512LL << 20;

    /// Reads a regular file; false, with an empty text, if that fails.
    bool load(const QString &path);
    void setContent(const QByteArray &content);

    QByteArrayView bytes() const { return content_; }
    /// Text of a part of the buffer. NUL bytes are left out: they end a text for everybody who comes later.
    QString decode(QByteArrayView part) const;

private:
    QByteArray content_; ///< UTF-8 or Windows-1252
    bool utf8_ = true;
};

/// Walks through lines that end in CR LF, LF or CR; what lies between a CR and its LF counts as an empty line.
class TextLines
{
public:
    explicit TextLines(QByteArrayView text)
        : text_(text)
    {
    }

    /// Takes the next line, without its end; false at the end of the text.
    bool next(QByteArrayView &line);
    /// Where the line taken last begins in the text.
    qsizetype lineStart() const { return start_; }
    /// Number of the line taken last, from 1. What lies between a CR and its LF has that of the line before.
    qsizetype number() const { return number_; }

private:
    QByteArrayView text_;
    qsizetype start_ = 0;
    qsizetype position_ = 0;
    qsizetype feed_ = -1; ///< the next line feed, or the end of the text
    qsizetype number_ = 0;
};

namespace TextBytes {

/// Blanks at both ends cut off.
QByteArrayView trimmed(QByteArrayView text);
/// Equal but for the case of ASCII letters. `lower` is in lower case.
bool equals(QByteArrayView text, QByteArrayView lower);

} // namespace TextBytes
