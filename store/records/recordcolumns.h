#pragma once

#include "store/records/stringpool.h"
#include "store/statements/boundstatement.h"
#include "store/statements/literaltext.h"

#include <QDebug>
#include <QString>
#include <QStringList>
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
    // One of the three tells what the column holds: a number, a text, or a text of the pool by its id.
    qint64 (*number)(const Record &);
    const QString &(*text)(const Record &);
    const QString &(*pooled)(const Record &);
    void (*read)(Record &, const ResultRow &, int column, StringPool &);
};

/// Ids of a record's pooled texts by column name.
using TextIds = QVarLengthArray<std::pair<QLatin1StringView, int>, 4>;

/// -1 for a column without one.
inline int idOf(const TextIds &ids, QLatin1StringView name)
{
    const auto id = std::ranges::find(ids, name, &TextIds::value_type::first);
    return id == ids.end() ? -1 : id->second;
}

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
    return Column<Record>{name, [](const Record &record) { return static_cast<qint64>(record.*Member); }, nullptr,
                          nullptr,
                          [](Record &record, const ResultRow &row, int column, StringPool &) {
                              if constexpr (std::is_same_v<Value, bool>)
                                  record.*Member = row.number<qint64>(column) != 0;
                              else
                                  record.*Member = row.number<Value>(column);
                          }};
}

/// A text.
template <auto Member>
constexpr auto text(QLatin1StringView name)
{
    using Record = typename MemberTraits<Member>::Record;
    return Column<Record>{
        name, nullptr, [](const Record &record) -> const QString & { return record.*Member; }, nullptr,
        [](Record &record, const ResultRow &row, int column, StringPool &) { record.*Member = row.text(column); }};
}

/// A text of the pool, stored by its id.
template <auto Member>
constexpr auto pooled(QLatin1StringView name)
{
    using Record = typename MemberTraits<Member>::Record;
    return Column<Record>{name, nullptr, nullptr,
                          [](const Record &record) -> const QString & { return record.*Member; },
                          [](Record &record, const ResultRow &row, int column, StringPool &pool) {
                              record.*Member = pool.textOf(row, column);
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

/// "a, b, c"
template <class Record>
QString names(std::span<const Column<Record>> columns)
{
    QStringList list;
    for (const Column<Record> &column : columns)
        list.append(column.name);
    return list.join(QLatin1StringView(", "));
}

/// Some of the columns.
using Names = std::span<const QLatin1StringView>;

inline bool holds(Names names, QLatin1StringView name)
{
    return std::ranges::find(names, name) != names.end();
}

/// A record on its way into its row.
template <class Record>
struct Values
{
    std::span<const Column<Record>> columns;
    const Record &record;
    const TextIds &ids;
    Quotes quotes = Quotes::Kept;
    Names except = {}; ///< columns that the statement leaves out
    Names kept = {};   ///< columns whose texts are stored as they are, whatever the quotes of the others do
};

/// Binds the values of the columns in their order; false if the write of one of the texts fails.
template <class Record>
bool bind(BoundStatement &statement, const Values<Record> &values)
{
    for (const Column<Record> &column : values.columns) {
        if (holds(values.except, column.name))
            continue;
        if (column.number) {
            statement.bind(column.number(values.record));
        } else if (column.pooled) {
            statement.bind(qint64{idOf(values.ids, column.name)});
        } else if (values.quotes == Quotes::Kept || holds(values.kept, column.name)) {
            statement.bind(column.text(values.record));
        } else if (const auto text = LiteralText::stored(column.text(values.record), values.quotes)) {
            statement.bind(*text);
        } else {
            return false;
        }
    }
    return true;
}

/// The same, and the log tells of such a text.
template <class Record>
bool bindTold(const char *operation, BoundStatement &statement, const Values<Record> &values)
{
    const bool done = bind(statement, values);
    if (!done)
        qDebug().noquote() << operation << "failed: a single quote in a text";
    return done;
}

/// "a = ?, b = ?"
template <class Record>
QString assignments(std::span<const Column<Record>> columns, Names except = {},
                    QLatin1StringView separator = QLatin1StringView(", "))
{
    QStringList list;
    for (const Column<Record> &column : columns) {
        if (!holds(except, column.name))
            list.append(column.name + QLatin1StringView(" = ?"));
    }
    return list.join(separator);
}

/// Fills a record from a row whose columns from `first` on are those of the list.
template <class Record>
void readRow(std::span<const Column<Record>> columns, const ResultRow &row, Record &record, StringPool &pool,
             int first = 0)
{
    for (const Column<Record> &column : columns)
        column.read(record, row, first++, pool);
}

} // namespace RecordColumns
