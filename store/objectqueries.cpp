// Questions about the object dictionary of a line that single columns of `Objects%1` and `SubObjects%1` answer.

#include "store/objectdatabase.h"

#include "store/schema.h"

#include <QRegularExpression>
#include <QSet>

#include <cmath>

using namespace Qt::StringLiterals;

namespace {

QString subColumnSelect(quint8 line, const QString &column)
{
    return u"select %1 from SubObjects%2 where objectindex = ? and subindex = ?"_s.arg(column, QString::number(line));
}

/// A value as a statement holds it without quotes: a number; nothing for another text.
std::optional<QVariant> numberOf(const QString &value)
{
    static const QRegularExpression hexadecimal(u"^0[xX][0-9a-fA-F]{1,16}$"_s);
    bool ok = false;
    if (const qint64 number = value.toLongLong(&ok); ok)
        return number;
    if (hexadecimal.match(value).hasMatch())
        return static_cast<qint64>(value.toULongLong(nullptr, 16));
    const double number = value.toDouble(&ok);
    return ok && std::isfinite(number) ? std::optional<QVariant>(number) : std::nullopt;
}

} // namespace

bool ObjectDataBase::indexExists(quint8 line, quint16 index)
{
    return statements_.hasRow({nullptr, u"select objectindex from Objects%1 where objectindex = ?"_s.arg(line)},
                              {index});
}

bool ObjectDataBase::subIndexExists(quint8 line, quint16 index, quint8 subindex)
{
    return statements_.hasRow({nullptr, subColumnSelect(line, u"subindex"_s)}, {index, subindex});
}

QString ObjectDataBase::getIndexName(quint8 line, quint16 index)
{
    const QVariant id =
        statements_.value({nullptr, u"select name from Objects%1 where objectindex = ?"_s.arg(line)}, {index});
    return id.isNull() ? QString() : strings_.textOf(id.toInt());
}

QList<quint16> ObjectDataBase::getIndexList(quint8 line, quint16 first, quint16 last)
{
    QList<quint16> indices;
    statements_.visit(
        {nullptr,
         u"select objectindex from Objects%1 where objectindex between ? and ? order by objectindex asc"_s.arg(line)},
        {first, last}, [&](const ResultRow &row) { indices.append(row.number<quint16>(0)); });
    return indices;
}

QMap<quint16, QString> ObjectDataBase::getIndexNames(quint8 line, quint16 first, quint16 last)
{
    QMap<quint16, QString> names;
    statements_.visit(
        {nullptr, u"select objectindex, name from Objects%1 where objectindex between ? and ?"_s.arg(line)},
        {first, last}, [&](const ResultRow &row) {
            const QVariant name = row.value(1);
            names.insert(row.number<quint16>(0), name.isNull() ? QString() : strings_.textOf(name.toInt()));
        });
    return names;
}

QMap<quint16, quint32> ObjectDataBase::getObjectTypes(quint8 line, quint16 first, quint16 last)
{
    QMap<quint16, quint32> types;
    statements_.visit(
        {nullptr, u"select objectindex, objecttype from Objects%1 where objectindex between ? and ?"_s.arg(line)},
        {first, last}, [&](const ResultRow &row) { types.insert(row.number<quint16>(0), row.number<quint32>(1)); });
    return types;
}

QList<ObjectDataBase::SubKey> ObjectDataBase::getSubKeys(quint8 line)
{
    QList<SubKey> keys;
    statements_.visit(
        {nullptr, u"select objectindex, subindex from SubObjects%1 order by objectindex, subindex"_s.arg(line)}, {},
        [&](const ResultRow &row) {
            keys.append({row.number<quint16>(0), row.number<quint8>(1), line});
        });
    return keys;
}

quint16 ObjectDataBase::getSubIndexDataType(quint8 line, quint16 index, quint8 subindex)
{
    return static_cast<quint16>(
        statements_.value({nullptr, subColumnSelect(line, u"datatype"_s)}, {index, subindex}).toUInt());
}

QString ObjectDataBase::getSubIndexDefaultValue(quint8 line, quint16 index, quint8 subindex)
{
    return statements_.value({nullptr, subColumnSelect(line, u"defaultvalue"_s)}, {index, subindex}).toString();
}

QList<ObjectDataBase::SubKey> ObjectDataBase::findSubIndices(quint8 line, const QString &column, const QString &value)
{
    QList<SubKey> found;
    if (!ProjectSchema::columnNames(ProjectSchema::LineTable::SubObjects).contains(column, Qt::CaseInsensitive))
        return found;
    const QString text =
        u"select objectindex, subindex from SubObjects%1 as sub where %2 = ? and exists (select 1 from Objects%1 where "
        "Objects%1.objectindex = sub.objectindex) order by objectindex, subindex"_s.arg(QString::number(line), column);
    QSet<quint32> seen;
    const auto collect = [&](const QVariant &sought) {
        statements_.visit({nullptr, text}, {sought}, [&](const ResultRow &row) {
            const SubKey key{row.number<quint16>(0), row.number<quint8>(1), line};
            const quint32 number = SubObjectCache::key(key.index, key.subindex);
            if (!seen.contains(number))
                found.append(key);
            seen.insert(number);
        });
    };
    if (const std::optional<QVariant> number = numberOf(value))
        collect(*number);
    collect(value);
    return found;
}

void ObjectDataBase::removeUnusedStrings()
{
    const QList<quint8> lines = getNodeList();
    QSet<quint32> used;
    const auto collect = [&](QLatin1StringView table, std::initializer_list<QLatin1StringView> columns) {
        // Each column by itself: a table that lacks one still needs the texts of the others.
        for (const quint8 line : lines) {
            for (const QLatin1StringView column : columns) {
                for (const quint32 id : selectNumbers(u"select %1 from %2%3"_s.arg(column, table).arg(line)))
                    used.insert(id);
            }
        }
    };
    collect("Objects"_L1, {"name"_L1, "description"_L1, "device_class"_L1});
    collect("SubObjects"_L1, {"name"_L1, "denotation"_L1, "description"_L1});
    for (const QLatin1StringView table : {"PGNs"_L1, "CANIDs"_L1, "SPNs"_L1, "DataElements"_L1})
        collect(table, {"name"_L1, "desc"_L1});
    for (const quint32 id : selectNumbers(u"select name from Signals"_s))
        used.insert(id);

    Transaction transaction(*this);
    for (const quint32 id : selectNumbers(u"select id from Strings"_s)) {
        if (!used.contains(id))
            run("removeUnusedStrings", u"delete from Strings where id = ?"_s, {id});
    }
    cacheStrings();
}
