#include "import/importproject.h"
#include "nodedict/cohelper.h"
#include "store/objectdatabase.h"
#include "support/testhome.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QHash>
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

QString directionless(PDOMapping mapping)
{
    return QString::number(mapping.toBinary());
}

std::string asText(const QStringList &columns)
{
    return columns.join(" | "_L1).toStdString();
}

/// What the project has, in the columns of the tables.
std::string imported(ObjectDataBase &store, quint16 index, quint8 subindex)
{
    ObjectDataBase::SUBINDEX_DATA_T sub;
    if (!store.getSubIndex(0, index, subindex, sub))
        return "missing";
    return asText({sub.name, u"0x%1"_s.arg(sub.datatype, 4, 16, QLatin1Char('0')).toUpper(), sub.accesstype,
                   canonical(sub.defaultvalue), directionless(sub.pdomapping),
                   sub.limitineds ? canonical(sub.lowlimit) : QString(),
                   sub.limitineds ? canonical(sub.uplimit) : QString(), canonical(sub.currentvalue), sub.denotation});
}

std::string expected(const QStringList &row, const QString &name)
{
    return asText({name, row[Type].toUpper(), row[Access], canonical(row[Default]), row[Mapping], canonical(row[Low]),
                   canonical(row[High]), canonical(row[Value]), row[Denotation]});
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

/// Compares a project with a table, row by row, and notes what the table has.
class Comparison
{
public:
    Comparison(ObjectDataBase &store, const QList<QStringList> &rows)
        : store_(store)
    {
        for (const QStringList &row : rows) {
            if (row[Sub] != "-"_L1)
                groups_.insert(indexOf(row));
        }
        for (const QStringList &row : rows)
            compare(row);
    }

    /// Everything is in the table, but for the objects of PDOs that are announced only.
    void expectNothingElse() const
    {
        for (const quint16 index : store_.getIndexList(0, 0, 0xffff)) {
            if (!names_.contains(index)) {
                EXPECT_TRUE(index >= 0x1400 && index < 0x1c00) << std::hex << index;
                continue;
            }
            EXPECT_EQ(store_.getSubIndexList(0, index).size(), subs_.value(index)) << std::hex << index;
        }
    }

private:
    static quint16 indexOf(const QStringList &row) { return row[Index].toUShort(nullptr, 16); }

    void compare(const QStringList &row)
    {
        const quint16 index = indexOf(row);
        if (index < 0x1000 || index > 0xbfff)
            return;
        const std::string where = row.join(u' ').toStdString();
        if (row[Sub] == "-"_L1) {
            ASSERT_TRUE(store_.indexExists(0, index)) << where;
            EXPECT_EQ(store_.getIndexName(0, index), row[Name]) << where;
            names_.insert(index, row[Name]);
            ObjectDataBase::INDEX_DATA_T object;
            store_.getIndex(0, index, object);
            if (groups_.contains(index) || object.objecttype == CANopen::Array || object.objecttype == CANopen::Record)
                return;
        }
        const quint8 subindex = row[Sub] == "-"_L1 ? quint8{0} : static_cast<quint8>(row[Sub].toUInt(nullptr, 16));
        ++subs_[index];
        EXPECT_EQ(imported(store_, index, subindex), expected(row, nameOf(row, subindex))) << where;
    }

    /// The tables name compact sub-objects in a way of their own.
    QString nameOf(const QStringList &row, quint8 subindex) const
    {
        const QString object = names_.value(indexOf(row));
        if (subindex == 0 && row[Name] == "NrOfObjects"_L1)
            return u"Highest subindex supported"_s;
        if (subindex > 0 && row[Name] == object + QString::number(subindex) && !object.isEmpty())
            return u"%1 %2"_s.arg(object).arg(subindex);
        return row[Name];
    }

    ObjectDataBase &store_;
    QSet<quint16> groups_; ///< objects with sub-objects
    QHash<quint16, QString> names_;
    QHash<quint16, qsizetype> subs_;
};

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
        const auto rows = readTable(u"%1/expected/%2.tsv"_s.arg(folder, file));
        ASSERT_FALSE(rows.isEmpty());
        const auto store = ImportTest::emptyProject();
        ASSERT_TRUE(ImportTest::importEds(store, u"%1/%2"_s.arg(folder, file)));
        const Comparison comparison(*store, rows);
        comparison.expectNothingElse();
    }
}
