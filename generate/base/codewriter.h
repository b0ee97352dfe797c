#pragma once

#include <QString>
#include <QTextStream>

#include <functional>
#include <initializer_list>
#include <string_view>

/// Prints generated text so that the output can be read off the source.
///
/// A block is a raw literal that begins with a line break. Its margin is the column of the closing delimiter and is
/// taken off each line; a line that holds nothing but its break is an empty line of the output.
///
///     out(uR"(
///         #ifndef ${GUARD}
///         #define ${GUARD} 1
///
///         )", {{"GUARD", guard}});
///
/// Any other text is one row, and gets its line break here:
///
///     out(u"\t${type}\t${name};", {{"type", type}, {"name", name}});
///
/// Holes are filled in one pass, so that a value which looks like a hole stays as it is. A hole without a value and a
/// value without a hole are programming errors.
class CodeWriter
{
public:
    struct Hole
    {
        std::string_view name;
        QString value;
    };

    explicit CodeWriter(QTextStream &stream)
        : stream_(stream)
    {
    }

    void operator()(QStringView text, std::initializer_list<Hole> holes = {});

    /// What a function prints, as a text.
    static QString textOf(const std::function<void(CodeWriter &)> &write);

private:
    void writeBlock(QStringView text, std::initializer_list<Hole> holes, quint64 &used);
    void writeFilled(QStringView text, std::initializer_list<Hole> holes, quint64 &used);

    QTextStream &stream_;
    QString text_; ///< what a call prints
};

/// Numbers as the generated sources have them.
namespace Code {

/// Lower-case hexadecimal digits without a prefix, zeros in front up to the number of digits.
QString hex(quint64 value, int digits = 1);
QString dec(quint64 value);
/// A text of the project as it may stand inside a comment: on one line, and without the marks of a comment.
QString commentText(QString text);
/// A text of the project as it may stand between quotes: its escapes are those of C. A backslash is added where the
/// literal would not compile without: before a quote, a backslash that begins no escape, and the last sign of a
/// trigraph.
QString literalText(const QString &text);

} // namespace Code
