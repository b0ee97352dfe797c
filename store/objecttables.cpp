// The object dictionary of a line: `Objects%1` and `SubObjects%1`.

#include "store/objectdatabase.h"

#include "nodedict/canopendatatype.h"
#include "store/metadatablob.h"
#include "store/recordcolumns.h"

#include <QDebug>
#include <QMutexLocker>
#include <QSqlQuery>

#include <algorithm>
#include <utility>

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

quint32 keyOf(const ObjectDataBase::SubEntry &entry)
{
    return SubObjectCache::key(entry.index, entry.subindex);
}

QString placeholders(std::size_t count)
{
    return QStringList(static_cast<qsizetype>(count), u"?"_s).join(u',');
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

ObjectDataBase::SubEntry subOfRow(const QSqlQuery &query, quint8 line, StringPool &pool)
{
    ObjectDataBase::SubEntry entry{.line = line,
                                   .index = static_cast<quint16>(query.value(0).toUInt()),
                                   .subindex = static_cast<quint8>(query.value(1).toUInt()),
                                   .data = {}};
    readSub(query, entry.data, pool);
    return entry;
}

} // namespace

/// What writes the objects of a line, prepared; kept for the time of a transaction.
struct ObjectDataBase::IndexStatements
{
    IndexStatements(ObjectDataBase &store, quint8 ofLine)
        : line(ofLine)
        , select(store.newQuery())
        , insert(store.newQuery())
        , update(store.newQuery())
    {
        const QString table = u"Objects%1"_s.arg(line);
        const QString names = RecordColumns::names(indexColumns);
        select.setForwardOnly(true);
        usable = store.prepare("addIndex", select, u"select objectindex from %1 where objectindex = ?"_s.arg(table)) &&
                 store.prepare("addIndex", insert,
                               u"insert into %1 (%2, objectindex, metadata) values(%3, 0)"_s.arg(
                                   table, names, placeholders(indexColumns.size() + 1))) &&
                 store.prepare("addIndex", update,
                               u"update %1 set %2 = ? where objectindex = ?"_s.arg(
                                   table, QString(names).replace(", "_L1, " = ?, "_L1)));
    }

    quint8 line;
    bool usable = false;
    QSqlQuery select;
    QSqlQuery insert; ///< the columns, then the index; as in `update`
    QSqlQuery update;
};

/// The prepared insertion of the subindices of a line. A value that is the one of the row before stays bound, which
/// most are.
class ObjectDataBase::SubInsertion
{
public:
    SubInsertion(ObjectDataBase &store, quint8 line)
        : store_(store)
        , query_(store.newQuery())
    {
        const QString columns = RecordColumns::names(subColumns);
        usable_ = store.prepare(
            "addSubIndex", query_,
            u"insert or replace into SubObjects%1 (objectindex, subindex, %2, metadata) values(%3, 0)"_s.arg(
                QString::number(line), columns, placeholders(subColumns.size() + 2)));
    }

    /// Nothing for a row in which a text holds a quote.
    std::optional<bool> write(const SubEntry &entry, const RecordColumns::TextIds &ids)
    {
        QVariantList values{entry.index, entry.subindex};
        values.reserve(2 + static_cast<qsizetype>(subColumns.size()));
        for (const Column<Sub> &column : subColumns) {
            values.append(RecordColumns::valueOf(column, entry.data, ids));
            if (values.last().typeId() == QMetaType::QString && values.last().toString().contains(u'\''))
                return std::nullopt;
        }
        if (!usable_)
            return std::nullopt;
        for (int place = 0; place < values.size(); ++place) {
            if (bound_.isEmpty() || bound_.at(place) != values.at(place))
                query_.bindValue(place, values.at(place));
        }
        bound_ = std::move(values);
        return store_.execPrepared(query_);
    }

private:
    ObjectDataBase &store_;
    QSqlQuery query_;
    QVariantList bound_;
    bool usable_ = false;
};

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
    std::shared_ptr<IndexStatements> own;
    std::shared_ptr<IndexStatements> &statements = transactionDepth_ > 0 ? indexStatements_ : own;
    if (!statements || !statements->usable || statements->line != line)
        statements = std::make_shared<IndexStatements>(*this, line);
    QSqlQuery &select = statements->select;
    select.bindValue(0, index);
    if (!statements->usable || !runPrepared("addIndex", select))
        return false;
    const bool exists = select.next();
    select.finish();
    QSqlQuery &write = exists ? statements->update : statements->insert;
    int place = 0;
    for (const Column<Index> &column : indexColumns)
        write.bindValue(place++, RecordColumns::valueOf(column, data, ids));
    write.bindValue(place, index);
    const bool done = runPrepared("addIndex", write);
    if (!data.metadata.isEmpty())
        setObjectMetadata(line, index, data.metadata);
    notify(Change::ObjectWritten, {.index = index, .line = line});
    return done;
}

/// Writes the row of an entry. A row goes as text where it has to, and then a quote where none belongs fails.
bool ObjectDataBase::writeSubRow(const SubEntry &entry, SubInsertion *prepared)
{
    static const QString columns = RecordColumns::names(subColumns);
    const auto ids =
        RecordColumns::intern(subColumns, entry.data, strings_, {"description"_L1, "name"_L1, "denotation"_L1});
    if (prepared) {
        if (const std::optional<bool> done = prepared->write(entry, ids))
            return *done;
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

bool ObjectDataBase::storeSubIndex(const SubEntry &entry, SubInsertion *prepared)
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
    if (blocked_)
        return false;
    const SubEntry entry{line, index, subindex, data};
    std::optional<QList<SubEntry>> kept = std::exchange(keptSubs_, std::nullopt);
    const bool done = storeSubIndex(entry, nullptr);
    // To follow each write of many would move the rest of the list as many times.
    if (kept && keptLine_ == line && transactionDepth_ == 0)
        followWrite(entry, std::move(kept));
    return done;
}

/// Goes on keeping the subindices of a line of which one was written, with that one as its row is now.
void ObjectDataBase::followWrite(const SubEntry &entry, std::optional<QList<SubEntry>> kept)
{
    QSqlQuery query = newQuery();
    query.setForwardOnly(true);
    const QString condition = u" where objectindex = %1 and subindex = %2"_s.arg(entry.index).arg(entry.subindex);
    if (!execQuery(query, subSelect(entry.line, condition)) || !query.next())
        return;
    const SubEntry row = subOfRow(query, entry.line, strings_);
    const auto place = std::ranges::lower_bound(*kept, keyOf(row), {}, keyOf);
    if (place != kept->end() && keyOf(*place) == keyOf(row))
        *place = row;
    else
        kept->insert(place, row);
    keptSubs_ = std::move(kept);
}

bool ObjectDataBase::addSubIndices(const QList<SubEntry> &entries)
{
    if (blocked_ || entries.isEmpty())
        return !blocked_;
    const Transaction transaction(*this);
    const StringPool::Batch batch(strings_);
    const quint8 line = entries.first().line;
    SubInsertion insertion(*this, line);
    bool done = true;
    for (const SubEntry &entry : entries)
        done = storeSubIndex(entry, entry.line == line ? &insertion : nullptr);
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

void ObjectDataBase::setIndexName(quint8 line, quint16 index, const QString &name)
{
    if (blocked_ || !indexExists(line, index))
        return;
    run("setIndexName",
        u"update Objects%1 set name=%2 where ((objectindex = %3))"_s.arg(line).arg(strings_.idOf(name)).arg(index));
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
    if (keptSubs_ && keptLine_ == line)
        return *keptSubs_;
    strings_.loadTexts();
    QList<SubEntry> entries;
    QSqlQuery query = newQuery();
    query.setForwardOnly(true);
    if (!run("getAllSubIndices", query, subSelect(line, u" order by objectindex, subindex"_s)))
        return entries;
    while (query.next())
        entries.append(subOfRow(query, line, strings_));
    if (keepsSubs_ && std::ranges::is_sorted(entries, {}, keyOf)) {
        keptLine_ = line;
        keptSubs_ = entries;
    }
    return entries;
}

bool ObjectDataBase::setSubIndexDefaultValue(quint8 line, quint16 index, quint8 subindex, const QString &value)
{
    return !blocked_ && run("setSubIndexDefaultValue",
                            u"update SubObjects%1 set defaultvalue='%2' where objectindex = %3 and subindex = %4"_s.arg(
                                QString::number(line), value, QString::number(index), QString::number(subindex)));
}

void ObjectDataBase::cacheAllSubs(quint8 line, quint16 index)
{
    SubObjectCache::Line entries;
    const auto insert = [&entries](const SubEntry &entry) { entries.insert(entries.cend(), keyOf(entry), entry.data); };
    if (index == 0) {
        const QList<SubEntry> all = getAllSubIndices(line);
        std::ranges::for_each(all, insert);
    } else {
        QSqlQuery query = newQuery();
        query.setForwardOnly(true);
        const bool done = execQuery(query, subSelect(line, u" where objectindex = %1"_s.arg(index)));
        while (done && query.next())
            insert(subOfRow(query, line, strings_));
    }
    const QMutexLocker locker(&cacheMutex_);
    subCache_.setLine(line, entries);
}

void ObjectDataBase::clearSubCache()
{
    const QMutexLocker locker(&cacheMutex_);
    subCache_.clear();
}
