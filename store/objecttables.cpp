// The object dictionary of a line: `Objects%1` and `SubObjects%1`.

#include "store/objectdatabase.h"

#include "nodedict/canopendatatype.h"
#include "store/metadatablob.h"
#include "store/recordcolumns.h"

#include <QDebug>
#include <QMutexLocker>
#include <QSet>
#include <QSqlError>
#include <QSqlQuery>

using namespace Qt::StringLiterals;
using RecordColumns::Column;
using RecordColumns::number;
using RecordColumns::pooled;
using RecordColumns::text;

namespace {

using Index = ObjectDataBase::INDEX_DATA_T;
using Sub = ObjectDataBase::SUBINDEX_DATA_T;

constexpr std::array<Column<Index>, 7> indexColumnTable = {
    pooled<&Index::name>("name"_L1),
    number<&Index::datatype>("datatype"_L1),
    number<&Index::objecttype>("objecttype"_L1),
    pooled<&Index::description>("description"_L1),
    number<&Index::category>("category"_L1),
    pooled<&Index::device_class>("device_class"_L1),
    number<&Index::fwsupported>("fwsupported"_L1),
};
constexpr std::span<const Column<Index>> indexColumns = indexColumnTable;

constexpr Column<Sub> pdoMappingColumn = {
    "pdomapping"_L1, [](const Sub &sub) { return QVariant(sub.pdomapping.toUInt()); }, nullptr,
    [](Sub &sub, const QVariant &value, StringPool &) { sub.pdomapping = PDOMapping(value.toUInt()); }};

constexpr std::array<Column<Sub>, 28> subColumnTable = {
    pooled<&Sub::name>("name"_L1),
    number<&Sub::datatype>("datatype"_L1),
    text<&Sub::accesstype>("accesstype"_L1),
    text<&Sub::defaultvalue>("defaultvalue"_L1),
    text<&Sub::currentvalue>("currentvalue"_L1),
    pdoMappingColumn,
    text<&Sub::lowlimit>("lowlimit"_L1),
    text<&Sub::uplimit>("uplimit"_L1),
    number<&Sub::size>("size"_L1),
    number<&Sub::defaultineds>("defaultineds"_L1),
    number<&Sub::limitineds>("limitineds"_L1),
    number<&Sub::refuseread>("refuseread"_L1),
    number<&Sub::refusewrite>("refusewrite"_L1),
    text<&Sub::allowedaccesstypes>("allowedaccesstypes"_L1),
    number<&Sub::implementation>("implementation"_L1),
    text<&Sub::varname>("varname"_L1),
    pooled<&Sub::description>("description"_L1),
    number<&Sub::category>("category"_L1),
    number<&Sub::writedefaulttoeds>("writedefaulttoeds"_L1),
    number<&Sub::cyclicread>("cyclicread"_L1),
    number<&Sub::dcfcomponent>("dcfcomponent"_L1),
    number<&Sub::changedbyuser>("changedbyuser"_L1),
    number<&Sub::wizardsource>("wizardsource"_L1),
    pooled<&Sub::denotation>("denotation"_L1),
    number<&Sub::sharedlines>("sharedlines"_L1),
    number<&Sub::managedbyqlk>("managedbyqlk"_L1),
    number<&Sub::signalid>("signalid"_L1),
    number<&Sub::nvstorage>("nvstorage"_L1),
};
constexpr std::span<const Column<Sub>> subColumns = subColumnTable;

bool holdsQuote(const Sub &sub)
{
    return std::any_of(subColumns.begin(), subColumns.end(), [&](const Column<Sub> &column) {
        return column.value && column.value(sub).toString().contains(u'\'');
    });
}

QString subSelect(quint8 line, const QString &condition)
{
    static const QString columns = RecordColumns::names(subColumns);
    return u"select objectindex, subindex, metadata, %1 from SubObjects%2%3"_s.arg(columns, QString::number(line),
                                                                                   condition);
}

QString indexSelect(quint8 line)
{
    return u"select objectindex, metadata, %1 from Objects%2"_s.arg(RecordColumns::names(indexColumns),
                                                                    QString::number(line));
}

/// Reads a row of `indexSelect`.
void readIndex(const QSqlQuery &query, ObjectDataBase::INDEX_DATA_T &data, StringPool &pool)
{
    data.metadata = MetadataBlob::parse(query.value(1).toByteArray());
    RecordColumns::readRow(indexColumns, query, data, pool, 2);
}

/// Reads a row of `subSelect`.
void readSub(const QSqlQuery &query, Sub &data, StringPool &pool)
{
    data.metadata = MetadataBlob::parse(query.value(2).toByteArray());
    RecordColumns::readRow(subColumns, query, data, pool, 3);
}

} // namespace

void ObjectDataBase::escapeQuotes(QString &text)
{
    text.replace(u'\'', "''"_L1);
}

QString ObjectDataBase::withQuotesDoubled(QString text)
{
    escapeQuotes(text);
    return text;
}

bool ObjectDataBase::addIndex(quint8 line, quint16 index, const INDEX_DATA_T &data)
{
    if (blocked_)
        return false;
    const auto ids =
        RecordColumns::intern(indexColumns, data, strings_, {"description"_L1, "name"_L1, "device_class"_L1});
    QSqlQuery query = newQuery();
    if (!run("addIndex", query, u"select objectindex from Objects%2 where objectindex = %1"_s.arg(index).arg(line)))
        return false;
    const QString statement =
        query.next()
            ? u"update Objects%1 set %2 where objectindex = %3"_s.arg(
                  QString::number(line), RecordColumns::assignments(indexColumns, data, ids), QString::number(index))
            : u"insert into Objects%1 (objectindex, %2, metadata) values(%3, %4, 0)"_s.arg(
                  QString::number(line), RecordColumns::names(indexColumns), QString::number(index),
                  RecordColumns::values(indexColumns, data, ids));
    query.finish();
    const bool done = run("addIndex", query, statement);
    if (!data.metadata.isEmpty())
        setObjectMetadata(line, index, data.metadata);
    notify(Change::ObjectWritten, {.index = index, .line = line});
    return done;
}

/// Writes the row of an entry. With a prepared query, that takes the values of a row in which no text holds a quote;
/// any other row goes as text, in which a quote where none belongs fails.
bool ObjectDataBase::writeSubRow(const SubEntry &entry, QSqlQuery *prepared)
{
    static const QString columns = RecordColumns::names(subColumns);
    const auto ids =
        RecordColumns::intern(subColumns, entry.data, strings_, {"description"_L1, "name"_L1, "denotation"_L1});
    if (prepared && !holdsQuote(entry.data)) {
        int place = 0;
        prepared->bindValue(place++, entry.index);
        prepared->bindValue(place++, entry.subindex);
        for (const Column<Sub> &column : subColumns)
            prepared->bindValue(place++, RecordColumns::valueOf(column, entry.data, ids));
        return execPrepared(*prepared);
    }
    Sub row = entry.data;
    if (row.datatype == CAN::VisibleString) {
        escapeQuotes(row.defaultvalue);
        escapeQuotes(row.currentvalue);
    }
    return run("addSubIndex",
               u"insert or replace into SubObjects%1 (objectindex, subindex, %2, metadata) values(%3, %4, %5, 0)"_s.arg(
                   QString::number(entry.line), columns, QString::number(entry.index), QString::number(entry.subindex),
                   RecordColumns::values(subColumns, row, ids)));
}

bool ObjectDataBase::storeSubIndex(const SubEntry &entry, QSqlQuery *prepared)
{
    if (entry.data.datatype == CAN::VisibleString && entry.index == 0x1000 && entry.subindex == 1)
        qDebug().noquote() << "ODB:aSI 0x1000:1 = " << entry.data.defaultvalue;
    const bool done = writeSubRow(entry, prepared);
    if (!entry.data.metadata.isEmpty())
        setSubObjectMetadata(entry.line, entry.index, entry.subindex, entry.data.metadata);
    if (done) {
        const QMutexLocker locker(&cacheMutex_);
        subCache_.refresh(entry.line, entry.index, entry.subindex, entry.data);
    }
    notify(Change::SubObjectWritten, {.index = entry.index, .subindex = entry.subindex, .line = entry.line});
    return done;
}

bool ObjectDataBase::addSubIndex(quint8 line, quint16 index, quint8 subindex, const SUBINDEX_DATA_T &data)
{
    return !blocked_ && storeSubIndex({line, index, subindex, data}, nullptr);
}

bool ObjectDataBase::addSubIndices(const QList<SubEntry> &entries)
{
    if (blocked_ || entries.isEmpty())
        return !blocked_;
    const Transaction transaction(*this);
    const StringPool::Batch batch(strings_);
    const quint8 line = entries.first().line;
    QSqlQuery insert = newQuery();
    const bool prepared =
        insert.prepare(u"insert or replace into SubObjects%1 (objectindex, subindex, %2, metadata) values(%3, 0)"_s.arg(
            QString::number(line), RecordColumns::names(subColumns),
            QStringList(static_cast<qsizetype>(subColumns.size()) + 2, u"?"_s).join(u',')));
    bool done = true;
    for (const SubEntry &entry : entries)
        done = storeSubIndex(entry, prepared && entry.line == line ? &insert : nullptr);
    return done;
}

bool ObjectDataBase::removeIndex(quint8 line, quint16 index, bool keepConnections)
{
    if (blocked_)
        return false;
    run("removeIndex", u"delete from SubObjects%2 where objectindex = %1"_s.arg(index).arg(line));
    const bool done = run("removeIndex", u"delete from Objects%2 where objectindex = %1"_s.arg(index).arg(line));
    if (!keepConnections) {
        run("removeIndex", u"delete from Connections where prodnode = %1 AND prodindex = %2"_s.arg(line).arg(index));
        run("removeIndex", u"delete from Connections where connode = %1 AND conindex = %2"_s.arg(line).arg(index));
    }
    if (done)
        notify(Change::ObjectRemoved, {.index = index, .line = line});
    return done;
}

bool ObjectDataBase::removeSubIndex(quint8 line, quint16 index, quint8 subindex, bool keepConnections)
{
    if (blocked_)
        return false;
    const bool existed = subIndexExists(line, index, subindex);
    const bool done =
        run("removeSubIndex",
            u"delete from SubObjects%1 where objectindex = %2 and subindex = %3"_s.arg(line).arg(index).arg(subindex));
    if (!keepConnections) {
        run("removeSubIndex",
            u"delete from Connections where prodnode = %1 AND prodindex = %2 AND prodsub = %3"_s.arg(line)
                .arg(index)
                .arg(subindex));
        removeConsumerConnection(line, index, subindex);
    }
    if (existed)
        notify(Change::SubObjectRemoved, {.index = index, .subindex = subindex, .line = line});
    return done;
}

bool ObjectDataBase::removeConsumerConnection(quint8 line, quint16 index, quint8 subindex)
{
    return !blocked_ && run("removeConsumerConnection",
                            u"delete from Connections where connode = %1 AND conindex = %2 AND consub = %3"_s.arg(line)
                                .arg(index)
                                .arg(subindex));
}

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

bool ObjectDataBase::getIndex(quint8 line, quint16 index, INDEX_DATA_T &data)
{
    QSqlQuery query = newQuery();
    query.setForwardOnly(true);
    if (!execQuery(query, indexSelect(line) + u" where objectindex = %1"_s.arg(index)) || !query.next())
        return false;
    readIndex(query, data, strings_);
    return true;
}

QMap<quint16, ObjectDataBase::INDEX_DATA_T> ObjectDataBase::getIndices(quint8 line, quint16 first, quint16 last)
{
    QMap<quint16, INDEX_DATA_T> objects;
    QSqlQuery query = newQuery();
    query.setForwardOnly(true);
    if (execQuery(query, indexSelect(line) + u" where objectindex between %1 and %2"_s.arg(first).arg(last))) {
        while (query.next())
            readIndex(query, objects[static_cast<quint16>(query.value(0).toUInt())], strings_);
    }
    return objects;
}

QString ObjectDataBase::getIndexName(quint8 line, quint16 index)
{
    const QVariant id = selectValue(u"select name from Objects%1 where objectindex = %2"_s.arg(line).arg(index));
    return id.isNull() ? QString() : strings_.textOf(id.toInt());
}

void ObjectDataBase::setIndexName(quint8 line, quint16 index, const QString &name)
{
    if (blocked_ || !indexExists(line, index))
        return;
    run("setIndexName",
        u"update Objects%1 set name=%2 where ((objectindex = %3))"_s.arg(line).arg(strings_.idOf(name)).arg(index));
}

QList<quint16> ObjectDataBase::getIndexList(quint8 line, quint16 first, quint16 last)
{
    QList<quint16> indices;
    for (const quint32 index :
         selectNumbers(u"select objectindex from Objects%1 order by objectindex asc"_s.arg(line))) {
        if (index >= first && index <= last)
            indices.append(static_cast<quint16>(index));
    }
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

bool ObjectDataBase::getSubIndex(quint8 line, quint16 index, quint8 subindex, SUBINDEX_DATA_T &data)
{
    {
        const QMutexLocker locker(&cacheMutex_);
        if (const Sub *cached = subCache_.find(line, index, subindex)) {
            data = *cached;
            return true;
        }
    }
    QSqlQuery query = newQuery();
    query.setForwardOnly(true);
    const QString condition = u" where objectindex = %1 and subindex = %2"_s.arg(index).arg(subindex);
    if (!execQuery(query, subSelect(line, condition)) || !query.next())
        return false;
    readSub(query, data, strings_);
    return true;
}

QList<quint8> ObjectDataBase::getSubIndexList(quint8 line, quint16 index, quint8 firstSub)
{
    QList<quint8> subs;
    for (const quint32 sub : selectNumbers(
             u"select subindex from SubObjects%1 where objectindex = %2 order by subindex asc"_s.arg(line).arg(
                 index))) {
        if (sub >= firstSub)
            subs.append(static_cast<quint8>(sub));
    }
    return subs;
}

QList<ObjectDataBase::IndexEntry> ObjectDataBase::getAllIndices(quint8 line)
{
    strings_.loadTexts();
    QList<IndexEntry> entries;
    QSqlQuery query = newQuery();
    query.setForwardOnly(true);
    if (!run("getAllIndices", query, indexSelect(line) + " order by objectindex"_L1))
        return entries;
    while (query.next()) {
        IndexEntry &entry = entries.emplace_back();
        entry.index = static_cast<quint16>(query.value(0).toUInt());
        readIndex(query, entry.data, strings_);
    }
    return entries;
}

QList<ObjectDataBase::SubEntry> ObjectDataBase::getAllSubIndices(quint8 line)
{
    strings_.loadTexts();
    QList<SubEntry> entries;
    QSqlQuery query = newQuery();
    query.setForwardOnly(true);
    if (!run("getAllSubIndices", query, subSelect(line, u" order by objectindex, subindex"_s)))
        return entries;
    while (query.next()) {
        SubEntry &entry = entries.emplace_back();
        entry.line = line;
        entry.index = static_cast<quint16>(query.value(0).toUInt());
        entry.subindex = static_cast<quint8>(query.value(1).toUInt());
        readSub(query, entry.data, strings_);
    }
    return entries;
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

bool ObjectDataBase::setSubIndexDefaultValue(quint8 line, quint16 index, quint8 subindex, const QString &value)
{
    return !blocked_ && run("setSubIndexDefaultValue",
                            u"update SubObjects%1 set defaultvalue='%2' where objectindex = %3 and subindex = %4"_s.arg(
                                QString::number(line), value, QString::number(index), QString::number(subindex)));
}

QList<ObjectDataBase::SubKey> ObjectDataBase::findSubIndices(quint8 line, const QString &column, const QString &value)
{
    const QList<quint32> indices = selectNumbers(u"select objectindex from Objects%1"_s.arg(line));
    const QSet<quint32> objects(indices.begin(), indices.end());
    QSet<quint32> seen;
    QList<SubKey> found;
    for (const QString &literal : {value, u'\'' + value + u'\''}) {
        QSqlQuery query = newQuery();
        query.setForwardOnly(true);
        const QString statement =
            u"select objectindex,subindex from SubObjects%1 where %2 = %3 order by objectindex,subindex ASC"_s.arg(
                QString::number(line), column, literal);
        if (!execQuery(query, statement))
            continue;
        while (query.next()) {
            const quint32 index = query.value(0).toUInt();
            const auto sub = static_cast<quint8>(query.value(1).toUInt());
            const quint32 key = SubObjectCache::key(static_cast<quint16>(index), sub);
            if (objects.contains(index) && !seen.contains(key)) {
                seen.insert(key);
                found.append({static_cast<quint16>(index), sub, line});
            }
        }
    }
    return found;
}

void ObjectDataBase::cacheAllSubs(quint8 line, quint16 index)
{
    SubObjectCache::Line entries;
    QSqlQuery query = newQuery();
    query.setForwardOnly(true);
    const QString condition = index != 0 ? u" where objectindex = %1"_s.arg(index) : QString();
    if (execQuery(query, subSelect(line, condition))) {
        while (query.next()) {
            Sub data;
            readSub(query, data, strings_);
            entries.insert(SubObjectCache::key(static_cast<quint16>(query.value(0).toUInt()),
                                               static_cast<quint8>(query.value(1).toUInt())),
                           data);
        }
    }
    const QMutexLocker locker(&cacheMutex_);
    subCache_.setLine(line, entries);
}

void ObjectDataBase::clearSubCache()
{
    const QMutexLocker locker(&cacheMutex_);
    subCache_.clear();
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
