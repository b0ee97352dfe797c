#pragma once

#include <QString>

/// Text tools that importers, checks and generators share. Stateless: any thread may call them.
class Helper
{
public:
    /// `formatVersion` selects the text conventions of the generated sources; 3 is the current and only one.
    explicit Helper(int formatVersion);

    /// Stands for a line break in the descriptions of CSV tables, where each row is one line. No description holds it.
    static constexpr QLatin1StringView csvDescLinebreak{"##LINEBREAK##"};

    /// Replaces the placeholders that names and descriptions may hold:
    ///
    /// | Placeholder                         | Value                                          |
    /// |-------------------------------------|------------------------------------------------|
    /// | `${index}`, `${index:x}`            | index, decimal or four lower-case hex digits   |
    /// | `${subindex}`, `${subindex:x}`      | subindex, decimal or two lower-case hex digits |
    /// | `${line}`, `${line:x}`              | line number, decimal or hexadecimal            |
    ///
    /// Anything else passes unchanged, an unknown word in braces included: ordinary names, C expressions and
    /// `$NODEID` hold no "${". What a placeholder is replaced by is not searched again.
    static QString substituteVariables(const QString &text, quint32 index, quint32 subindex, quint32 line);

    /// Puts a "u" behind each number of a comma list, decimal or hexadecimal: "1, 0x20" gives "1u, 0x20u". Blanks
    /// stay, and so does a part that is no number (a macro, an expression, a number that has its "u").
    static QString addLowerCaseUtoNumberLists(const QString &list);

    /// The bytes of a text of hexadecimal digits, two digits each: "4a0" gives 0x4a, 0x00. What is no digit reads as 0.
    static QByteArray hexPairs(QStringView digits);

    /// The C initialiser of a UTF-8 string: its bytes in quotes, escaped wherever C would not read them as themselves,
    /// in octal, which no following digit can lengthen. A text that begins with "|x" gives its bytes in hexadecimal.
    static QString UTF8String2ArrayString(const QString &text);

    /// Rewrites a file with `ending` in place of each line ending, be it CR LF, LF or CR. The file is replaced as a
    /// whole or, on failure, stays as it is; a missing file is left missing. False on failure.
    static bool modifyLineEnding(const QString &path, const QString &ending);
};
