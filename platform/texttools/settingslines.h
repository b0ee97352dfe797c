#pragma once

#include <QByteArrayView>
#include <QString>

namespace SettingsText {

/// A line of a settings file: a section head, or a key and its value.
struct Line
{
    qsizetype start = 0;
    qsizetype length = 0;
    qsizetype equals = -1; ///< place of the first "=" outside quotes, from the start of the line
    bool isPlain = false;  ///< a key that needs no unescaping and a value that ends with its line

    QByteArrayView of(QByteArrayView data) const { return data.sliced(start, length); }
    QByteArrayView keyOf(QByteArrayView data) const
    {
        const QByteArrayView key = of(data).first(equals);
        return isPlain ? key : key.trimmed();
    }
    QByteArrayView valueOf(QByteArrayView data) const { return of(data).sliced(equals + 1); }
};

/// Splits a file into lines. A line goes on over line breaks inside quotes and behind a backslash; a ";" outside quotes
/// begins a comment up to the end of the line.
class LineScanner
{
public:
    /// Takes all lines but comments for plain ones, if they are known to be.
    explicit LineScanner(QByteArrayView data, bool arePlain = false)
        : data_(data)
        , arePlain_(arePlain)
    {
    }

    qsizetype position() const { return position_; }
    bool next(Line &line);

private:
    bool nextPlain(Line &line);
    bool step(Line &line, bool &inQuotes);
    void skipEscaped();
    void skipComment(Line &line);

    QByteArrayView data_;
    qsizetype position_ = 0;
    bool arePlain_;
};

/// True for a character that stands in a key as it is.
constexpr bool isPlainKeyCharacter(char16_t ch)
{
    return (ch >= 'a' && ch <= 'z') || (ch >= 'A' && ch <= 'Z') || (ch >= '0' && ch <= '9') || ch == '_' || ch == '-' ||
           ch == '.';
}

/// True for a key that holds nothing to unescape but the separator of groups.
bool needsNoUnescaping(QByteArrayView key);
/// Order of two such keys.
bool isBelow(QByteArrayView left, QByteArrayView right);
void appendUnescapedKey(QString &result, QByteArrayView key);

} // namespace SettingsText
