// Questions about the object dictionary of a line that single columns of `Objects%1` and `SubObjects%1` answer.

#include "store/objectdatabase.h"

#include <QSet>
#include <QSqlQuery>

using namespace Qt::StringLiterals;

bool ObjectDataBase::indexExists(quint8 line, quint16 index)
{
    return selectsRow(u"select objectindex from Objects%1 where objectindex = %2"_s.arg(line).arg(index));
}

bool ObjectDataBase::subIndexExists(quint8 line, quint16 index, quint8 subindex)
{
    return selectsRow(
        u"select subindex from SubObjects%1 where objectindex = %2 and subindex = %3"_s.arg(line).arg(index).arg(
            subindex));
}

QString ObjectDataBase::getIndexName(quint8 line, quint16 index)
{
    const QVariant id = selectValue(u"select name from Objects%1 where objectindex = %2"_s.arg(line).arg(index));
    return id.isNull() ? QString() : strings_.textOf(id.toInt());
}

QList<quint16> ObjectDataBase::getIndexList(quint8 line, quint16 first, quint16 last)
{
    QList<quint16> indices;
    for (const quint32 index : selectNumbers(
             u"select objectindex from Objects%1 where objectindex between %2 and %3 order by objectindex asc"_s
                 .arg(line)
                 .arg(first)
                 .arg(last)))
        indices.append(static_cast<quint16>(index));
    return indices;
}

QMap<quint16, QString> ObjectDataBase::getIndexNames(quint8 line, quint16 first, quint16 last)
{
    QMap<quint16, QString> names;
    QSqlQuery query = newQuery();
    query.setForwardOnly(true);
    if (!execQuery(
            query,
            u"select objectindex, name from Objects%1 where objectindex between %2 and %3"_s.arg(line).arg(first).arg(
                last)))
        return names;
    while (query.next()) {
        const QVariant name = query.value(1);
        names.insert(static_cast<quint16>(query.value(0).toUInt()),
                     name.isNull() ? QString() : strings_.textOf(name.toInt()));
    }
    return names;
}

QMap<quint16, quint32> ObjectDataBase::getObjectTypes(quint8 line, quint16 first, quint16 last)
{
    QMap<quint16, quint32> types;
    QSqlQuery query = newQuery();
    query.setForwardOnly(true);
    const QString statement =
        u"select objectindex, objecttype from Objects%1 where objectindex between %2 and %3 order by objectindex"_s
            .arg(line)
            .arg(first)
            .arg(last);
    if (execQuery(query, statement)) {
        while (query.next())
            types.insert(static_cast<quint16>(query.value(0).toUInt()), query.value(1).toUInt());
    }
    return types;
}

QList<ObjectDataBase::SubKey> ObjectDataBase::getSubKeys(quint8 line)
{
    QList<SubKey> keys;
    QSqlQuery query = newQuery();
    query.setForwardOnly(true);
    if (execQuery(query,
                  u"select objectindex, subindex from SubObjects%1 order by objectindex, subindex"_s.arg(line))) {
        while (query.next())
            keys.append(
                {static_cast<quint16>(query.value(0).toUInt()), static_cast<quint8>(query.value(1).toUInt()), line});
    }
    return keys;
}

quint16 ObjectDataBase::getSubIndexDataType(quint8 line, quint16 index, quint8 subindex)
{
    return static_cast<quint16>(
        selectValue(
            u"select datatype from SubObjects%1 where objectindex = %2 and subindex = %3"_s.arg(line).arg(index).arg(
                subindex))
            .toUInt());
}

QString ObjectDataBase::getSubIndexDefaultValue(quint8 line, quint16 index, quint8 subindex)
{
    return selectValue(u"select defaultvalue from SubObjects%1 where objectindex = %2 and subindex = %3"_s.arg(line)
                           .arg(index)
                           .arg(subindex))
        .toString();
}

QList<ObjectDataBase::SubKey> ObjectDataBase::findSubIndices(quint8 line, const QString &column, const QString &value)
{
    QSet<quint32> seen;
    QList<SubKey> found;
    for (const QString &literal : {value, u'\'' + value + u'\''}) {
        QSqlQuery query = newQuery();
        query.setForwardOnly(true);
        const QString statement =
            u"select objectindex,subindex from SubObjects%1 as sub where (%2 = %3) and exists (select 1 from Objects%1 "
            "where Objects%1.objectindex = sub.objectindex) order by objectindex,subindex ASC"_s.arg(
                QString::number(line), column, literal);
        if (!execQuery(query, statement))
            continue;
        while (query.next()) {
            const quint32 index = query.value(0).toUInt();
            const auto sub = static_cast<quint8>(query.value(1).toUInt());
            const quint32 key = SubObjectCache::key(static_cast<quint16>(index), sub);
            if (!seen.contains(key)) {
                seen.insert(key);
                found.append({static_cast<quint16>(index), sub, line});
            }
        }
    }
    return found;
}

void ObjectDataBase::cacheDenotations(quint8 line, quint16 index)
{
    QSqlQuery query = newQuery();
    query.setForwardOnly(true);
    const QString condition = index != 0 ? u" where objectindex = %1"_s.arg(index) : QString();
    if (!execQuery(query, u"select denotation, name, objectindex, subindex from SubObjects%1%2"_s.arg(
                              QString::number(line), condition)))
        return;
    while (query.next()) {
        QString display = strings_.textOf(query.value(0).toInt());
        if (display.isEmpty())
            display = strings_.textOf(query.value(1).toInt());
        denotations_.insert(query.value(2).toUInt() << 16 | quint32{line} << 8 | query.value(3).toUInt(), display);
    }
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

    const Transaction transaction(*this);
    for (const quint32 id : selectNumbers(u"select id from Strings"_s)) {
        if (!used.contains(id))
            run("removeUnusedStrings", u"delete from Strings where id = %1"_s.arg(id));
    }
    cacheStrings();
}
