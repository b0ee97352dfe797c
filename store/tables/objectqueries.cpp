// Single columns of `Objects%1` and `SubObjects%1`, removals and copies of objects.

#include "store/tables/objecttables.h"

#include "store/records/metadatablob.h"
#include "store/records/schema.h"

#include <QMutexLocker>
#include <QRegularExpression>
#include <QSet>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace {

QString subColumnSelect(quint8 line, const QString &column)
{
    return u"select %1 from SubObjects%2 where objectindex = ? and subindex = ?"_s.arg(column, QString::number(line));
}

/// A value as a statement holds it without quotes: a number; nothing for another text.
std::optional<QVariant> comparedNumber(const QString &value)
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

bool ObjectTables::indexExists(quint8 line, quint16 index)
{
    return statements_.hasRow({nullptr, u"select objectindex from Objects%1 where objectindex = ?"_s.arg(line)},
                              {index});
}

bool ObjectTables::subIndexExists(quint8 line, quint16 index, quint8 subindex)
{
    return statements_.hasRow({nullptr, subColumnSelect(line, u"subindex"_s)}, {index, subindex});
}

QString ObjectTables::getIndexName(quint8 line, quint16 index)
{
    const QVariant id =
        statements_.value({nullptr, u"select name from Objects%1 where objectindex = ?"_s.arg(line)}, {index});
    return id.isNull() ? QString() : strings_.textOf(id.toInt());
}

QList<quint16> ObjectTables::getIndexList(quint8 line, quint16 first, quint16 last)
{
    return statements_.list(
        {nullptr,
         u"select objectindex from Objects%1 where objectindex between ? and ? order by objectindex asc"_s.arg(line)},
        {first, last}, [](const ResultRow &row) { return row.number<quint16>(0); });
}

QMap<quint16, QString> ObjectTables::getIndexNames(quint8 line, quint16 first, quint16 last)
{
    QMap<quint16, QString> names;
    std::ignore = statements_.visit(
        {nullptr, u"select objectindex, name from Objects%1 where objectindex between ? and ?"_s.arg(line)},
        {first, last}, [&](const ResultRow &row) {
            const QVariant name = row.value(1);
            names.insert(row.number<quint16>(0), name.isNull() ? QString() : strings_.textOf(name.toInt()));
        });
    return names;
}

quint16 ObjectTables::getSubIndexDataType(quint8 line, quint16 index, quint8 subindex)
{
    return static_cast<quint16>(
        statements_.value({nullptr, subColumnSelect(line, u"datatype"_s)}, {index, subindex}).toUInt());
}

QString ObjectTables::getSubIndexDefaultValue(quint8 line, quint16 index, quint8 subindex)
{
    return statements_.value({nullptr, subColumnSelect(line, u"defaultvalue"_s)}, {index, subindex}).toString();
}

QList<ObjectTables::SubKey> ObjectTables::findSubIndices(quint8 line, const QString &column, const QString &value)
{
    QList<SubKey> found;
    if (!ProjectSchema::columnNames(ProjectSchema::LineTable::SubObjects).contains(column, Qt::CaseInsensitive))
        return found;
    const QString text =
        u"select objectindex, subindex from SubObjects%1 as sub where %2 = ? and exists (select 1 from Objects%1 where "
        "Objects%1.objectindex = sub.objectindex) order by objectindex, subindex"_s.arg(QString::number(line), column);
    QSet<quint32> seen;
    const auto collect = [&](const QVariant &sought) {
        std::ignore = statements_.visit({nullptr, text}, {sought}, [&](const ResultRow &row) {
            const SubKey key{row.number<quint16>(0), row.number<quint8>(1), line};
            const quint32 number = SubObjectCache::key(key.index, key.subindex);
            if (!seen.contains(number))
                found.append(key);
            seen.insert(number);
        });
    };
    if (const std::optional<QVariant> number = comparedNumber(value))
        collect(*number);
    collect(value);
    return found;
}

bool ObjectTables::setIndexName(quint8 line, quint16 index, const QString &name)
{
    const auto told = aboutObject(line, index);
    return !isBlocked() && indexExists(line, index) &&
           run("setIndexName", u"update Objects%1 set name = ? where objectindex = ?"_s.arg(line),
               {strings_.idOf(name), index});
}

QList<quint8> ObjectTables::getSubIndexList(quint8 line, quint16 index, quint8 firstSub)
{
    QList<quint8> subs;
    for (const quint32 sub : selectNumbers(
             u"select subindex from SubObjects%1 where objectindex = ? order by subindex asc"_s.arg(line), {index})) {
        if (sub >= firstSub)
            subs.append(static_cast<quint8>(sub));
    }
    return subs;
}

bool ObjectTables::setSubIndexDefaultValue(quint8 line, quint16 index, quint8 subindex, const QString &value,
                                           Quotes quotes)
{
    const auto told = aboutObject(line, index);
    const std::optional<QString> text = LiteralText::stored(value, quotes);
    return !isBlocked() && text &&
           runSubs("setSubIndexDefaultValue",
                   u"update SubObjects%1 set defaultvalue = ? where objectindex = ? and subindex = ?"_s.arg(line),
                   {*text, index, subindex});
}

bool ObjectTables::removeIndex(quint8 line, quint16 index, bool keepConnections)
{
    if (isBlocked())
        return false;
    const auto told = aboutObject(line, index);
    TransactionScope step(statements_, TransactionScope::Kind::Step);
    const QVariantList ends = {line, index};
    bool done = runSubs("removeIndex", u"delete from SubObjects%1 where objectindex = ?"_s.arg(line), {index}) &&
                run("removeIndex", u"delete from Objects%1 where objectindex = ?"_s.arg(line), {index});
    if (!keepConnections)
        done = done && run("removeIndex", u"delete from Connections where prodnode = ? AND prodindex = ?"_s, ends) &&
               run("removeIndex", u"delete from Connections where connode = ? AND conindex = ?"_s, ends);
    if (!done || !step.commit())
        return false;
    notify(Change::ObjectRemoved, {.index = index, .line = line});
    return true;
}

bool ObjectTables::removeSubIndex(quint8 line, quint16 index, quint8 subindex, bool keepConnections)
{
    if (isBlocked())
        return false;
    const bool existed = subIndexExists(line, index, subindex);
    const auto told = aboutObject(line, index);
    TransactionScope step(statements_, TransactionScope::Kind::Step);
    bool done =
        runSubs("removeSubIndex", u"delete from SubObjects%1 where objectindex = ? and subindex = ?"_s.arg(line),
                {index, subindex});
    if (!keepConnections)
        done = done &&
               run("removeSubIndex", u"delete from Connections where prodnode = ? AND prodindex = ? AND prodsub = ?"_s,
                   {line, index, subindex}) &&
               removeConsumerConnection(line, index, subindex);
    if (!done || !step.commit())
        return false;
    if (existed)
        notify(Change::SubObjectRemoved, {.index = index, .subindex = subindex, .line = line});
    return true;
}

bool ObjectTables::removeConsumerConnection(quint8 line, quint16 index, quint8 subindex)
{
    return !isBlocked() &&
           run("removeConsumerConnection",
               u"delete from Connections where connode = ? AND conindex = ? AND consub = ?"_s, {line, index, subindex});
}

bool ObjectTables::copyIndex(quint8 fromLine, quint16 fromIndex, quint8 toLine, quint16 toIndex)
{
    if (isBlocked())
        return false;
    if (fromLine == toLine && fromIndex == toIndex)
        return true;
    const std::optional<Index> object = getIndex(fromLine, fromIndex);
    if (!object)
        return false;
    const QList<quint8> subs = getSubIndexList(fromLine, fromIndex, 0);
    TransactionScope step(statements_, TransactionScope::Kind::Step);
    if (!removeIndex(toLine, toIndex, false) || !addIndex(toLine, toIndex, *object))
        return false;
    {
        const TableContext::Silence silence(context_);
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
bool ObjectTables::copySubs(ObjectTables &from, const SubKey &source, const QList<quint8> &subs, const SubKey &target)
{
    return std::ranges::all_of(subs, [&](quint8 sub) {
        const std::optional<Sub> data = from.getSubIndex(source.line, source.index, sub);
        return data && addSubIndex(target.line, target.index, sub, *data, Quotes::Kept);
    });
}

bool ObjectTables::copyIndexFrom(ObjectTables *other, quint8 fromLine, quint16 fromIndex, quint8 toLine,
                                 quint16 toIndex, bool objectOnly)
{
    const std::optional<Index> object = !other || isBlocked() ? std::nullopt : other->getIndex(fromLine, fromIndex);
    if (!object)
        return false;
    TransactionScope step(statements_, TransactionScope::Kind::Step);
    if (!addIndex(toLine, toIndex, *object))
        return false;
    const QList<quint8> subs = other->getSubIndexList(fromLine, fromIndex, 0);
    if (!objectOnly &&
        !copySubs(*other, {.index = fromIndex, .line = fromLine}, subs, {.index = toIndex, .line = toLine}))
        return false;
    const QSet<quint8> kept(subs.begin(), subs.end());
    for (const quint8 sub : getSubIndexList(toLine, toIndex, 0)) {
        if (!kept.contains(sub) && !removeSubIndex(toLine, toIndex, sub, false))
            return false;
    }
    return step.commit();
}

bool ObjectTables::setMetadata(const QString &text, QVariantList key, const Metadata &metadata)
{
    if (isBlocked())
        return false;
    const QMutexLocker locker(&cacheMutex_);
    key.prepend(MetadataBlob::serialise(metadata));
    return runSubs("setMetadata", text, key);
}

bool ObjectTables::setObjectMetadata(quint8 line, quint16 index, const Metadata &metadata)
{
    return setMetadata(u"update Objects%1 SET metadata = ? where objectindex = ?"_s.arg(line), {index}, metadata);
}

bool ObjectTables::setSubObjectMetadata(quint8 line, quint16 index, quint8 subindex, const Metadata &metadata)
{
    return setMetadata(u"update SubObjects%1 SET metadata = ? where objectindex = ? and subindex = ?"_s.arg(line),
                       {index, subindex}, metadata);
}
