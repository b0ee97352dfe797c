#include "import/csvimporter.h"
#include "import/importproject.h"
#include "store/objectdatabase.h"
#include "support/datacases.h"
#include "support/testhome.h"

#include <gtest/gtest.h>

#include <QFileInfo>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;
using namespace TestSupport;

namespace {

using Store = std::shared_ptr<ObjectDataBase>;
using Entry = CsvImporter::ListEntry;

struct Lists
{
    QList<Entry> deletions;
    QList<Entry> copies;
    QString report;
};

Lists importTable(const Store &store, const QByteArray &table, quint8 line = 0)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"table.csv"_s);
    CsvImporter importer;
    EXPECT_TRUE(TestSupport::writeFile(path, table));
    const QString report = ImportTest::run(importer, store, path, line);
    return {importer.deletionList(), importer.copyList(), report};
}

Store imported(const QByteArray &table)
{
    auto store = ImportTest::emptyProject();
    importTable(store, table);
    return store;
}

StoreRecords::SubIndexData subOf(const Store &store, quint16 index, quint8 subindex, quint8 line = 0)
{
    const std::optional<StoreRecords::SubIndexData> sub = store->getSubIndex(line, index, subindex);
    EXPECT_TRUE(sub) << std::hex << index << ":" << +subindex;
    return sub.value_or(StoreRecords::SubIndexData());
}

constexpr char wideHeader[] = "index,sub,datatype,access,edsname,value,";

} // namespace

// Each table in the folder has beside it the dump of the line that it makes, however the spreadsheet saves it.
class CsvCases : public testing::TestWithParam<FileCase>
{
};

TEST_P(CsvCases, MakeTheirLine)
{
    const QByteArray table = TestSupport::readFile(GetParam().path);
    const QString text = QString::fromUtf8(table);
    const QByteArray utf16("\xff\xfe" + QByteArray(reinterpret_cast<const char *>(text.utf16()), text.size() * 2));
    for (const QByteArray &form : {table, QByteArray(table).replace('\n', "\r\n"), "\xef\xbb\xbf" + table, utf16}) {
        const Store store = ImportTest::emptyProject();
        const QString report = importTable(store, form).report;
        TestSupport::expectInFile(ImportTest::dump(*store) + report, u"import-csv/%1.txt"_s.arg(GetParam().baseName()));
    }
}

INSTANTIATE_TEST_SUITE_P(Import, CsvCases, testing::ValuesIn(fileCases(u"import-csv"_s, {u"*.csv"_s})), caseName);

TEST(CsvImport, ReadsLatin1)
{
    EXPECT_EQ(imported("index,sub,edsname,a,b\n0x2000,0,Z\xe4hler,,\n")->getIndexName(0, 0x2000), u"Zähler");
}

TEST(CsvImport, DoesNotReadTheseInTheFirstColumn)
{
    for (const char *column : {"hasdefault", "defaultineds", "haslimit"}) {
        const auto sub = subOf(imported(QByteArray(column) + ",index,sub,datatype,uplimit\nno,0x2000,0,U8,9\n"
                                                             "yes,0x2000,1,U8,9\n"),
                               0x2000, column[1] == 'e' ? 1 : 0);
        EXPECT_TRUE(sub.defaultineds && sub.limitineds && sub.writedefaulttoeds == 0) << column;
    }
}

TEST(CsvImport, CollectsDeletionsAndCopiesAndLeavesTheProjectAlone)
{
    const Store store = imported(QByteArray(wideHeader) + "\n0x2000,0,U8,ro,Kept,1,\n0x2001,0,U8,ro,Kept,1,\n");
    const QString before = ImportTest::dump(*store);
    const Lists lists =
        importTable(store, "index,sub,edsname,datatype,access,value\n"
                           "d,0x2000\nd,8192,0x2\ndelete,0x2001,,,,\n"
                           "d,0\nd,0,1\nd,0x2000,\nd,0x2000,x\nd,0x2000,256\nd\nd,0x2000,1,2\n"
                           "c,0x2000,0x2001\nc,0x2000,1,2\ncopy,0x2001,0x2000,,,\n"
                           "c,0,0x2001\nc,0x2000,0\nc,0x2000,x\nc,0,1,2\nc,0x2000,2,2\nc,0x2000,1,\nc,0x2000\n");
    EXPECT_EQ(lists.deletions, (QList<Entry>{{0x2000, 0, true}, {0x2000, 2, false}, {0x2001, 0, true}}));
    EXPECT_EQ(lists.copies, (QList<Entry>{{0x2000, 0, true},
                                          {0x2001, 0, true},
                                          {0x2000, 1, false},
                                          {0x2000, 2, false},
                                          {0x2001, 0, true},
                                          {0x2000, 0, true}}));
    EXPECT_EQ(ImportTest::dump(*store), before);
}

TEST(CsvImport, AddsToWhatTheLineHas)
{
    const Store store = imported(QByteArray(wideHeader) + "objectcode\n0x2000,0,U8,ro,List,3,ARRAY\n"
                                                          "0x2000,3,U8,ro,Third,1,\n0x2001,0,U8,ro,Other,1,\n");
    // A higher subindex does not rename its object, nor does it change a count that the line has.
    importTable(store, QByteArray(wideHeader) + "\n0x2000,4,,rw,Fourth,2,\n0x2001,0,U16,ro,Renamed,2,\n");
    const auto object = store->getIndex(0, 0x2000).value();
    EXPECT_EQ(std::tuple(object.name, object.objecttype), std::tuple(u"List"_s, 8U));
    EXPECT_EQ(subOf(store, 0x2000, 0).defaultvalue, u"3");
    EXPECT_EQ(subOf(store, 0x2000, 3).name, u"Third");
    EXPECT_EQ(subOf(store, 0x2000, 4).datatype, 5);
    EXPECT_EQ(store->getIndexName(0, 0x2001), u"Renamed");

    // Rows go to the line that they name, if there is one.
    ASSERT_TRUE(store->addNode(1, {}));
    importTable(store, "index,sub,line,edsname,access\n0x3000,0,1,One,ro\n0x3001,0,2,Two,ro\n0x3002,0,257,Far,ro\n"
                       "0x3003,0,x,No number,ro\n0x3004,0,,Own,ro\n");
    EXPECT_EQ(store->getIndexList(1, 0, 0xffff), QList<quint16>{0x3000});
    EXPECT_EQ(store->getIndexList(0, 0x3000, 0x3fff), QList<quint16>{0x3004});
}

TEST(CsvImport, DropsWhatIsNoTable)
{
    QByteArray noise(3'000'000, '\0');
    for (qsizetype i = 0; i < noise.size(); ++i)
        noise[i] = static_cast<char>((i * i * 31 + (i >> 7)) & 0xff);
    const QByteArray rows = "0x2000,0,U8,ro,One,1,\n";
    for (const QByteArray &table : {QByteArray(), noise, QByteArray(1'000'000, '"'), QByteArray(1'000'000, '\n'),
                                    QByteArray("sub,datatype,access,edsname,value\n") + rows, rows,
                                    QByteArray(wideHeader) + "\n\"0x2000,0,U8,ro,One\n"})
        EXPECT_EQ(ImportTest::dump(*imported(table)), ImportTest::dump(*ImportTest::emptyProject()));
    // The good rows behind the bad ones come in.
    QByteArray quotes;
    for (int i = 0; i < 5000; ++i)
        quotes += "\"open,1,2,3,4\n";
    EXPECT_EQ(imported(wideHeader + ("\n" + noise) + "\n" + quotes + rows)->getIndexList(0, 0, 0xffff),
              QList<quint16>{0x2000});
}
