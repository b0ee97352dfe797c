#include "nodedict/edsparser.h"
#include "nodedict/edsvalue.h"
#include "support/testhome.h"

#include <gtest/gtest.h>

#include <QDir>

using namespace Qt::StringLiterals;

namespace {

/// What a parser raises, as "2000" for an object and "2000:1" for a sub-object.
QStringList raised(EdsParser &parser, const std::function<void()> &load)
{
    QStringList events;
    const QObject context;
    QObject::connect(&parser, &EdsParser::newIndex, &context,
                     [&](const CANopen::CANopenIndex &object) { events << QString::number(object.index, 16); });
    QObject::connect(&parser, &EdsParser::newSubIndex, &context, [&](const CANopenSubindex &sub) {
        events << u"%1:%2"_s.arg(QString::number(sub.index, 16), QString::number(sub.subindex, 16));
    });
    load();
    return events;
}

} // namespace

TEST(EdsValue, Normalised)
{
    const std::pair<QString, QString> numbers[] = {
        {u"0x600"_s, u"0x600"_s},
        {u"0XFF"_s, u"0xFF"_s},
        {u"017"_s, u"017"_s},
        {u"-5 ; remark"_s, u"-5"_s},
        {u"5;remark"_s, u"5"_s},
        {u"$NODEID+0x200;"_s, u"$NODEID+0x200"_s},
        {u"0 // low"_s, u"0"_s},
        {u"5\t# five"_s, u"5"_s},
        {u"\"0x12\""_s, u"0x12"_s},
        {u"0099"_s, u"99"_s},
        {u"-08"_s, u"-8"_s},
        {u"$NODEID+08"_s, u"$NODEID+8"_s},
        {u"TRUE ; kept"_s, u"TRUE ; kept"_s},
        {u"$NODEID+0x180"_s, u"$NODEID+0x180"_s},
        {u"0X180 + $nodeid"_s, u"$NODEID+0x180"_s},
        {u"$NODEID"_s, u"$NODEID+0"_s},
        {u"NodeId+7"_s, u"$NODEID+7"_s},
        {u"1+$NODEID+0x10"_s, u"$NODEID+0x11"_s},
        {u"$NODEID-1"_s, u"$NODEID-1"_s},
        {u"$NODEID+"_s, u"$NODEID+"_s},
        {u"1.5"_s, u"1.5"_s},
        {u""_s, u""_s},
    };
    for (const auto &[text, value] : numbers)
        EXPECT_EQ(EdsValue::normalised(text, CAN::Unsigned32), value) << text.toStdString();
    EXPECT_EQ(EdsValue::normalised(u"12 ; kept"_s, CAN::NoType), u"12 ; kept"_s);
    for (const quint32 type : {CAN::VisibleString, CAN::OctetString, CAN::UnicodeString, CAN::Domain})
        EXPECT_EQ(EdsValue::normalised(u"0X1 + $nodeid ; x"_s, type), u"0X1 + $nodeid ; x"_s);
}

TEST(EdsValue, Number)
{
    const std::pair<QString, std::optional<quint32>> cases[] = {
        {u"10"_s, 10},         {u"0x1F"_s, 31}, {u"010"_s, 8},
        {u"08"_s, 8},          {u"7 ;x"_s, 7},  {u"4294967295"_s, 0xffffffff},
        {u"4294967296"_s, {}}, {u"-1"_s, {}},   {u"x"_s, {}},
        {u""_s, {}},
    };
    for (const auto &[text, value] : cases)
        EXPECT_EQ(EdsValue::number(text), value) << text.toStdString();
}

TEST(EdsParser, RaisesAnObjectBeforeItsSubObjectsElseInFileOrder)
{
    EdsParser parser;
    const QStringList events = raised(parser, [&] {
        parser.loadContent("[3000sub2]\nDataType=5\n[2000]\nDataType=5\n[3000sub0]\n[3000]\nObjectType=9\n"
                           "[4000sub1]\n[3000sub2]\nDataType=6\n[2001]\nObjectType=9\nCompactSubObj=2\n[2001sub2]\n"
                           "[2002]\nObjectType=8\nCompactSubObj=2\n[2003]\nObjectType=6\n");
    });
    EXPECT_EQ(events.join(u' '), u"3000 3000:2 2000 2000:0 3000:0 4000:1 2001 2001:0 2001:1 2001:2 2002 2003"_s);

    // A second file starts anew.
    EXPECT_EQ(raised(parser, [&] { parser.loadContent("[2000]\nDataType=5\n"); }).join(u' '), u"2000 2000:0"_s);
}

TEST(EdsParser, DeliversTheSectionsOfTheDescription)
{
    EdsParser parser;
    parser.loadContent("[DEVICEINFO]\nvendorname =  A, B; \\C \nProductName=\n[Comments]\nLines=3\nLine3=c\nLine1=a\n"
                       "[Vendor]\nVendorName=x\n[DeviceInfo]\nVendorName=other\nOrderCode=1\n");
    EXPECT_EQ(parser.sectionValue("DeviceInfo"_L1, u"VendorName"_s), uR"(A, B; \C)"_s);
    EXPECT_EQ(parser.sectionValue("DeviceInfo"_L1, u"OrderCode"_s), u"1"_s);
    EXPECT_TRUE(parser.sectionValue("DeviceInfo"_L1, u"ProductName"_s).isEmpty());
    EXPECT_FALSE(parser.sectionValue("DeviceInfo"_L1, u"ProductName"_s).isNull());
    EXPECT_TRUE(parser.sectionValue("DeviceInfo"_L1, u"Missing"_s).isNull());
    EXPECT_TRUE(parser.sectionValue("Vendor"_L1, u"VendorName"_s).isNull()) << "a section that is not kept";
    EXPECT_EQ(parser.commentText(), u"a\n\nc"_s);
}

TEST(EdsParser, ReadsRegularFilesOnly)
{
    const QTemporaryDir folder;
    EdsParser parser;
    EXPECT_FALSE(parser.LoadEds(folder.path()));
    EXPECT_FALSE(parser.LoadEds(folder.filePath(u"missing.eds"_s)));
    EXPECT_FALSE(parser.LoadEds(u"/dev/zero"_s));
    const QString path = folder.filePath(u"empty.eds"_s);
    ASSERT_TRUE(TestSupport::writeFile(path, {}));
    EXPECT_TRUE(parser.LoadEds(path));
}

// Growth, not time, is what would hurt: each of these would take minutes if anything were done anew per line or byte.
TEST(EdsParser, TakesTimeInProportionToTheFile)
{
    constexpr qsizetype size = 20'000'000;
    for (const QByteArray &pattern : {QByteArray("["), QByteArray("[\n"), QByteArray(" "), QByteArray("\0", 1),
                                      QByteArray("[2000]\n"), QByteArray("[2000]\n;;x\n"), QByteArray("=\n"),
                                      QByteArray("\r"), QByteArray("[Comments]\nLines=65535\nLine1=x\nLine65535=x\n"),
                                      QByteArray("[2000]\nObjectType=8\nCompactSubObj=9\n[2000Name]\n1=x\n")}) {
        EdsParser parser;
        const QStringList events = raised(parser, [&] { parser.loadContent(pattern.repeated(size / pattern.size())); });
        EXPECT_LE(events.size(), 2);
        EXPECT_LE(parser.comments().size(), 1);
        parser.commentText();
        parser.getCompactSubObjNames(0x2000);
    }

    QByteArray array = "[2000]\nObjectType=8\n" + QByteArray("x=1\n").repeated(size / 4);
    for (int sub = 0; sub <= 0xff; ++sub)
        array += "[2000sub" + QByteArray::number(sub, 16) + "]\n";
    EdsParser parser;
    EXPECT_EQ(raised(parser, [&] { parser.loadContent(array); }).size(), 257);
}

// The seeds of the fuzz target and the cases of the importer, cut off at every byte.
TEST(EdsParser, SurvivesTruncation)
{
    for (const QString &folder :
         {QStringLiteral(NCX_SOURCE_DIR "/fuzz/corpus/eds"), QStringLiteral(NCX_SOURCE_DIR "/tests/data/import")}) {
        const QStringList files = QDir(folder).entryList({u"*.eds"_s, u"*.dcf"_s}, QDir::Files);
        EXPECT_FALSE(files.isEmpty());
        for (const QString &file : files) {
            const QByteArray content = TestSupport::readFile(folder + u'/' + file);
            qsizetype events = 0;
            for (qsizetype length = 0; length <= content.size(); ++length) {
                EdsParser parser;
                events = raised(parser, [&] { parser.loadContent(content.left(length)); }).size();
                parser.comments();
            }
            EXPECT_TRUE(events > 0 || file == "settings.eds"_L1) << file.toStdString();
        }
    }
}
