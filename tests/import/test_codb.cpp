#include "import/codbimporter.h"
#include "import/importproject.h"
#include "import/profiledatabases.h"
#include "nodedict/canopendatatype.h"
#include "nodedict/cohelper.h"
#include "store/objectdatabase.h"
#include "support/datacases.h"
#include "support/testhome.h"

#include <gtest/gtest.h>

#include <QFileInfo>
#include <QSet>

using namespace Qt::StringLiterals;
using namespace TestSupport;

namespace {

using Sub = ObjectDataBase::SUBINDEX_DATA_T;

std::shared_ptr<ObjectDataBase> imported(const QString &path)
{
    auto store = ImportTest::emptyProject();
    CODBImporter importer;
    EXPECT_FALSE(ImportTest::run(importer, store, path).isNull());
    return store;
}

Sub subOf(ObjectDataBase &store, quint16 index, quint8 subindex)
{
    const std::optional<Sub> sub = store.getSubIndex(0, index, subindex);
    EXPECT_TRUE(sub) << std::hex << index << ":" << +subindex;
    return sub.value_or(Sub());
}

/// Whether a value or limit is a number of the type and, where there are limits, between them.
bool fits(const Sub &sub, const QString &value)
{
    const COHelper::Limits type = COHelper::getDefaultLimits(sub.datatype);
    if (value.isEmpty() || type.high.isEmpty() || value.startsWith("$NODEID+0x"_L1))
        return true;
    const auto within = [&value](const QString &low, const QString &high) {
        bool readable = false;
        if (low.startsWith(u'-') || value.startsWith(u'-')) {
            const qint64 number = value.toLongLong(&readable, 0);
            return readable && number >= low.toLongLong(nullptr, 0) && number <= high.toLongLong(nullptr, 0);
        }
        const quint64 number = value.toULongLong(&readable, 0);
        return readable && number >= low.toULongLong(nullptr, 0) && number <= high.toULongLong(nullptr, 0);
    };
    return within(type.low, type.high) && within(sub.lowlimit, sub.uplimit);
}

QByteArrayList linesOf(const QString &path)
{
    return TestSupport::readFile(path).split('\n');
}

} // namespace

// Each text in the folder has beside it the dump of the line that it makes, without and with its copy lines.
class CodbCases : public testing::TestWithParam<FileCase>
{
};

TEST_P(CodbCases, MakeTheirLine)
{
    const QString name = GetParam().baseName();
    for (const bool resolve : {false, true}) {
        const auto store = ImportTest::emptyProject();
        CODBImporter importer;
        importer.setResolveCopyLines(resolve);
        const QString report = ImportTest::run(importer, store, GetParam().path);
        const QString suffix = resolve && name == "copies"_L1 ? u"-resolved"_s : QString();
        TestSupport::expectInFile(ImportTest::dump(*store) + report, u"codb/%1%2.txt"_s.arg(name, suffix));
    }
}

INSTANTIATE_TEST_SUITE_P(Import, CodbCases, testing::ValuesIn(fileCases(u"codb"_s, {u"*.codb"_s})), caseName);

TEST(CodbImport, SubObjectsJoinObjectsOfTheLine)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"later.codb"_s);
    ASSERT_TRUE(TestSupport::writeFile(path, "2100:01:Element:mandatory::VAR:m:REAL32:m:rw\n"
                                             "C000:00:Out of range:mandatory::VAR:m:UNSIGNED8:m:rw\n"));
    const auto store = ImportTest::emptyProject();
    ObjectDataBase::INDEX_DATA_T array;
    array.objecttype = CANopen::Array;
    array.description = u"mine"_s;
    EXPECT_TRUE(store->addIndex(0, 0x2100, array));
    CODBImporter importer;
    importer.setDatabase(store);
    importer.setFile(path);
    importer.startImport();
    importer.waitForEnd();
    const auto after = store->getIndex(0, 0x2100).value();
    EXPECT_EQ(after.datatype, CAN::Real32);
    EXPECT_EQ(after.description, u"mine"_s);
    EXPECT_TRUE(store->subIndexExists(0, 0xC000, 0));
    EXPECT_FALSE(store->indexExists(0, 0xC000));

    // A copy line that is not resolved leaves a row that belongs to no object.
    EXPECT_TRUE(imported(QStringLiteral(NCX_SOURCE_DIR "/tests/data/codb/copies.codb"))->subIndexExists(0, 0, 0));
    EXPECT_FALSE(store->subIndexExists(0, 0, 0));
}

TEST(ProfileDatabases, FindsProfiles)
{
    ProfileDatabases profiles;
    EXPECT_EQ(profiles.ids().join(u' '), u"301 302 401 402 402_v3 404 405 406 408 410 413 415 416 417 418 419 447 "
                                         "454-2 454-4 454-5 454-6 454-7"_s);
    EXPECT_EQ(profiles.filePath(u"402_V3"_s), u":/codb/v402_v3.codb"_s);
    EXPECT_EQ(profiles.filePath(u"V402"_s), u":/codb/v402.codb"_s);
    for (const QString &id : {u"403"_s, u""_s, u"v"_s, u"vv402"_s, u"../codb/402"_s, u"402.codb"_s})
        EXPECT_EQ(profiles.filePath(id), QString()) << id.toStdString();
    EXPECT_EQ(profiles.load(u"V403"_s), nullptr);
    EXPECT_EQ(profiles.lastError(), u"Unknown profile \"V403\" - call list_profiles for the available ids."_s);
    EXPECT_EQ(profiles.description(u"301"_s), u"data base for <CiA 301>"_s);
    EXPECT_TRUE(ProfileDatabases(u"/nonexistent"_s).ids().isEmpty());
    EXPECT_TRUE(ProfileDatabases(QString()).ids().isEmpty());
}

TEST(ProfileDatabases, KeepsTheLastOneOfACompanysOwn)
{
    const QTemporaryDir folder;
    const QString text = u"# ---- x ---\n#\n#PRAGMA any\n#  Pumps  \n2000::%1:optional::VAR:m:UNSIGNED8:m:rw\n"_s;
    ASSERT_TRUE(TestSupport::writeFile(folder.filePath(u"vendor.codb"_s), text.arg(u"one"_s).toUtf8()));
    ASSERT_TRUE(TestSupport::writeFile(folder.filePath(u"Pump.codb"_s), "#-\n\n"));
    ProfileDatabases profiles(folder.path());
    EXPECT_EQ(profiles.names(), (QStringList{u"Pump"_s, u"vendor"_s}));
    EXPECT_EQ(profiles.ids(), (QStringList{u"Pump"_s, u"endor"_s}));
    EXPECT_EQ(profiles.description(u"vendor"_s), u"Pumps"_s);
    EXPECT_EQ(profiles.description(u"pump"_s), QString());

    const auto first = profiles.load(u"vendor"_s);
    ASSERT_TRUE(first);
    ASSERT_TRUE(TestSupport::writeFile(folder.filePath(u"vendor.codb"_s), text.arg(u"two"_s).toUtf8()));
    EXPECT_EQ(profiles.load(u"vendor"_s), first);
    EXPECT_EQ(profiles.load(u"missing"_s), nullptr);
    EXPECT_EQ(first->getIndexName(0, 0x2000), u"one"_s);
    EXPECT_TRUE(profiles.load(u"pump"_s)->getIndexList(0, 0, 0xffff).isEmpty());
    EXPECT_EQ(profiles.load(u"Endor"_s)->getIndexName(0, 0x2000), u"two"_s);
    ASSERT_TRUE(QFile::remove(folder.filePath(u"vendor.codb"_s)));
    EXPECT_EQ(profiles.load(u"Endor"_s)->getIndexName(0, 0x2000), u"two"_s);
    EXPECT_EQ(profiles.load(u"vendor"_s), nullptr);
}

// The words of the built-in texts: nothing that the importer would not know, no key twice, no copy of nothing.
TEST(BuiltInProfiles, AreWellFormed)
{
    const QSet<QByteArray> categories = {"mandatory", "optional", "conditional"};
    const QSet<QByteArray> accesses = {"const", "ro", "rw", "wo", "rww", "rwr"};
    const ProfileDatabases profiles;
    for (const QString &id : profiles.ids()) {
        QSet<QByteArray> keys;
        QSet<QByteArray> objects;
        for (const QByteArray &line : linesOf(profiles.filePath(id))) {
            SCOPED_TRACE(id.toStdString() + " " + line.toStdString());
            if (line.isEmpty() || line.startsWith('#'))
                continue;
            if (line.startsWith('$')) {
                EXPECT_EQ(line.size(), 10);
                EXPECT_TRUE(objects.contains(line.sliced(6)));
                EXPECT_FALSE(objects.contains(line.sliced(1, 4)));
                EXPECT_FALSE(keys.contains(line.first(5)));
                keys.insert(line.first(5));
                continue;
            }
            const QByteArrayList fields = line.split(':');
            EXPECT_EQ(fields.size(), 23);
            EXPECT_FALSE(keys.contains(fields.at(0) + ':' + fields.at(1)));
            keys.insert(fields.at(0) + ':' + fields.at(1));
            EXPECT_FALSE(keys.contains('$' + fields.at(0)));
            EXPECT_FALSE(fields.at(2).trimmed().isEmpty());
            EXPECT_TRUE(categories.contains(fields.at(3)));
            if (fields.at(1).isEmpty())
                objects.insert(fields.at(0));
            if (fields.at(5) == "VAR") {
                EXPECT_TRUE(accesses.contains(fields.at(9)));
                EXPECT_NE(COHelper::mapDataTypeString(QString::fromLatin1(fields.at(7))), 0U);
                EXPECT_TRUE(fields.at(21) == "y" || fields.at(21) == "n");
                EXPECT_TRUE(objects.contains(fields.at(0)));
            } else {
                EXPECT_TRUE(fields.at(5) == "ARRAY" || fields.at(5) == "RECORD");
                EXPECT_TRUE(fields.at(1).isEmpty());
            }
        }
        EXPECT_FALSE(objects.isEmpty()) << id.toStdString();
        EXPECT_TRUE(profiles.description(id).startsWith("data base for <CiA "_L1)) << id.toStdString();
        EXPECT_EQ(TestSupport::readFile(profiles.filePath(id)).contains("has to be used with overloading for DS-301"),
                  id != "301"_L1 && id != "302"_L1);
    }
}

TEST(BuiltInProfiles, LoadToSoundObjects)
{
    ProfileDatabases profiles;
    for (const QString &id : profiles.ids()) {
        const auto store = profiles.load(id);
        ASSERT_TRUE(store);
        store->cacheAllSubs(0, 0);
        for (const quint16 index : store->getIndexList(0, 0, 0xffff)) {
            const auto object = store->getIndex(0, index).value();
            const QList<quint8> subs = store->getSubIndexList(0, index);
            SCOPED_TRACE(id.toStdString() + " " + QString::number(index, 16).toStdString());
            ASSERT_FALSE(subs.isEmpty());
            EXPECT_EQ(subs.first(), 0);
            EXPECT_EQ(object.objecttype == CANopen::Var, subs.size() == 1);
            for (const quint8 subindex : subs) {
                const Sub sub = subOf(*store, index, subindex);
                EXPECT_TRUE(fits(sub, sub.defaultvalue)) << +subindex << " " << sub.defaultvalue.toStdString();
                EXPECT_TRUE(fits(sub, sub.lowlimit) && fits(sub, sub.uplimit)) << +subindex;
                EXPECT_TRUE(object.objecttype != CANopen::Array || subindex == 0 || sub.datatype == object.datatype);
            }
            const Sub count = subOf(*store, index, 0);
            if (subs.size() > 1 && count.accesstype != "rw"_L1) {
                EXPECT_EQ(count.defaultvalue.toUInt(nullptr, 0), subs.last());
            }
        }
    }
}

TEST(BuiltInProfiles, KnowTheWellKnown)
{
    struct Row
    {
        QString profile;
        quint16 index;
        quint8 subindex;
        CAN::CANopenDataType type;
        QString access;
        uint mapping;
        QString value;
    };
    const Row rows[] = {
        {u"301"_s, 0x1000, 0, CAN::Unsigned32, u"ro"_s, 0, u""_s},
        {u"301"_s, 0x1008, 0, CAN::VisibleString, u"const"_s, 0, u" "_s},
        {u"301"_s, 0x1014, 0, CAN::Unsigned32, u"rw"_s, 0, u"$NODEID+0x80"_s},
        {u"301"_s, 0x1017, 0, CAN::Unsigned16, u"rw"_s, 0, u"0x0000"_s},
        {u"301"_s, 0x1200, 1, CAN::Unsigned32, u"ro"_s, 1, u"$NODEID+0x600"_s},
        {u"301"_s, 0x1400, 1, CAN::Unsigned32, u"rw"_s, 0, u"$NODEID+0x200"_s},
        {u"301"_s, 0x1A00, 64, CAN::Unsigned32, u"rw"_s, 0, u""_s},
        {u"301"_s, 0x1F81, 127, CAN::Unsigned32, u"rw"_s, 0, u"0x00000000"_s},
        {u"401"_s, 0x1000, 0, CAN::Unsigned32, u"ro"_s, 0, u"0x00000191"_s},
        {u"401"_s, 0x6200, 1, CAN::Unsigned8, u"rw"_s, 1, u"0x00"_s},
        {u"402"_s, 0x6041, 0, CAN::Unsigned16, u"ro"_s, 1, u""_s},
        {u"402"_s, 0x6060, 0, CAN::Integer8, u"wo"_s, 1, u""_s},
        {u"402"_s, 0x607D, 1, CAN::Integer32, u"rw"_s, 1, u"-2147483648"_s},
        {u"402"_s, 0x9841, 0, CAN::Unsigned16, u"ro"_s, 1, u""_s},
        {u"402_v3"_s, 0x6060, 0, CAN::Integer8, u"rw"_s, 1, u""_s},
        {u"418"_s, 0x1000, 0, CAN::Unsigned32, u"ro"_s, 0, u"0x000001A2"_s},
    };
    ProfileDatabases profiles;
    for (const Row &row : rows) {
        SCOPED_TRACE(QString::number(row.index, 16).toStdString());
        const Sub sub = subOf(*profiles.load(row.profile), row.index, row.subindex);
        EXPECT_EQ(sub.datatype, row.type);
        EXPECT_EQ(sub.accesstype, row.access);
        EXPECT_EQ(sub.pdomapping.toUInt(), row.mapping);
        EXPECT_EQ(sub.defaultvalue, row.value);
    }
}
