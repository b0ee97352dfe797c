#include "import/importproject.h"
#include "nodedict/cohelper.h"
#include "store/objectdatabase.h"
#include "support/testhome.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QMap>
#include <QSet>

using namespace Qt::StringLiterals;

namespace {

enum Column
{
    Index,
    Sub,
    Name,
    Type,
    Access,
    Default,
    Mapping,
    Low,
    High,
    Value,
    Denotation,
    ColumnCount
};

/// A value in the one notation that the tables have: integers in decimal, node-relative ones in hexadecimal.
QString canonical(QString value)
{
    bool ok = false;
    if (value.startsWith("$NODEID+"_L1))
        return u"$NODEID+0x%1"_s.arg(value.mid(8).toULongLong(nullptr, 0), 0, 16).toUpper();
    const bool negative = value.startsWith(u'-');
    const quint64 number = (negative ? value.mid(1) : value).toULongLong(&ok, 0);
    if (!ok) // a table of columns between tabs cannot hold the tab of a text
        return value.replace(u'\t', u' ').trimmed();
    return (negative ? u"-"_s : QString()) + QString::number(number);
}

/// A limit as the program keeps it: the tables have those of signed types without their sign.
QString limitOf(const QString &value, uint type)
{
    const COHelper::Limits range = COHelper::getDefaultLimits(type);
    const quint64 highest = range.high.toULongLong();
    bool ok = false;
    const quint64 number = canonical(value).toULongLong(&ok);
    if (!ok || !range.low.startsWith(u'-') || number <= highest)
        return canonical(value);
    return QString::number(static_cast<qint64>(number - 2 * highest - 2));
}

/// "1018" with an object's name, "1018:01" with the columns of a sub-object.
using Rows = QMap<QString, QString>;

QString keyOf(quint16 index, quint8 subindex)
{
    return u"%1:%2"_s.arg(index, 4, 16, '0'_L1).arg(subindex, 2, 16, '0'_L1);
}

Rows importedRows(ObjectDataBase &store)
{
    Rows rows;
    for (const StoreRecords::IndexEntry &object : store.getAllIndices(0))
        rows.insert(QString::number(object.index, 16), object.data.name);
    for (const auto &[line, index, subindex, sub] : store.getAllSubIndices(0)) {
        const QString low = sub.limitineds ? canonical(sub.lowlimit) : QString();
        const QString high = sub.limitineds ? canonical(sub.uplimit) : QString();
        const QStringList columns{sub.name,
                                  u"0x%1"_s.arg(sub.datatype, 4, 16, '0'_L1).toUpper(),
                                  sub.accesstype,
                                  canonical(sub.defaultvalue),
                                  QString::number(sub.pdomapping.toBinary()),
                                  low,
                                  high,
                                  canonical(sub.currentvalue),
                                  sub.denotation};
        rows.insert(keyOf(index, subindex), columns.join(" | "_L1));
    }
    return rows;
}

/// The tables name compact sub-objects in a way of their own.
QString nameOf(const QStringList &row, quint8 subindex, const QString &object)
{
    if (subindex == 0 && row[Name] == "NrOfObjects"_L1)
        return u"Highest subindex supported"_s;
    if (subindex > 0 && row[Name] == object + QString::number(subindex) && !object.isEmpty())
        return u"%1 %2"_s.arg(object).arg(subindex);
    return row[Name];
}

/// What a table says; an object that is no group is its sub-index 0, too.
Rows expectedRows(const QList<QStringList> &table, ObjectDataBase &store)
{
    const auto indexOf = [](const QStringList &row) { return row[Index].toUShort(nullptr, 16); };
    QSet<quint16> groups;
    for (const QStringList &row : table) {
        if (row[Sub] != "-"_L1)
            groups.insert(indexOf(row));
    }
    Rows rows;
    for (const QStringList &row : table) {
        const quint16 index = indexOf(row);
        if (index < 0x1000 || index > 0xbfff)
            continue;
        const QString object = QString::number(index, 16);
        if (row[Sub] == "-"_L1) {
            rows.insert(object, row[Name]);
            const auto data = store.getIndex(0, index).value_or(ObjectDataBase::INDEX_DATA_T());
            if (groups.contains(index) || data.objecttype == CANopen::Array || data.objecttype == CANopen::Record)
                continue;
        }
        const quint8 subindex = row[Sub] == "-"_L1 ? quint8{0} : static_cast<quint8>(row[Sub].toUInt(nullptr, 16));
        const QStringList columns{nameOf(row, subindex, rows.value(object)),
                                  row[Type].toUpper(),
                                  row[Access],
                                  canonical(row[Default]),
                                  row[Mapping],
                                  limitOf(row[Low], row[Type].toUInt(nullptr, 16)),
                                  limitOf(row[High], row[Type].toUInt(nullptr, 16)),
                                  canonical(row[Value]),
                                  row[Denotation]};
        rows.insert(keyOf(index, subindex), columns.join(" | "_L1));
    }
    return rows;
}

QList<QStringList> readTable(const QString &path)
{
    QList<QStringList> rows;
    for (const QString &line : QString::fromUtf8(TestSupport::readFile(path)).split(u'\n', Qt::SkipEmptyParts)) {
        QStringList row = line.split(u'\t');
        row.resize(ColumnCount);
        rows.append(row);
    }
    return rows;
}

} // namespace

TEST(EdsCorpus, RealFilesImportExactly)
{
    const QString folder = TestSupport::corpusFolder();
    if (folder.isEmpty())
        GTEST_SKIP() << "the folder of real device files is missing (NCX_CORPUS)";
    const QStringList files = QDir(folder).entryList({u"*.eds"_s, u"*.dcf"_s}, QDir::Files, QDir::Name);
    ASSERT_FALSE(files.isEmpty());
    for (const QString &file : files) {
        SCOPED_TRACE(file.toStdString());
        const auto store = ImportTest::emptyProject();
        ASSERT_TRUE(ImportTest::importEds(store, u"%1/%2"_s.arg(folder, file)));
        const Rows expected = expectedRows(readTable(u"%1/expected/%2.tsv"_s.arg(folder, file)), *store);
        const Rows imported = importedRows(*store);
        ASSERT_FALSE(expected.isEmpty());
        for (const QString &key : expected.keys())
            EXPECT_EQ(imported.value(key, u"missing"_s).toStdString(), expected.value(key).toStdString())
                << key.toStdString();
        for (const QString &key : imported.keys()) {
            const uint index = key.first(4).toUInt(nullptr, 16);
            const bool isAnnouncedPdo =
                index >= 0x1400 && index < 0x1c00 && !expected.contains(QString::number(index, 16));
            EXPECT_TRUE(isAnnouncedPdo || expected.contains(key)) << key.toStdString();
        }
    }
}
