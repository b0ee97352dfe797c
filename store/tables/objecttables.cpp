#include "store/tables/objecttables.h"

#include "nodedict/canopendatatype.h"
#include "store/tables/metadatablob.h"

#include <QDebug>
#include <QMutexLocker>

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

quint32 keyOf(const ObjectTables::SubEntry &entry)
{
    return SubObjectCache::key(entry.index, entry.subindex);
}

QString subSelect(quint8 line, const QString &condition)
{
    static const QString columns = RecordColumns::names(subColumns);
    return u"select objectindex, subindex, metadata, %1 from SubObjects%2%3"_s.arg(columns, QString::number(line),
                                                                                   condition);
}

QString indexSelect(quint8 line)
{
    static const QString columns = RecordColumns::names(indexColumns);
    return u"select objectindex, metadata, %1 from Objects%2"_s.arg(columns, QString::number(line));
}

Index indexOfRow(const ResultRow &row, StringPool &pool)
{
    Index data;
    data.metadata = MetadataBlob::parse(row.value(1).toByteArray());
    RecordColumns::readRow(indexColumns, row, data, pool, 2);
    return data;
}

Sub subOfRow(const ResultRow &row, StringPool &pool)
{
    Sub data;
    data.metadata = MetadataBlob::parse(row.value(2).toByteArray());
    RecordColumns::readRow(subColumns, row, data, pool, 3);
    return data;
}

ObjectTables::SubEntry entryOfRow(const ResultRow &row, quint8 line, StringPool &pool)
{
    return {
        .line = line, .index = row.number<quint16>(0), .subindex = row.number<quint8>(1), .data = subOfRow(row, pool)};
}

/// What is bound for a subindex. The values of a VISIBLE_STRING have always been written with their quotes doubled.
std::optional<QVariantList> subValues(const Sub &data, const RecordColumns::TextIds &ids, Quotes quotes)
{
    if (data.datatype == CAN::VisibleString)
        return RecordColumns::values(subColumns, data, ids, quotes, {}, {"defaultvalue"_L1, "currentvalue"_L1});
    return RecordColumns::values(subColumns, data, ids, quotes);
}

} // namespace

bool ObjectTables::addIndex(quint8 line, quint16 index, const Index &data)
{
    if (isBlocked())
        return false;
    const auto ids =
        RecordColumns::intern(indexColumns, data, strings_, {"description"_L1, "name"_L1, "device_class"_L1});
    const QString table = u"Objects%1"_s.arg(line);
    static const QString names = RecordColumns::names(indexColumns);
    static const QString assignments = RecordColumns::assignments(indexColumns);
    static const QString places = SqlText::places(indexColumns.size() + 1);
    const QVariant exists =
        statements_.value({"addIndex", u"select exists(select 1 from %1 where objectindex = ?)"_s.arg(table)}, {index});
    if (!exists.isValid())
        return false;
    QVariantList values = *RecordColumns::values(indexColumns, data, ids, Quotes::Kept);
    values.append(index);
    std::optional<TransactionScope> withAttributes;
    if (!data.metadata.isEmpty())
        withAttributes.emplace(statements_, TransactionScope::Kind::Step);
    bool done =
        run("addIndex",
            exists.toBool() ? u"update %1 set %2 where objectindex = ?"_s.arg(table, assignments)
                            : u"insert into %1 (%2, objectindex, metadata) values(%3, 0)"_s.arg(table, names, places),
            values);
    if (withAttributes)
        done = done && setObjectMetadata(line, index, data.metadata) && withAttributes->commit();
    notify(Change::ObjectWritten, {.index = index, .line = line});
    return done;
}

/// A write to the subindices of a line, of which not even a failure leaves them as they were known.
bool ObjectTables::runSubs(const char *operation, const QString &text, const QVariantList &values)
{
    dropKept();
    return statements_.execute({operation, text, Statement::Effect::Subindices}, values);
}

bool ObjectTables::writeSubRow(const SubEntry &entry, Quotes quotes)
{
    static const QString columns = RecordColumns::names(subColumns);
    static const QString places = SqlText::places(subColumns.size() + 2);
    const auto ids =
        RecordColumns::intern(subColumns, entry.data, strings_, {"description"_L1, "name"_L1, "denotation"_L1});
    std::optional<QVariantList> values = textsOf("addSubIndex", subValues(entry.data, ids, quotes));
    if (!values)
        return false;
    values->append({entry.index, entry.subindex});
    return runSubs("addSubIndex",
                   u"insert or replace into SubObjects%1 (%2, objectindex, subindex, metadata) values(%3, 0)"_s.arg(
                       QString::number(entry.line), columns, places),
                   *values);
}

bool ObjectTables::storeSubIndex(const SubEntry &entry, Quotes quotes)
{
    if (entry.data.datatype == CAN::VisibleString && entry.index == 0x1000 && entry.subindex == 1)
        qDebug().noquote() << "ODB:aSI 0x1000:1 = " << entry.data.defaultvalue;
    std::optional<TransactionScope> withAttributes;
    if (!entry.data.metadata.isEmpty())
        withAttributes.emplace(statements_, TransactionScope::Kind::Step);
    bool done = writeSubRow(entry, quotes);
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
    const bool done = storeSubIndex(entry, quotes);
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
                               const auto place = std::ranges::lower_bound(*kept, keyOf(row), {}, keyOf);
                               if (place != kept->end() && keyOf(*place) == keyOf(row))
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
    bool done = true;
    for (const SubEntry &entry : entries)
        done = storeSubIndex(entry, quotes);
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
    strings_.loadTexts();
    return statements_.list({"getAllIndices", indexSelect(line) + " order by objectindex"_L1}, {},
                            [this](const ResultRow &row) {
                                return IndexEntry{.index = row.number<quint16>(0), .data = indexOfRow(row, strings_)};
                            });
}

QList<ObjectTables::SubEntry> ObjectTables::getAllSubIndices(quint8 line)
{
    if (keptSubs_ && keptLine_ == line)
        return *keptSubs_;
    strings_.loadTexts();
    QList<SubEntry> entries;
    if (!statements_.visit({"getAllSubIndices", subSelect(line, u" order by objectindex, subindex"_s)}, {},
                           [&](const ResultRow &row) { entries.append(entryOfRow(row, line, strings_)); }))
        return entries;
    if (keepsSubs_ && std::ranges::is_sorted(entries, {}, keyOf)) {
        keptLine_ = line;
        keptSubs_ = entries;
    }
    return entries;
}

void ObjectTables::cacheAllSubs(quint8 line, quint16 index)
{
    SubObjectCache::Line entries;
    const auto insert = [&entries](const SubEntry &entry) { entries.insert(entries.cend(), keyOf(entry), entry.data); };
    if (index == 0) {
        const QList<SubEntry> all = getAllSubIndices(line);
        std::ranges::for_each(all, insert);
    } else {
        std::ignore = statements_.visit({nullptr, subSelect(line, u" where objectindex = ?"_s)}, {index},
                                        [&](const ResultRow &row) { insert(entryOfRow(row, line, strings_)); });
    }
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
    dropKept();
}
