#pragma once

#include "texttools/textfile.h"

#include <QStringList>

/// The lines of a table as spreadsheets write it: in UTF-8, UTF-16 or Windows-1252, with or without a byte order mark,
/// with any line ending.
///
/// A field may stand in double quotes; it may then hold the separator, a quote written twice, and line breaks. A quote
/// that is never closed is a character like any other.
class TableRows
{
public:
    /// Begins with another file; false if it cannot be read.
    bool load(const QString &path);

    void setSeparator(QChar separator)
    {
        separator_ = separator;
        leftOpen_ = 0;
    }
    QChar separator() const { return separator_; }

    /// Takes the next line, with those that a quoted field goes on in; false at the end of the file. A line that begins
    /// with "#" is a comment, whose quotes mean nothing.
    bool next(QString &line);
    /// Number of the line in which the one taken last begins, from 1.
    qsizetype number() const { return number_; }
    /// The fields of a line, empty ones included.
    QStringList fieldsOf(const QString &line) const;

private:
    struct Line
    {
        QString text;
        qsizetype number = 0;
    };

    bool readLine(Line &line);
    void joinRow(QString &line);

    TextFile text_;
    TextLines lines_{{}};
    QChar separator_ = u',';
    qsizetype number_ = 0;
    QList<Line> ahead_;      ///< lines read but not taken yet
    qsizetype leftOpen_ = 0; ///< how many of these, from the first, do not end a quote that is open before them
};
