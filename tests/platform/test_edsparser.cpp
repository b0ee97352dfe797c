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
    for (const QString &row :
         u"0x600=0x600|0XFF=0xFF|5;x // y=5|;x=;x|017=017|-5 ; remark=-5|5;remark=5|$NODEID+0x200;=$NODEID+0x200|0 // "
         u"low=0|5\t# five=5|"
         "\"0x12\"=0x12|0099=99|-08=-8|$NODEID+08=$NODEID+8|TRUE ; kept=TRUE ; kept|$NODEID+0x180=$NODEID+0x180|"
         "0X180 + $nodeid=$NODEID+0x180|$NODEID=$NODEID+0|NodeId+7=$NODEID+7|1+$NODEID+0x10=$NODEID+0x11|"
         "$NODEID-1=$NODEID-1|$NODEID+=$NODEID+|1.5=1.5|="_s.split(u'|'))
        EXPECT_EQ(EdsValue::normalised(row.section(u'=', 0, 0), CAN::Unsigned32), row.section(u'=', 1))
            << row.toStdString();
    EXPECT_EQ(EdsValue::normalised(u"12 ; kept"_s, CAN::NoType), u"12 ; kept"_s);
    for (const quint32 type : {CAN::VisibleString, CAN::OctetString, CAN::UnicodeString, CAN::Domain})
        EXPECT_EQ(EdsValue::normalised(u"0X1 + $nodeid ; x"_s, type), u"0X1 + $nodeid ; x"_s);
}

TEST(EdsValue, Number)
{
    for (const QString &row :
         u"10=10|0x1F=31|010=8|08=8|7 ;x=7|4294967295=4294967295|4294967296=|-1=|x=|="_s.split(u'|')) {
        const auto number = EdsValue::number(row.section(u'=', 0, 0));
        EXPECT_EQ(number ? QString::number(*number) : QString(), row.section(u'=', 1)) << row.toStdString();
    }
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

TEST(EdsParser, ForgetsTheFileBefore)
{
    const auto found = [](const QByteArrayList &files) {
        EdsParser parser;
        QStringList last;
        const QObject context;
        QObject::connect(&parser, &EdsParser::newIndex, &context, [&](const CANopen::CANopenIndex &object) {
            last << u"%1 %2 %3"_s.arg(object.index).arg(object.objecttype).arg(object.category);
        });
        QObject::connect(&parser, &EdsParser::newSubIndex, &context, [&](const CANopenSubindex &sub) {
            last << u"%1:%2 %3"_s.arg(sub.index).arg(sub.subindex).arg(sub.datatype);
        });
        for (const QByteArray &file : files) {
            last.clear();
            parser.loadContent(file);
        }
        return last;
    };
    const QByteArray before = "[MandatoryObjects]\n1=0x2000\n[2000]\nDataType=5\n[2000sub0]\n[3000]\nObjectType=8\n"
                              "DataType=6\n[3000sub1]\n[4000]\n[4000sub0]\n";
    const QByteArray file = "[2000]\n[2000sub0]\nDataType=5\n[3000sub1]\n[4000]\n";
    EXPECT_EQ(found({before, file}), found({file}));
    EXPECT_EQ(found({file}).size(), 5);
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
    constexpr qsizetype size = 5'000'000;
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
