// Copies of objects, and the column-wise writers through which attributes and text projects arrive.

#include "store/metadatablob.h"
#include "store/objectdatabase.h"

#include <QDataStream>
#include <QDebug>
#include <QIODevice>
#include <QMutexLocker>
#include <QSet>
#include <QSignalBlocker>
#include <QSqlError>
#include <QSqlQuery>

using namespace Qt::StringLiterals;

namespace {

constexpr int metadataStreamVersion = 17;

} // namespace

StoreRecords::Metadata MetadataBlob::parse(const QByteArray &bytes)
{
    constexpr int countSize = 4;
    StoreRecords::Metadata metadata;
    if (bytes.size() < countSize)
        return metadata;
    QDataStream stream(bytes);
    stream.setVersion(metadataStreamVersion);
    stream >> metadata;
    return stream.status() == QDataStream::Ok ? metadata : StoreRecords::Metadata();
}

QByteArray MetadataBlob::serialise(const StoreRecords::Metadata &metadata)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setVersion(metadataStreamVersion);
    stream << metadata;
    return bytes;
}

bool ObjectDataBase::copyIndex(quint8 fromLine, quint16 fromIndex, quint8 toLine, quint16 toIndex)
{
    if (blocked_)
        return false;
    if (fromLine == toLine && fromIndex == toIndex)
        return true;
    INDEX_DATA_T object;
    if (!getIndex(fromLine, fromIndex, object))
        return false;

    const Transaction transaction(*this);
    removeIndex(toLine, toIndex, false);
    bool done = addIndex(toLine, toIndex, object);
    const QList<quint8> subs = getSubIndexList(fromLine, fromIndex);
    {
        const QSignalBlocker silent(this);
        cacheAllSubs(fromLine, fromIndex);
        for (const quint8 sub : subs) {
            SUBINDEX_DATA_T data;
            getSubIndex(fromLine, fromIndex, sub, data);
            done = addSubIndex(toLine, toIndex, sub, data);
        }
        cacheDenotations(toLine, toIndex);
        // Later removals would not reach the cache, and no run is under way that still wants it.
        clearSubCache();
    }
    for (const quint8 sub : subs)
        notify(Change::SubObjectWritten, {.index = toIndex, .subindex = sub, .line = toLine});
    clearDenotationCache();
    return done;
}

bool ObjectDataBase::copyIndexFrom(ObjectDataBase *other, quint8 fromLine, quint16 fromIndex, quint8 toLine,
                                   quint16 toIndex, bool objectOnly)
{
    INDEX_DATA_T object;
    if (blocked_ || !other || !other->getIndex(fromLine, fromIndex, object))
        return false;
    const Transaction transaction(*this);
    bool done = addIndex(toLine, toIndex, object);
    const QList<quint8> subs = other->getSubIndexList(fromLine, fromIndex);
    if (!objectOnly) {
        for (const quint8 sub : subs) {
            SUBINDEX_DATA_T data;
            other->getSubIndex(fromLine, fromIndex, sub, data);
            done = addSubIndex(toLine, toIndex, sub, data);
        }
    }
    const QSet<quint8> kept(subs.begin(), subs.end());
    for (const quint8 sub : getSubIndexList(toLine, toIndex)) {
        if (!kept.contains(sub))
            removeSubIndex(toLine, toIndex, sub);
    }
    return done;
}

bool ObjectDataBase::setMetadata(const QString &statement, quint16 index, std::optional<quint8> subindex,
                                 const Metadata &metadata)
{
    if (blocked_)
        return false;
    const QMutexLocker locker(&cacheMutex_);
    QSqlQuery query = newQuery();
    query.prepare(statement);
    query.bindValue(u":metadata"_s, MetadataBlob::serialise(metadata));
    query.bindValue(u":objectindex"_s, index);
    if (subindex)
        query.bindValue(u":subindex"_s, *subindex);
    if (execPrepared(query))
        return true;
    qDebug().noquote() << "setMetadata" << statement << query.lastError().text();
    return false;
}

bool ObjectDataBase::setObjectMetadata(quint8 line, quint16 index, const Metadata &metadata)
{
    return setMetadata(u"update Objects%1 SET metadata = :metadata where objectindex = :objectindex"_s.arg(line), index,
                       {}, metadata);
}

bool ObjectDataBase::setSubObjectMetadata(quint8 line, quint16 index, quint8 subindex, const Metadata &metadata)
{
    return setMetadata(
        u"update SubObjects%1 SET metadata = :metadata where objectindex = :objectindex and subindex = :subindex"_s.arg(
            line),
        index, subindex, metadata);
}

namespace {

/// The line of a per-line table as its last character tells it: a line above 9 has never been understood here.
std::optional<quint8> lineOfTable(const QString &table)
{
    bool ok = false;
    const uint line = table.right(1).toUInt(&ok);
    return ok ? std::optional(static_cast<quint8>(line)) : std::nullopt;
}

bool isPooledColumn(const QString &column)
{
    return column == "name"_L1 || column == "description"_L1;
}

constexpr int automaticBase = 0;

} // namespace

/// Writes a column of the row that the condition names, which is made first where it is missing.
void ObjectDataBase::writeColumn(const QString &table, const QString &condition, const QString &insert,
                                 const QString &column, const QVariant &value)
{
    QSqlQuery query = newQuery();
    if (!run("error writeColumn", query, u"select objectindex from %1 where %2"_s.arg(table, condition)))
        return;
    const bool exists = query.next();
    query.finish();
    const QString text =
        (isPooledColumn(column) ? QString::number(strings_.idOf(value.toString())) : value.toString()).simplified();
    if (exists || run("error writeColumn", query, insert))
        run("error writeColumn", query, u"update %1 set %2='%3' where %4"_s.arg(table, column, text, condition));
}

void ObjectDataBase::setObjectIndexSqlValue(const QString &table, const QString &index, const QString &column,
                                            const QVariant &value)
{
    if (blocked_ || !value.isValid())
        return;
    const auto line = lineOfTable(table);
    const Metadata metadata = column == "metadata"_L1 ? MetadataBlob::parse(value.toByteArray()) : Metadata();
    if (line && !metadata.isEmpty()) {
        setObjectMetadata(*line, static_cast<quint16>(index.toUInt(nullptr, automaticBase)), metadata);
        return;
    }
    writeColumn(table, u"objectindex = %1"_s.arg(index),
                u"insert into %1 values(%2,0,0,0,0,0,0,0,0)"_s.arg(table, index), column, value);
}

void ObjectDataBase::setSubindexSqlValue(const QString &table, const QString &index, const QString &subindex,
                                         const QString &column, const QVariant &value)
{
    if (blocked_ || !value.isValid())
        return;
    const auto line = lineOfTable(table);
    const Metadata metadata = column == "metadata"_L1 ? MetadataBlob::parse(value.toByteArray()) : Metadata();
    if (line && !metadata.isEmpty()) {
        setSubObjectMetadata(*line, static_cast<quint16>(index.toUInt(nullptr, automaticBase)),
                             static_cast<quint8>(subindex.toUInt(nullptr, automaticBase)), metadata);
        return;
    }
    writeColumn(table, u"objectindex = %1 and subindex = %2"_s.arg(index, subindex),
                u"insert into %1 values(%2,%3,NULL,0,0,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,0,"
                "NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL)"_s.arg(table, index, subindex),
                column, value);
}
