#include "generate/run/importdispatch.h"
#include "import/importproject.h"
#include "store/objectdatabase.h"
#include "store/tables/temporaryindex.h"
#include "support/testhome.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <ctime>

using namespace Qt::StringLiterals;

namespace {

using Store = std::shared_ptr<ObjectDataBase>;

constexpr quint32 entriesOfArray = 50;

QString written(const QString &path, const QByteArray &content)
{
    EXPECT_TRUE(TestSupport::writeFile(path, content));
    return path;
}

QString compactArrays(const QString &folder, quint32 size)
{
    QByteArray text;
    for (quint32 i = 0; i < size / entriesOfArray; ++i)
        text += '[' + QByteArray::number(0x2000 + i, 16) + "]\nObjectType=8\nDataType=5\nCompactSubObj=50\n";
    return written(folder + "/device.eds"_L1, text);
}

QString documentation(const QString &folder, quint32 size)
{
    const QByteArray rest = "\tName:\tA\tDirection:\tTX\tCycle Time (ms):\t1\tPriority:\t6\n";
    QByteArray text;
    for (quint32 i = 1; i <= size; ++i)
        text += "PGN:\t0x0/" + QByteArray::number(i) + rest;
    return written(folder + "/my_doc.txt"_L1, text);
}

QString messages(const QString &folder, quint32 size)
{
    const Store store = ImportTest::emptyProject();
    {
        const ObjectDataBase::Transaction transaction(*store);
        const TemporaryIndex pgnIndex(store->statements(), 0, TemporaryIndex::pgnKeys);
        const TemporaryIndex canidIndex(store->statements(), 0, TemporaryIndex::canidKeys);
        for (quint32 i = 1; i <= size; ++i) {
            EXPECT_TRUE(store->addPGN(0, i, {.number = i, .direction = ObjectDataBase::transmit}));
            EXPECT_TRUE(store->addCANID(0, i, {.id = i, .direction = ObjectDataBase::transmit}));
        }
    }
    EXPECT_TRUE(store->saveDatabase(folder + "/other.ncxp"_L1));
    return folder + "/other.ncxp"_L1;
}

/// Processor time of the import into a line that has as much already, of which the last check has kept a list.
double secondsOf(QString (*make)(const QString &folder, quint32 size), const QString &lineType, quint32 size)
{
    const QTemporaryDir folder;
    const Store store = ImportTest::emptyProject();
    EXPECT_TRUE(store->setGeneralSetting(u"line0type"_s, lineType));
    QList<StoreRecords::SubEntry> entries;
    for (quint32 i = 0; i < size; ++i)
        entries.append(
            {0, static_cast<quint16>(0x6000 + i / entriesOfArray), static_cast<quint8>(i % entriesOfArray), {}});
    EXPECT_TRUE(store->addSubIndices(entries));
    store->keepSubIndices(true);
    EXPECT_EQ(store->getAllSubIndices(0).size(), size);
    const QString path = make(folder.path(), size);
    const std::clock_t start = std::clock();
    EXPECT_TRUE(ImportDispatch::importFile(store, path));
    return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

} // namespace

// Four times as much takes about four times as long; to search or move all for each record takes sixteen. What
// else the machine does makes a measurement longer, never shorter, so that the shortest of several count.
TEST(Growth, ImportsTakeTimeInProportionToWhatTheyBring)
{
    constexpr quint32 small = 2000;
    constexpr double limit = 6.5;
    const std::tuple<const char *, QString (*)(const QString &, quint32), QString> kinds[] = {
        {"compact arrays", compactArrays, u"1"_s},
        {"documentation", documentation, u"2"_s},
        {"PGNs", messages, u"2"_s},
        {"CAN-IDs", messages, u"4"_s},
    };
    for (const auto &[name, make, lineType] : kinds) {
        double before = secondsOf(make, lineType, small);
        double after = secondsOf(make, lineType, 4 * small);
        for (int tries = 1; tries < 10 && after >= limit * before; ++tries) {
            before = std::min(before, secondsOf(make, lineType, small));
            after = std::min(after, secondsOf(make, lineType, 4 * small));
        }
        EXPECT_LT(after, limit * before) << name << ": " << before << " s, " << after << " s";
    }
}
