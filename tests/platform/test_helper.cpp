#include "diagcore/udssiddefinitions.h"
#include "support/smalldisk.h"
#include "support/testhome.h"
#include "texttools/clock.h"
#include "texttools/helper.h"
#include "texttools/numbertext.h"
#include "texttools/wholefile.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QSet>
#include <QTemporaryDir>

#include <cstdlib>

using namespace Qt::StringLiterals;

TEST(Helper, SubstituteVariables)
{
    const std::pair<QString, QString> cases[] = {
        {u"${index}/${subindex}/${line}"_s, u"4120/10/31"_s},
        {u"${index:x} ${subindex:x} ${line:x}"_s, u"1018 0a 1f"_s},
        {u"$NODEID+0x600 ${x} ${} {index} $index %1"_s, u"$NODEID+0x600 ${x} ${} {index} $index %1"_s},
        {u"${a ${index}} ${index"_s, u"${a 4120} ${index"_s},
        {u"${Index}${index:X}"_s, u"${Index}${index:X}"_s},
        {u"v[${line}].${index}"_s, u"v[31].4120"_s},
        {u""_s, u""_s},
    };
    for (const auto &[text, result] : cases)
        EXPECT_EQ(Helper::substituteVariables(text, 0x1018, 10, 31), result) << text.toStdString();
}

TEST(Helper, AddLowerCaseUtoNumberLists)
{
    for (const QString &row :
         u"1,2,3=1u,2u,3u| 1 , 0x2F= 1u , 0x2Fu|4u,CNT,2+1,-1=4u,CNT,2+1,-1|,7,=,7u,|="_s.split(u'|'))
        EXPECT_EQ(Helper::addLowerCaseUtoNumberLists(row.section(u'=', 0, 0)), row.section(u'=', 1))
            << row.toStdString();
}

TEST(Helper, UTF8String2ArrayString)
{
    EXPECT_EQ(Helper::UTF8String2ArrayString(u"plain~\x7f"_s), u"\"plain~\\177\"");
    EXPECT_EQ(Helper::UTF8String2ArrayString(u"Gr\u00f61 \"?\?=\\\n"_s), u"\"Gr\\303\\2661 \\\"?\\?=\\\\\\012\"");
    EXPECT_EQ(Helper::UTF8String2ArrayString(u"|x41C3b67"_s), u"\"A\\303\\266\\007\"");
}

TEST(NumberText, EachReaderHasItsNotation)
{
    struct Case
    {
        QString text;
        std::optional<quint8> decimal;
        std::optional<quint8> hexadecimal;
        std::optional<quint8> either;
        std::optional<quint8> ofDescription;
    };
    for (const auto &[text, decimal, hexadecimal, either, ofDescription] : {
             Case{u" 26 "_s, 26, 0x26, 26, 26},
             {u"0x1A"_s, {}, 26, 26, 26},
             {u" 0X1a"_s, {}, 26, 26, 26},
             {u"1a"_s, {}, 26, {}, {}},
             {u"032"_s, 32, 0x32, 32, 26},
             {u"09"_s, 9, 9, 9, 9},
             {u"255"_s, 255, {}, 255, 255},
             {u"256"_s, {}, {}, {}, {}},
             {u"-1"_s, {}, {}, {}, {}},
             {u"1 2"_s, {}, {}, {}, {}},
             {u"18446744073709551617"_s, {}, {}, {}, {}},
             {QString(), {}, {}, {}, {}},
         }) {
        EXPECT_EQ(NumberText::decimal<quint8>(text), decimal) << text.toStdString();
        EXPECT_EQ(NumberText::hexadecimal<quint8>(text), hexadecimal) << text.toStdString();
        EXPECT_EQ(NumberText::decimalOrHexadecimal<quint8>(text), either) << text.toStdString();
        EXPECT_EQ(NumberText::ofDescription<quint8>(text), ofDescription) << text.toStdString();
        const bool isPadded = text == "09"_L1;
        EXPECT_EQ(NumberText::byPrefix<quint8>(text), isPadded ? std::nullopt : ofDescription) << text.toStdString();
    }
}

TEST(Clock, TellsTheMomentOfABuildInUtc)
{
    const QByteArray zone = qgetenv("TZ");
    qputenv("TZ", "XYZ-3");
    tzset();
    qputenv("SOURCE_DATE_EPOCH", "1793496600");
    EXPECT_EQ(TextTools::currentDateText(), u"Sun Nov 1 01:30:00 2026"_s);
    qputenv("SOURCE_DATE_EPOCH", "yesterday");
    EXPECT_LT(std::abs(TextTools::currentDateTime().secsTo(QDateTime::currentDateTime())), 60);
    qunsetenv("SOURCE_DATE_EPOCH");
    zone.isNull() ? qunsetenv("TZ") : qputenv("TZ", zone);
    tzset();
}

TEST(Helper, ModifyLineEnding)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"text.c"_s);
    for (const QString &ending : {u"\r\n"_s, u"\n"_s, u"\r"_s}) {
        ASSERT_TRUE(TestSupport::writeFile(path, "a\nb\r\nc\rd\n\r\n"));
        EXPECT_TRUE(Helper::modifyLineEnding(path, ending));
        EXPECT_EQ(TestSupport::readFile(path), u"a\nb\nc\nd\n\n"_s.replace(u'\n', ending).toUtf8());
    }
    EXPECT_FALSE(Helper::modifyLineEnding(folder.filePath(u"missing.c"_s), u"\n"_s));
    EXPECT_FALSE(QFile::exists(folder.filePath(u"missing.c"_s)));
}

/// What the system would not take only shows at the end, when the buffer is written.
TEST(Helper, WithoutRoomAFileStaysAsItIs)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"text.c"_s);
    const QByteArray content(8000, '\n');
    ASSERT_TRUE(TestSupport::writeFile(path, content));
    {
        const TestSupport::SmallDisk disk(4096);
        EXPECT_FALSE(Helper::modifyLineEnding(path, u"\r"_s));
    }
    EXPECT_EQ(TestSupport::readFile(path), content);
}

TEST(WholeFile, LeavesTheFormerFileAndTellsWhyWhereNotAllOfItCouldBeWritten)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"page.html"_s);
    for (const qsizetype size : {5000, 200000}) {
        ASSERT_TRUE(TestSupport::writeFile(path, "mine"));
        WholeFile file(path);
        const TestSupport::SmallDisk disk(4096);
        EXPECT_FALSE(file.open(QIODevice::WriteOnly) && file.write(QByteArray(size, 'x')) == size &&
                     file.commitWhole());
        EXPECT_NE(file.errorString(), QFile().errorString()) << size;
        EXPECT_EQ(TestSupport::readFile(path), "mine");
    }
}

TEST(UDSSIDDefinitions, EveryServiceHasItsOwnName)
{
    const auto &names = UDSSIDDefinitions::getSIDNames();
    EXPECT_EQ(names.size(), 27);
    EXPECT_EQ(QSet<QString>(names.cbegin(), names.cend()).size(), names.size());
    EXPECT_EQ(names.value(static_cast<UDS::SID>(0x3e)), u"TesterPresent"_s);
    EXPECT_FALSE(names.contains(static_cast<UDS::SID>(0x3f))) << "the identifier of a negative response less 0x40";
}
