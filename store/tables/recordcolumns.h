#pragma once

#include "store/statements/literaltext.h"
#include "store/statements/statements.h"
#include "store/tables/stringpool.h"

#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVarLengthArray>

#include <algorithm>
#include <optional>
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

/// A text.
template <auto Member>
constexpr auto text(QLatin1StringView name)
{
    using Record = typename MemberTraits<Member>::Record;
    return Column<Record>{
        name, [](const Record &record) { return QVariant(record.*Member); }, nullptr,
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

/// "a, b, c"
template <class Record>
QString names(std::span<const Column<Record>> columns)
{
    QStringList list;
    for (const Column<Record> &column : columns)
        list.append(column.name);
    return list.join(QLatin1StringView(", "));
}

/// Names of columns that a statement leaves out.
using Names = std::initializer_list<QLatin1StringView>;

inline bool holds(Names names, QLatin1StringView name)
{
    return std::find(names.begin(), names.end(), name) != names.end();
}

/// What is bound for the columns, in their order; nothing if the write of one of the texts fails. The texts of the
/// columns in `kept` are stored as they are in any case.
template <class Record>
std::optional<QVariantList> values(std::span<const Column<Record>> columns, const Record &record, const TextIds &ids,
                                   Quotes quotes, Names except = {}, Names kept = {})
{
    QVariantList list;
    list.reserve(static_cast<qsizetype>(columns.size()) + 4);
    for (const Column<Record> &column : columns) {
        if (holds(except, column.name))
            continue;
        QVariant value = valueOf(column, record, ids);
        if (quotes == Quotes::Literal && value.typeId() == QMetaType::QString && !holds(kept, column.name)) {
            std::optional<QString> text = LiteralText::stored(value.toString(), quotes);
            if (!text)
                return std::nullopt;
            value = *std::move(text);
        }
        list.append(std::move(value));
    }
    return list;
}

/// "a = ?, b = ?"
template <class Record>
QString assignments(std::span<const Column<Record>> columns, Names except = {})
{
    QStringList list;
    for (const Column<Record> &column : columns) {
        if (!holds(except, column.name))
            list.append(column.name + QLatin1StringView(" = ?"));
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
            key_.append(value);
        }
    }

    /// What is bound for the key, at the end of each statement but the insertion.
    const QVariantList &key() const { return key_; }
    QString condition() const { return names_.join(QLatin1StringView(" = ? and ")) + QLatin1StringView(" = ?"); }
    QString select(const QString &columns) const
    {
        return QStringLiteral("select %1 from %2 where %3").arg(columns, table_, condition());
    }
    QString remove() const { return QStringLiteral("delete from %1 where %2").arg(table_, condition()); }

    /// The values of the columns are bound first, then the key.
    template <class Record>
    QString insert(std::span<const Column<Record>> columns) const
    {
        return QStringLiteral("insert into %1 (%2, %3) values(%4)")
            .arg(table_, names(columns), names_.join(QLatin1StringView(", ")),
                 SqlText::places(static_cast<qsizetype>(columns.size()) + names_.size()));
    }
    template <class Record>
    QString update(std::span<const Column<Record>> columns, Names except = {}) const
    {
        return QStringLiteral("update %1 set %2 where %3").arg(table_, assignments(columns, except), condition());
    }

private:
    QString table_;
    QStringList names_;
    QVariantList key_;
};

/// Fills a record from a row whose columns from `first` on are those of the list.
template <class Record>
void readRow(std::span<const Column<Record>> columns, const ResultRow &row, Record &record, StringPool &pool,
             int first = 0)
{
    for (const Column<Record> &column : columns)
        column.read(record, row.value(first++), pool);
}

} // namespace RecordColumns
