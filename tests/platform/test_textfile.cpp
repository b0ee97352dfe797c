#include "support/testhome.h"
#include "texttools/tablerows.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;

namespace {

/// The rows of a table, each as "number:field|field".
QStringList rowsOf(const QByteArray &content)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"table.csv"_s);
    EXPECT_TRUE(TestSupport::writeFile(path, content));
    TableRows rows;
    EXPECT_TRUE(rows.load(path));
    QStringList result;
    for (QString line; rows.next(line);)
        result.append(u"%1:%2"_s.arg(rows.number()).arg(rows.fieldsOf(line).join(u'|')));
    return result;
}

/// A quote that is closed so many lines further down.
QByteArray quoteOver(int lines)
{
    return "a,\"b" + QByteArray("\nmore").repeated(lines - 1) + "\",c\nnext\n";
}

TEST(TextLines, AreCountedAsAnEditorCountsThem)
{
    const QByteArray text = "one\r\ntwo\n\nfour\rfive";
    TextLines lines(text);
    QStringList found;
    for (QByteArrayView line; lines.next(line);) {
        if (!line.isEmpty())
            found.append(u"%1 %2 %3"_s.arg(lines.number()).arg(lines.lineStart()).arg(QString::fromLatin1(line)));
    }
    EXPECT_EQ(found.join(u'/'), u"1 0 one/2 5 two/4 10 four/5 15 five"_s);
}

TEST(TextLines, OneOfAMillionBytesIsTheLongest)
{
    constexpr qsizetype longest = 1 << 20;
    for (const qsizetype size : {longest, longest + 1}) {
        const QByteArray text = QByteArray(size, 'x') + "\nend";
        TextLines lines(text);
        QByteArrayView line;
        ASSERT_TRUE(lines.next(line));
        EXPECT_EQ(line.size(), size == longest ? longest : 3);
        EXPECT_EQ(lines.number(), size == longest ? 1 : 2);
    }
}

TEST(TextFile, WhatNobodyWroteIsNotRead)
{
    const QTemporaryDir folder;
    QFile file(folder.filePath(u"huge.eds"_s));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.resize(TextFile::maxFileSize + 1));
    file.close();
    TextFile text;
    text.setContent("left over");
    EXPECT_FALSE(text.load(file.fileName()));
    EXPECT_TRUE(text.bytes().isEmpty());
    EXPECT_FALSE(text.load(folder.path()));
}

TEST(TextFile, EncodingsAndMarks)
{
    const QString word = u"Gr\u00f6\u00dfe"_s;
    const auto utf16 = [&word](bool bigEndian) {
        QByteArray bytes;
        for (const QChar c : word) {
            const auto high = static_cast<char>(c.unicode() >> 8);
            const auto low = static_cast<char>(c.unicode() & 0xff);
            bytes.append(bigEndian ? high : low).append(bigEndian ? low : high);
        }
        return bytes;
    };
    const QByteArray forms[] = {word.toUtf8(),
                                "\xef\xbb\xbf" + word.toUtf8(),
                                "Gr\xf6\xdf"
                                "e",
                                word.toUtf8() + "\x1a",
                                utf16(true),
                                utf16(false),
                                "\xfe\xff" + utf16(true),
                                "\xff\xfe" + utf16(false)};
    for (const QByteArray &form : forms) {
        TextFile text;
        text.setContent(form);
        EXPECT_EQ(text.decode(text.bytes()), word) << form.toHex().constData();
    }
    TextFile text;
    text.setContent("\x80"
                    "5 \x99");
    EXPECT_EQ(text.decode(text.bytes()), u"\u20ac5 \u2122"_s);
}

TEST(TableRows, AFieldMayGoOnInTheNextLines)
{
    EXPECT_EQ(rowsOf("a,\"b\nc\",d\ng,\"h\ni\"\r\n\r\ne,\"f \"\"g\"\", h\"\n#\"x\nlast"),
              QStringList({u"1:a|b\nc|d"_s, u"3:g|h\ni"_s, u"5:"_s, u"6:e|f \"g\", h"_s, u"7:#\"x"_s, u"8:last"_s}));
}

TEST(TableRows, AQuoteThatStaysOpenIsACharacter)
{
    EXPECT_EQ(rowsOf("a,\"b\nc,d\n"), QStringList({u"1:a|\"b"_s, u"2:c|d"_s}));
    // The second of two open quotes has as many lines to end in as the first.
    EXPECT_EQ(rowsOf("x,5\" pipe\n\"y\nz\",1"), QStringList({u"1:x|5\" pipe"_s, u"2:y\nz|1"_s}));
    EXPECT_EQ(rowsOf(quoteOver(100)).size(), 2);
    EXPECT_EQ(rowsOf(quoteOver(100)).last(), u"101:next"_s);
    EXPECT_EQ(rowsOf(quoteOver(101)).size(), 102);
    // What was looked at in vain is there for a quote behind it.
    const QStringList rows = rowsOf("\"lost\n" + QByteArray("fill\n").repeated(99) + quoteOver(60));
    EXPECT_EQ(rows.size(), 1 + 99 + 2);
    EXPECT_EQ(rows.last(), u"161:next"_s);
}

} // namespace
