#include "store/records/stringpool.h"

#include "store/statements/transaction.h"

#include <QSet>

#include <tuple>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

struct References
{
    QLatin1StringView table; ///< of each line
    QLatin1StringView columns;
};

/// The columns of a line's tables that refer to texts.
constexpr References references[] = {
    {"Objects"_L1, "name,description,device_class"_L1},
    {"SubObjects"_L1, "name,denotation,description"_L1},
    {"PGNs"_L1, "name,desc"_L1},
    {"CANIDs"_L1, "name,desc"_L1},
    {"SPNs"_L1, "name,desc"_L1},
    {"DataElements"_L1, "name,desc"_L1},
};

} // namespace

/// A text that the map never finds, as it stands there with its quotes doubled.
bool StringPool::hasARowPerInterning(const QString &text)
{
    return text.contains(u'\'');
}

int StringPool::idOf(const QString &text)
{
    readIfStale();
    if (const auto it = ids_.constFind(text); it != ids_.constEnd())
        return *it;

    const int added = insert(text);
    if (added >= 0)
        texts_.insert(added, text);
    if (!hasARowPerInterning(text)) {
        if (added >= 0)
            ids_.insert(text, added);
        return added;
    }
    const int first = firstQuoted_.value(text, added);
    if (added >= 0 && !firstQuoted_.contains(text))
        firstQuoted_.insert(text, added);
    if (first >= 0)
        ids_.insert(QString(text).replace(u'\'', "''"_L1), first);
    return first;
}

int StringPool::insert(const QString &text)
{
    if (!insertion_) {
        const Statement insertion{"getStringId", u"insert into Strings values(NULL,?)"_s, Statement::Effect::Rows};
        insertion_.emplace(statements_, insertion);
    }
    insertion_->bind(text);
    return insertion_->execute() ? static_cast<int>(insertion_->insertedRow()) : -1;
}

QString StringPool::textOf(const ResultRow &row, int column)
{
    return row.isNull(column) ? QString() : textOf(row.number<int>(column));
}

QString StringPool::textOf(int id)
{
    readIfStale();
    const auto it = texts_.constFind(id);
    if (it != texts_.constEnd())
        return *it;
    QString text = statements_.value({nullptr, u"select string from Strings where id = ?"_s}, {id}).toString();
    texts_.insert(id, text);
    return text;
}

void StringPool::loadTexts()
{
    readIfStale();
    if (textsLoaded_)
        return;
    textsLoaded_ = statements_.visit({nullptr, u"select id, string from Strings"_s}, {},
                                     [this](const ResultRow &row) { texts_.insert(row.number<int>(0), row.text(1)); });
}

void StringPool::reload()
{
    if (isAsRead_)
        return;
    clear();
    isStale_ = true;
}

/// Mostly nobody asks any more after a save.
void StringPool::readIfStale()
{
    if (!std::exchange(isStale_, false))
        return;
    textsLoaded_ = statements_.visit({nullptr, u"select * from Strings"_s}, {}, [this](const ResultRow &row) {
        const int id = row.number<int>(0);
        const QString text = row.text(1);
        texts_.insert(id, text);
        ids_.insert(text, id);
    });
    isAsRead_ = textsLoaded_;
}

void StringPool::clear()
{
    ++clearings_;
    isStale_ = false;
    isAsRead_ = false;
    textsLoaded_ = false;
    texts_.clear();
    ids_.clear();
    firstQuoted_.clear();
}

bool StringPool::removeUnused(const QList<quint8> &lines)
{
    QSet<int> used;
    const auto collect = [&](const QString &columns, const QString &table) {
        return statements_.visit({nullptr, u"select %1 from %2"_s.arg(columns, table)}, {}, [&](const ResultRow &row) {
            for (int column = 0; column < row.count(); ++column)
                used.insert(row.number<int>(column));
        });
    };
    for (const quint8 line : lines) {
        for (const auto &[family, columns] : references) {
            const QString table = family + QString::number(line);
            if (collect(columns, table))
                continue;
            // A table that lacks a column still needs the texts of the others.
            for (const QString &column : QString(columns).split(u','))
                std::ignore = collect(column, table);
        }
    }
    std::ignore = collect(u"name"_s, u"Signals"_s);

    QList<int> unused;
    std::ignore = statements_.visit({nullptr, u"select id from Strings"_s}, {}, [&](const ResultRow &row) {
        if (const int id = row.number<int>(0); !used.contains(id))
            unused.append(id);
    });
    TransactionScope transaction(statements_, TransactionScope::Kind::Batch);
    bool done = true;
    for (const int id : std::as_const(unused))
        done = statements_.execute(
                   {"removeUnusedStrings", u"delete from Strings where id = ?"_s, Statement::Effect::Rows}, {id}) &&
               done;
    reload();
    return transaction.commit() && done;
}
