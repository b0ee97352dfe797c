#include "generate/docs/generatorjob.h"
#include "generate/tables/icsvgenerator.h"
#include "generate/tables/tablefields.h"
#include "import/csvimporter.h"
#include "import/importproject.h"
#include "nodedict/canopendatatype.h"
#include "nodedict/cohelper.h"
#include "store/objectdatabase.h"
#include "support/projectbuilder.h"

using namespace Qt::StringLiterals;
using TestSupport::ProjectBuilder;
using Store = std::shared_ptr<ObjectDataBase>;
using Sub = ObjectDataBase::SUBINDEX_DATA_T;

namespace {

void setObject(ProjectBuilder &project, quint16 index, quint32 code, quint16 dataType)
{
    auto object = project.store()->getIndex(0, index).value();
    object.objecttype = code;
    object.datatype = dataType;
    EXPECT_TRUE(project.store()->addIndex(0, index, object));
}

} // namespace

TEST(Tables, ValuesHaveTheFormOfTheirType)
{
    struct Case
    {
        quint16 type;
        const char *text;
        const char *value;
    };
    for (const Case &c : {Case{CAN::Integer8, "-5", "-5"},
                          {CAN::Integer8, "0x7f", "127"},
                          {CAN::Integer8, "0xff", "-1"},
                          {CAN::Integer16, "-0x10", "-16"},
                          {CAN::Integer32, "0x80000000", "-2147483648"},
                          {CAN::Integer32, "2147483648", ""},
                          {CAN::Integer24, "0xFFFFFF", "-1"},
                          {CAN::Integer40, "0xffff", "65535"},
                          {CAN::Integer40, "-1", ""},
                          {CAN::Integer40, "65536", ""},
                          {CAN::Integer64, "-9223372036854775808", "-9223372036854775808"},
                          {CAN::Unsigned8, " 0x10 ", "16"},
                          {CAN::Unsigned8, "010", "8"},
                          {CAN::Unsigned8, "08", "8"},
                          {CAN::Unsigned8, "-1", ""},
                          {CAN::Unsigned8, "70000", ""},
                          {CAN::Unsigned7, "0x7F", "127"},
                          {CAN::Unsigned24, "0xFFFFFF", "16777215"},
                          {CAN::Unsigned32, "0xFFFFFFFF", "4294967295"},
                          {CAN::Unsigned32, "0x100000000", ""},
                          {CAN::Unsigned32, "abc", ""},
                          {CAN::Unsigned32, "$NODEID+0x200", "$NODEID+512"},
                          {CAN::Unsigned32, "$nodeid+ 3", "$NODEID+3"},
                          {CAN::Unsigned32, "$NODEID+x", ""},
                          {CAN::Unsigned64, "0xFFFFFFFFFFFFFFFF", "18446744073709551615"},
                          {110, "0x10", "16"},
                          {CAN::Real32, "1.50", "1.50"},
                          {CAN::Real64, "-1e9", "-1e9"},
                          {CAN::Real32, "0x3f800000", "0x3f800000"},
                          {CAN::Real32, "much", ""},
                          {CAN::Boolean, "true", "true"},
                          {CAN::VisibleString, " 0x10", " 0x10"},
                          {CAN::Utf8String, "0x10", "0x10"},
                          {CAN::Unsigned8, "", ""}})
        EXPECT_EQ(TableFields::value(c.type, QString::fromLatin1(c.text)), QLatin1StringView(c.value)) << c.text;
}

namespace {

QString importIcsv(const Store &source, const Store &target)
{
    const QTemporaryDir folder;
    ICSVGenerator generator;
    const QString path = DocsTest::runJob(generator, source, folder.path());
    CsvImporter importer;
    importer.setIndexRange(0x1000, 0xbfff);
    importer.setDatabase(target);
    EXPECT_TRUE(importer.setFile(path) && importer.startImport());
    importer.waitForEnd();
    return QString::fromUtf8(TestSupport::readFile(path));
}

/// Objects of every type with texts that mean something to a table.
Store oddDictionary()
{
    const QStringList texts{u"a, b"_s, u"\"quoted\""_s,     u"'single' #; "_s,   u"größe ✓\t"_s,
                            u"0x10"_s, u"two\nlines\n\n"_s, u"##LINEBREAK##x"_s, {}};
    ProjectBuilder project;
    for (quint16 type = 1; type < 130; ++type) {
        if (COHelper::mapDataTypeString(COHelper::index2DataTypeString(type)) != type)
            continue;
        const QString text = u"T"_s + texts.at(type % texts.size());
        const auto fill = [&](Sub &sub) {
            const COHelper::Limits limits = COHelper::getDefaultLimits(type);
            sub.datatype = type;
            sub.implementation = type % 4;
            sub.varname = u"v_%1"_s.arg(type);
            sub.pdomapping = PDOMapping(type % 5U);
            sub.defaultineds = type % 2 == 0;
            sub.writedefaulttoeds = type % 2 == 0;
            sub.nvstorage = type % 3 == 0;
            sub.limitineds = type % 3 == 1;
            sub.defaultvalue = COHelper::isTextType(type) ? text : limits.low;
            sub.lowlimit = limits.low;
            sub.uplimit = limits.high;
            sub.description = text;
        };
        project.object(static_cast<quint16>(0x2000 + type), text).sub(0, u"Count"_s).sub(1, text, fill);
        setObject(project, static_cast<quint16>(0x2000 + type), CANopen::Record, CAN::Unsigned8);
        project.object(static_cast<quint16>(0x3000 + type), text).sub(0, text, fill);
        setObject(project, static_cast<quint16>(0x3000 + type), CANopen::Var, type);
    }
    return project.store();
}

} // namespace

TEST(Tables, ComeBackFromIcsv)
{
    QList<Store> stores{oddDictionary()};
    for (const QString &file : DocsTest::projectFiles()) {
        const auto project = std::make_shared<ObjectDataBase>();
        ASSERT_TRUE(project->openTextDatabase(file));
        // An import fills in what a project leaves to the type.
        importIcsv(project, stores.emplaceBack(ImportTest::emptyProject()));
    }
    for (const Store &before : stores) {
        const Store after = ImportTest::emptyProject();
        const QString table = importIcsv(before, after);
        const QStringList expected = table.split(u'\n');
        const QStringList found = importIcsv(after, ImportTest::emptyProject()).split(u'\n');
        for (qsizetype i = 0; i < std::min(expected.size(), found.size()); ++i)
            ASSERT_EQ(found.at(i), expected.at(i));
        EXPECT_EQ(found.size(), expected.size());
    }
}
