#pragma once

#include "generate/base/utf8sink.h"

#include <functional>
#include <initializer_list>
#include <span>
#include <string_view>
#include <unordered_map>
#include <vector>

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
    /// A literal: its place tells which one it is.
    class Text
    {
    public:
        template <size_t Size>
        consteval Text(const char16_t (&literal)[Size]) // NOLINT(google-explicit-constructor)
            : begin_(literal)
            , size_(Size - 1)
        {
        }

        const char16_t *place() const { return begin_; }
        QStringView view() const { return {begin_, size_}; }

    private:
        const char16_t *begin_;
        qsizetype size_;
    };

    struct Hole
    {
        std::string_view name;
        PrintedView value;
    };

    explicit CodeWriter(Utf8Sink &sink)
        : sink_(sink)
    {
    }

    void operator()(Text text, std::initializer_list<Hole> holes = {});

    /// What a function prints, as a text.
    static QString textOf(const std::function<void(CodeWriter &)> &write);

private:
    /// A text taken apart, since most are printed once for each row of a table: what stands in front of each hole and
    /// behind the last, in UTF-8, and the place of the value that goes there.
    struct Form
    {
        struct Part
        {
            QByteArray text;
            size_t value;
        };

        void parse(QStringView source, std::span<const Hole> holes);
        bool hasNames(std::span<const Hole> holes) const;

        std::vector<std::string_view> names;
        std::vector<Part> parts;
        QByteArray end;

    private:
        void parseBlock(QStringView text);
        void parseLine(QStringView text);
    };

    Utf8Sink &sink_;
    std::unordered_map<const void *, Form> forms_; ///< by the place of the text
};

/// Numbers as the generated sources have them.
namespace Code {

/// Lower-case hexadecimal digits without a prefix, zeros in front up to the number of digits.
inline Digits hex(quint64 value, int digits = 1)
{
    return Digits::hexadecimal(value, digits);
}
/// The same behind "0x".
inline Digits hex0x(quint64 value, int digits = 1)
{
    return Digits::prefixedHexadecimal(value, digits);
}
inline Digits dec(quint64 value)
{
    return Digits::decimal(value);
}
/// A text of the project as it may stand inside a comment: on one line, and without the marks of a comment.
QString commentText(QString text);
/// A text of the project as it may stand between quotes: its escapes are those of C. A backslash is added where the
/// literal would not compile without: before a quote, a backslash that begins no escape, and the last sign of a
/// trigraph.
QString literalText(const QString &text);

} // namespace Code
