// Copies of objects, their attributes, and the writers of single values through which text projects arrive.

#include "store/metadatablob.h"
#include "store/objectdatabase.h"
#include "store/objectrowwriter.h"

#include <QDataStream>
#include <QIODevice>
#include <QMutexLocker>
#include <QSet>
#include <QSignalBlocker>

#include <algorithm>

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

    const QList<quint8> subs = getSubIndexList(fromLine, fromIndex);
    Step step(*this);
    if (!removeIndex(toLine, toIndex, false) || !addIndex(toLine, toIndex, object))
        return false;
    {
        const QSignalBlocker silent(this);
        if (!copySubs(*this, {.index = fromIndex, .line = fromLine}, subs, {.index = toIndex, .line = toLine}))
            return false;
    }
    if (!step.commit())
        return false;
    for (const quint8 sub : subs)
        notify(Change::SubObjectWritten, {.index = toIndex, .subindex = sub, .line = toLine});
    return true;
}

/// Copies subindices of an object, with texts of any kind.
bool ObjectDataBase::copySubs(ObjectDataBase &from, const SubKey &source, const QList<quint8> &subs,
                              const SubKey &target)
{
    return std::ranges::all_of(subs, [&](quint8 sub) {
        SUBINDEX_DATA_T data;
        return from.getSubIndex(source.line, source.index, sub, data) &&
               addSubIndex(target.line, target.index, sub, data, Quotes::Kept);
    });
}

bool ObjectDataBase::copyIndexFrom(ObjectDataBase *other, quint8 fromLine, quint16 fromIndex, quint8 toLine,
                                   quint16 toIndex, bool objectOnly)
{
    INDEX_DATA_T object;
    if (blocked_ || !other || !other->getIndex(fromLine, fromIndex, object))
        return false;
    Step step(*this);
    if (!addIndex(toLine, toIndex, object))
        return false;
    const QList<quint8> subs = other->getSubIndexList(fromLine, fromIndex);
    if (!objectOnly &&
        !copySubs(*other, {.index = fromIndex, .line = fromLine}, subs, {.index = toIndex, .line = toLine}))
        return false;
    const QSet<quint8> kept(subs.begin(), subs.end());
    for (const quint8 sub : getSubIndexList(toLine, toIndex)) {
        if (!kept.contains(sub) && !removeSubIndex(toLine, toIndex, sub))
            return false;
    }
    return step.commit();
}

bool ObjectDataBase::setMetadata(const QString &text, QVariantList key, const Metadata &metadata)
{
    if (blocked_)
        return false;
    const QMutexLocker locker(&cacheMutex_);
    key.prepend(MetadataBlob::serialise(metadata));
    return runSubs("setMetadata", text, key);
}

bool ObjectDataBase::setObjectMetadata(quint8 line, quint16 index, const Metadata &metadata)
{
    return setMetadata(u"update Objects%1 SET metadata = ? where objectindex = ?"_s.arg(line), {index}, metadata);
}

bool ObjectDataBase::setSubObjectMetadata(quint8 line, quint16 index, quint8 subindex, const Metadata &metadata)
{
    return setMetadata(u"update SubObjects%1 SET metadata = ? where objectindex = ? and subindex = ?"_s.arg(line),
                       {index, subindex}, metadata);
}

void ObjectDataBase::setObjectIndexSqlValue(const QString &table, const QString &index, const QString &column,
                                            const QVariant &value, Quotes quotes)
{
    if (!blocked_)
        ObjectRowWriter(*this, table).writeValue({index}, column, value, quotes);
}

void ObjectDataBase::setSubindexSqlValue(const QString &table, const QString &index, const QString &subindex,
                                         const QString &column, const QVariant &value, Quotes quotes)
{
    if (!blocked_)
        ObjectRowWriter(*this, table).writeValue({index, subindex}, column, value, quotes);
}
