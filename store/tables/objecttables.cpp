#include "store/tables/objecttables.h"

#include "nodedict/canopendatatype.h"
#include "store/records/metadatablob.h"

#include <QDebug>
#include <QMutexLocker>
#include <QStringBuilder>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;
using RecordColumns::Column;
using RecordColumns::number;
using RecordColumns::pooled;
using RecordColumns::text;

namespace {

using Index = ObjectTables::Index;
using Sub = ObjectTables::Sub;

constexpr std::array<Column<Index>, 7> indexColumns = {
    pooled<&Index::name>("name"_L1),
    number<&Index::datatype>("datatype"_L1),
    number<&Index::objecttype>("objecttype"_L1),
    pooled<&Index::description>("description"_L1),
    number<&Index::category>("category"_L1),
    pooled<&Index::device_class>("device_class"_L1),
    number<&Index::fwsupported>("fwsupported"_L1),
};

constexpr Column<Sub> pdoMappingColumn = {
    "pdomapping"_L1, [](const Sub &sub) { return qint64{sub.pdomapping.toUInt()}; }, nullptr, nullptr,
    [](Sub &sub, const ResultRow &row, int column, StringPool &) {
        sub.pdomapping = PDOMapping(row.number<quint32>(column));
    }};

constexpr std::array<Column<Sub>, 28> subColumns = {
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

QString subSelect(quint8 line, const QString &condition)
{
    static const QString select =
        u"select objectindex, subindex, metadata, %1 from SubObjects"_s.arg(RecordColumns::names<Sub>(subColumns));
    return select + QString::number(line) + condition;
}

QString indexSelect(quint8 line)
{
    static const QString select =
        u"select objectindex, metadata, %1 from Objects"_s.arg(RecordColumns::names<Index>(indexColumns));
    return select + QString::number(line);
}

/// The attributes of a row. All but a few have none, which a new row tells by a 0.
StoreRecords::Metadata metadataOf(const ResultRow &row, int column)
{
    const bool isNone = row.isNull(column) || (row.isInteger(column) && row.number<qint64>(column) == 0);
    return isNone ? StoreRecords::Metadata() : MetadataBlob::parse(row.value(column).toByteArray());
}

Index indexOfRow(const ResultRow &row, StringPool &pool)
{
    Index data;
    data.metadata = metadataOf(row, 1);
    RecordColumns::readRow<Index>(indexColumns, row, data, pool, 2);
    return data;
}

void readSub(Sub &data, const ResultRow &row, StringPool &pool)
{
    data.metadata = metadataOf(row, 2);
    RecordColumns::readRow<Sub>(subColumns, row, data, pool, 3);
}

Sub subOfRow(const ResultRow &row, StringPool &pool)
{
    Sub data;
    readSub(data, row, pool);
    return data;
}

ObjectTables::SubEntry entryOfRow(const ResultRow &row, quint8 line, StringPool &pool)
{
    ObjectTables::SubEntry entry{
        .line = line, .index = row.number<quint16>(0), .subindex = row.number<quint8>(1), .data = {}};
    readSub(entry.data, row, pool);
    return entry;
}

/// The texts of a VISIBLE_STRING that have always been written with their quotes doubled.
constexpr std::array valuesOfText = {"defaultvalue"_L1, "currentvalue"_L1};

} // namespace

bool ObjectTables::addIndex(quint8 line, quint16 index, const Index &data)
{
    if (isBlocked())
        return false;
    const auto told = aboutObject(line, index);
    static const QString update =
        " set "_L1 + RecordColumns::assignments<Index>(indexColumns) + " where objectindex = ?"_L1;
    static const QString insert = " (%1, objectindex, metadata) values(%2, 0)"_L1.arg(
        RecordColumns::names<Index>(indexColumns), SqlText::places(indexColumns.size() + 1));
    const QString table = "Objects"_L1 % QString::number(line);
    const auto ids =
        RecordColumns::intern<Index>(indexColumns, data, strings_, {"description"_L1, "name"_L1, "device_class"_L1});
    const QVariant exists = statements_.value(
        {"addIndex", "select exists(select 1 from "_L1 % table % " where objectindex = ?)"_L1}, {index});
    if (!exists.isValid())
        return false;
    std::optional<TransactionScope> withAttributes;
    if (!data.metadata.isEmpty())
        withAttributes.emplace(statements_, TransactionScope::Kind::Step);
    const QString text = exists.toBool() ? QString("update "_L1 % table % update) : "insert into "_L1 % table % insert;
    BoundStatement statement(statements_, {"addIndex", text, Statement::Effect::Rows});
    RecordColumns::bind<Index>(statement, {indexColumns, data, ids});
    statement.bind(qint64{index});
    bool done = statement.execute();
    if (withAttributes)
        done = done && setObjectMetadata(line, index, data.metadata) && withAttributes->commit();
    notify(Change::ObjectWritten, {.index = index, .line = line});
    return done;
}

/// A write to the subindices of a line, of which not even a failure leaves them as they were known.
bool ObjectTables::runSubs(const char *operation, const QString &text, const QVariantList &values)
{
    dropKeptObjects();
    return statements_.execute({operation, text, Statement::Effect::Subindices}, values);
}

struct ObjectTables::SubInsertion
{
    SubInsertion(Statements &statements, quint8 ofLine, const QString &text)
        : line(ofLine)
        , statement(statements, {"addSubIndex", text, Statement::Effect::Subindices})
    {
    }

    quint8 line;
    BoundStatement statement;
};

bool ObjectTables::writeSubRow(const SubEntry &entry, Quotes quotes, std::optional<SubInsertion> &insertion)
{
    static const QString text =
        u"insert or replace into SubObjects%1 (%2, objectindex, subindex, metadata) values(%3, 0)"_s.arg(
            u"%1"_s, RecordColumns::names<Sub>(subColumns), SqlText::places(subColumns.size() + 2));
    const auto ids =
        RecordColumns::intern<Sub>(subColumns, entry.data, strings_, {"description"_L1, "name"_L1, "denotation"_L1});
    RecordColumns::Values<Sub> values{subColumns, entry.data, ids, quotes};
    if (entry.data.datatype == CAN::VisibleString)
        values.kept = valuesOfText;
    if (!insertion || insertion->line != entry.line)
        insertion.emplace(statements_, entry.line, text.arg(entry.line));
    if (!RecordColumns::bindTold("addSubIndex", insertion->statement, values)) {
        insertion.reset(); // which is bound in part
        return false;
    }
    insertion->statement.bind(qint64{entry.index});
    insertion->statement.bind(qint64{entry.subindex});
    dropKeptObjects();
    return insertion->statement.execute();
}

bool ObjectTables::storeSubIndex(const SubEntry &entry, Quotes quotes, std::optional<SubInsertion> &insertion)
{
    if (entry.data.datatype == CAN::VisibleString && entry.index == 0x1000 && entry.subindex == 1)
        qDebug().noquote() << "ODB:aSI 0x1000:1 = " << entry.data.defaultvalue;
    const auto told = aboutObject(entry.line, entry.index);
    std::optional<TransactionScope> withAttributes;
    if (!entry.data.metadata.isEmpty())
        withAttributes.emplace(statements_, TransactionScope::Kind::Step);
    bool done = writeSubRow(entry, quotes, insertion);
    if (withAttributes)
        done = done && setSubObjectMetadata(entry.line, entry.index, entry.subindex, entry.data.metadata) &&
               withAttributes->commit();
    if (done) {
        const QMutexLocker locker(&cacheMutex_);
        subCache_.refresh(entry.line, entry.index, entry.subindex, entry.data);
    }
    notify(Change::SubObjectWritten, {.index = entry.index, .subindex = entry.subindex, .line = entry.line});
    return done;
}

bool ObjectTables::addSubIndex(quint8 line, quint16 index, quint8 subindex, const Sub &data, Quotes quotes)
{
    if (isBlocked())
        return false;
    const SubEntry entry{line, index, subindex, data};
    std::optional<QList<SubEntry>> kept = std::exchange(keptSubs_, std::nullopt);
    std::optional<SubInsertion> insertion;
    const bool done = storeSubIndex(entry, quotes, insertion);
    // To follow each write of many would move the rest of the list as many times.
    if (kept && keptLine_ == line && !statements_.inTransaction())
        followWrite(entry, std::move(kept));
    return done;
}

/// Goes on keeping the subindices of a line of which one was written, with that one as its row is now.
void ObjectTables::followWrite(const SubEntry &entry, std::optional<QList<SubEntry>> kept)
{
    statements_.visitFirst({nullptr, subSelect(entry.line, u" where objectindex = ? and subindex = ?"_s)},
                           {entry.index, entry.subindex}, [&](const ResultRow &result) {
                               const SubEntry row = entryOfRow(result, entry.line, strings_);
                               const auto place = std::ranges::lower_bound(*kept, SubObjectCache::keyOf(row), {},
                                                                           SubObjectCache::keyOf);
                               if (place != kept->end() && SubObjectCache::keyOf(*place) == SubObjectCache::keyOf(row))
                                   *place = row;
                               else
                                   kept->insert(place, row);
                               keptSubs_ = std::move(kept);
                           });
}

bool ObjectTables::addSubIndices(const QList<SubEntry> &entries, Quotes quotes)
{
    if (isBlocked() || entries.isEmpty())
        return !isBlocked();
    TransactionScope transaction(statements_, TransactionScope::Kind::Batch);
    std::optional<SubInsertion> insertion;
    bool done = true;
    for (const SubEntry &entry : entries)
        done = storeSubIndex(entry, quotes, insertion);
    return transaction.commit() && done;
}

std::optional<Index> ObjectTables::getIndex(quint8 line, quint16 index)
{
    return statements_.first({nullptr, indexSelect(line) + u" where objectindex = ?"_s}, {index},
                             [this](const ResultRow &row) { return indexOfRow(row, strings_); });
}

std::optional<Sub> ObjectTables::getSubIndex(quint8 line, quint16 index, quint8 subindex)
{
    {
        const QMutexLocker locker(&cacheMutex_);
        if (const Sub *cached = subCache_.find(line, index, subindex))
            return *cached;
    }
    return statements_.first({nullptr, subSelect(line, u" where objectindex = ? and subindex = ?"_s)},
                             {index, subindex}, [this](const ResultRow &row) { return subOfRow(row, strings_); });
}

QList<ObjectTables::IndexEntry> ObjectTables::getAllIndices(quint8 line)
{
    if (keptIndices_ && keptIndices_->first == line)
        return keptIndices_->second;
    strings_.loadTexts();
    QList<IndexEntry> entries;
    const bool isWhole = statements_.visit(
        {"getAllIndices", indexSelect(line) + " order by objectindex"_L1}, {}, [&](const ResultRow &row) {
            entries.append({.index = row.number<quint16>(0), .data = indexOfRow(row, strings_)});
        });
    if (isWhole && keepsSubs_)
        keptIndices_.emplace(line, entries);
    return entries;
}

QList<ObjectTables::SubEntry> ObjectTables::getAllSubIndices(quint8 line)
{
    if (keptSubs_ && keptLine_ == line)
        return *keptSubs_;
    strings_.loadTexts();
    QList<SubEntry> entries;
    // Growing would have the list twice at times: it is the largest thing that a run holds.
    const QVariant count = statements_.value({nullptr, u"select count(*) from SubObjects%1"_s.arg(line)}, {});
    entries.reserve(count.toLongLong());
    if (!statements_.visit({"getAllSubIndices", subSelect(line, u" order by objectindex, subindex"_s)}, {},
                           [&](const ResultRow &row) { entries.append(entryOfRow(row, line, strings_)); }))
        return entries;
    if (keepsSubs_ && std::ranges::is_sorted(entries, {}, SubObjectCache::keyOf)) {
        keptLine_ = line;
        keptSubs_ = entries;
    }
    return entries;
}

QList<ObjectTables::SubEntry> ObjectTables::getSubIndices(quint8 line, quint16 index)
{
    return statements_.list({"getSubIndices", subSelect(line, u" where objectindex = ? order by subindex"_s)}, {index},
                            [&](const ResultRow &row) { return entryOfRow(row, line, strings_); });
}

void ObjectTables::cacheAllSubs(quint8 line, quint16 index)
{
    QList<SubEntry> entries;
    if (index == 0)
        entries = getAllSubIndices(line);
    else
        std::ignore = statements_.visit({nullptr, subSelect(line, u" where objectindex = ?"_s)}, {index},
                                        [&](const ResultRow &row) { entries.append(entryOfRow(row, line, strings_)); });
    // An old table may hold an index that is none.
    if (!std::ranges::is_sorted(std::as_const(entries), {}, SubObjectCache::keyOf))
        std::ranges::stable_sort(entries, {}, SubObjectCache::keyOf);
    const QMutexLocker locker(&cacheMutex_);
    subCache_.setLine(line, entries);
}

void ObjectTables::clearSubCache()
{
    const QMutexLocker locker(&cacheMutex_);
    subCache_.clear();
}

void ObjectTables::keepSubIndices(bool keep)
{
    keepsSubs_ = keep;
    context_.keepsLists = keep;
    dropKeptObjects();
}
