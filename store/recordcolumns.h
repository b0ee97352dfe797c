#pragma once

#include "store/stringpool.h"

#include <QSqlQuery>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVarLengthArray>

#include <algorithm>
#include <span>
#include <type_traits>
#include <utility>

/// The columns of a record's table: one list per record, from which its statements are written and its rows are read.
namespace RecordColumns {

template <class Record>
struct Column
{
    QLatin1StringView name;
    /// The value, a number or a text; null for a text of the pool.
    QVariant (*value)(const Record &);
    /// The text of a column that holds a string id; null for any other.
    const QString &(*pooled)(const Record &);
    void (*read)(Record &, const QVariant &, StringPool &);
};

/// Ids of a record's pooled texts by column name.
using TextIds = QVarLengthArray<std::pair<QLatin1StringView, int>, 4>;

template <auto Member>
struct MemberTraits;
template <class R, class V, V R::*Member>
struct MemberTraits<Member>
{
    using Record = R;
    using Value = V;
};

/// A text that is bound as empty, not as NULL.
inline QString notNull(const QString &text)
{
    return text.isNull() ? QStringLiteral("") : text;
}

/// An integer or bool; a bool is stored as 0 or 1.
template <auto Member>
constexpr auto number(QLatin1StringView name)
{
    using Record = typename MemberTraits<Member>::Record;
    using Value = typename MemberTraits<Member>::Value;
    return Column<Record>{name, [](const Record &record) { return QVariant(static_cast<qint64>(record.*Member)); },
                          nullptr,
                          [](Record &record, const QVariant &value, StringPool &) {
                              if constexpr (std::is_same_v<Value, bool>)
                                  record.*Member = value.toLongLong() != 0;
                              else
                                  record.*Member = static_cast<Value>(value.toLongLong());
                          }};
}

/// A text, which stands in a statement quoted but with nothing in it escaped.
template <auto Member>
constexpr auto text(QLatin1StringView name)
{
    using Record = typename MemberTraits<Member>::Record;
    return Column<Record>{
        name, [](const Record &record) { return QVariant(notNull(record.*Member)); }, nullptr,
        [](Record &record, const QVariant &value, StringPool &) { record.*Member = value.toString(); }};
}

/// A text of the pool, stored by its id.
template <auto Member>
constexpr auto pooled(QLatin1StringView name)
{
    using Record = typename MemberTraits<Member>::Record;
    return Column<Record>{name, nullptr, [](const Record &record) -> const QString & { return record.*Member; },
                          [](Record &record, const QVariant &value, StringPool &pool) {
                              record.*Member = value.isNull() ? QString() : pool.textOf(value.toInt());
                          }};
}

/// Interns the pooled texts of a record in the given order of columns, which decides the ids of new texts.
template <class Record>
TextIds intern(std::span<const Column<Record>> columns, const Record &record, StringPool &pool,
               std::initializer_list<QLatin1StringView> order)
{
    TextIds ids;
    for (const QLatin1StringView name : order) {
        for (const Column<Record> &column : columns) {
            if (column.pooled && column.name == name)
                ids.append({name, pool.idOf(column.pooled(record))});
        }
    }
    return ids;
}

template <class Record>
QVariant valueOf(const Column<Record> &column, const Record &record, const TextIds &ids)
{
    if (column.value)
        return column.value(record);
    const auto id = std::find_if(ids.begin(), ids.end(), [&](const auto &pair) { return pair.first == column.name; });
    return id == ids.end() ? -1 : id->second;
}

template <class Record>
QString literalOf(const Column<Record> &column, const Record &record, const TextIds &ids)
{
    const QVariant value = valueOf(column, record, ids);
    return value.typeId() == QMetaType::QString ? u'\'' + value.toString() + u'\'' : value.toString();
}

/// "a, b, c"
template <class Record>
QString names(std::span<const Column<Record>> columns)
{
    QStringList list;
    for (const Column<Record> &column : columns)
        list.append(column.name);
    return list.join(QLatin1StringView(", "));
}

/// "1, 'text', 7": the values in the order of the columns.
template <class Record>
QString values(std::span<const Column<Record>> columns, const Record &record, const TextIds &ids)
{
    QStringList list;
    list.reserve(static_cast<qsizetype>(columns.size()));
    for (const Column<Record> &column : columns)
        list.append(literalOf(column, record, ids));
    return list.join(QLatin1StringView(", "));
}

/// "a = 1, b = 'text'": for an update; columns named in `except` are left out.
template <class Record>
QString assignments(std::span<const Column<Record>> columns, const Record &record, const TextIds &ids,
                    std::initializer_list<QLatin1StringView> except = {})
{
    QStringList list;
    for (const Column<Record> &column : columns) {
        if (std::find(except.begin(), except.end(), column.name) == except.end())
            list.append(column.name + QLatin1StringView(" = ") + literalOf(column, record, ids));
    }
    return list.join(QLatin1StringView(", "));
}

/// The place of a record: a table and the values of its key columns; the source of the statements on that row.
class Row
{
public:
    using Key = std::initializer_list<std::pair<QLatin1StringView, quint32>>;

    Row(QString table, Key key)
        : table_(std::move(table))
    {
        for (const auto &[name, value] : key) {
            names_.append(name);
            values_.append(QString::number(value));
            conditions_.append(name + QLatin1StringView(" = ") + values_.last());
        }
    }

    QString condition() const { return conditions_.join(QLatin1StringView(" and ")); }
    QString select(const QString &columns) const
    {
        return QStringLiteral("select %1 from %2 where %3").arg(columns, table_, condition());
    }
    QString remove() const { return QStringLiteral("delete from %1 where %2").arg(table_, condition()); }

    template <class Record>
    QString insert(std::span<const Column<Record>> columns, const Record &record, const TextIds &ids) const
    {
        return QStringLiteral("insert into %1 (%2, %3) values(%4, %5)")
            .arg(table_, names_.join(u','), names(columns), values_.join(u','),
                 RecordColumns::values(columns, record, ids));
    }
    template <class Record>
    QString update(std::span<const Column<Record>> columns, const Record &record, const TextIds &ids,
                   std::initializer_list<QLatin1StringView> except = {}) const
    {
        return QStringLiteral("update %1 set %2 where %3")
            .arg(table_, assignments(columns, record, ids, except), condition());
    }

private:
    QString table_;
    QStringList names_;
    QStringList values_;
    QStringList conditions_;
};

/// Fills a record from the current row of a query whose columns from `first` on are those of the list.
template <class Record>
void readRow(std::span<const Column<Record>> columns, const QSqlQuery &query, Record &record, StringPool &pool,
             int first = 0)
{
    for (const Column<Record> &column : columns)
        column.read(record, query.value(first++), pool);
}

} // namespace RecordColumns
