#include "store/statements/rowjournal.h"

#include "store/statements/statements.h"
#include "store/statements/transaction.h"

// The hook is an option of SQLite's build, which distributions switch on.
#define SQLITE_ENABLE_PREUPDATE_HOOK
#include <sqlite3.h>

using namespace Qt::StringLiterals;

namespace {

QByteArray quoted(QByteArray name)
{
    return '"' + name.replace('"', "\"\"") + '"';
}

} // namespace

void RowJournal::Free::operator()(sqlite3_value *value) const
{
    sqlite3_value_free(value);
}

RowJournal::RowJournal(Statements &statements)
    : statements_(statements)
    , schema_(schema())
{
}

RowJournal::~RowJournal()
{
    listen(false);
}

void RowJournal::listen(bool on)
{
    if (!statements_.handle())
        return;
    const auto hook = [](void *self, sqlite3 *, int operation, const char *, const char *table, sqlite3_int64 before,
                         sqlite3_int64 after) {
        static_cast<RowJournal *>(self)->note(operation, table, before, after);
    };
    sqlite3_preupdate_hook(statements_.handle(), on ? +hook : nullptr, this);
}

void RowJournal::note(int operation, const char *table, qint64 keyBefore, qint64 keyAfter)
{
    Change change{.table = table, .keyBefore = keyBefore, .keyAfter = keyAfter};
    sqlite3 *database = statements_.handle();
    const int count = sqlite3_preupdate_count(database);
    const auto read = [&](Row &row, auto get) {
        for (int column = 0; column < count; ++column) {
            sqlite3_value *value = nullptr;
            get(database, column, &value);
            row.emplace_back(sqlite3_value_dup(value));
        }
    };
    if (operation != SQLITE_INSERT)
        read(change.before, sqlite3_preupdate_old);
    if (operation != SQLITE_DELETE)
        read(change.after, sqlite3_preupdate_new);
    step_.changes.push_back(std::move(change));
}

RowJournal::Schema RowJournal::schema()
{
    Schema tables;
    std::ignore = statements_.visit(
        {"RowJournal", u"select name, sql from sqlite_master where type = 'table' and name not like 'sqlite_%'"_s}, {},
        [&tables](const ResultRow &row) { tables.insert(row.text(0), row.text(1)); });
    return tables;
}

void RowJournal::begin()
{
    step_ = {};
    listen(true);
}

void RowJournal::drop()
{
    listen(false);
    step_ = {};
}

bool RowJournal::end(const QString &name)
{
    listen(false);
    const Schema after = schema();
    for (const auto &[table, statement] : after.asKeyValueRange()) {
        if (!schema_.contains(table))
            step_.made.insert(table, statement);
    }
    for (const auto &[table, statement] : schema_.asKeyValueRange()) {
        if (!after.contains(table))
            step_.dropped.insert(table, statement);
    }
    schema_ = after;
    if (step_.changes.empty() && step_.made.isEmpty() && step_.dropped.isEmpty())
        return false;
    step_.name = name;
    done_.push_back(std::exchange(step_, {}));
    if (done_.size() > mostSteps)
        done_.pop_front();
    undone_.clear();
    return true;
}

QString RowJournal::undo()
{
    if (done_.empty() || !apply(done_.back(), true))
        return {};
    undone_.push_back(std::move(done_.back()));
    done_.pop_back();
    return undone_.back().name;
}

QString RowJournal::redo()
{
    if (undone_.empty() || !apply(undone_.back(), false))
        return {};
    done_.push_back(std::move(undone_.back()));
    undone_.pop_back();
    return done_.back().name;
}

bool RowJournal::apply(const Step &step, bool back)
{
    TransactionScope scope(statements_, TransactionScope::Kind::Step);
    bool done = executeAll(back ? step.dropped : step.made, true);
    if (back) {
        for (auto change = step.changes.rbegin(); change != step.changes.rend(); ++change)
            done = done && put(change->table, change->keyAfter, change->after, change->keyBefore, change->before);
    } else {
        for (const Change &change : step.changes)
            done = done && put(change.table, change.keyBefore, change.before, change.keyAfter, change.after);
    }
    done = done && executeAll(back ? step.made : step.dropped, false) && scope.commit();
    if (done)
        statements_.tellTakenBack();
    schema_ = schema();
    return done;
}

bool RowJournal::executeAll(const Schema &tables, bool make)
{
    for (const auto &[table, statement] : tables.asKeyValueRange()) {
        const QString text = make ? statement : u"drop table "_s + SqlText::identifier(table);
        if (!statements_.execute({"RowJournal", text, Statement::Effect::Schema}))
            return false;
    }
    return true;
}

/// Makes one state of a row into the other; a state without values is that the row is not there.
bool RowJournal::put(const QByteArray &table, qint64 keyFrom, const Row &from, qint64 keyTo, const Row &to)
{
    if (to.empty())
        return execute("delete from " + quoted(table) + " where rowid = ?", {}, {keyFrom});
    const QByteArrayList names = columns(table);
    if (from.empty())
        return execute("insert into " + quoted(table) + " (" + names.join(',') + ",rowid) values (" +
                           QByteArrayList(names.size() + 1, "?").join(',') + ')',
                       to, {keyTo});
    return execute("update " + quoted(table) + " set " + names.join("=?,") + "=?,rowid=? where rowid = ?", to,
                   {keyTo, keyFrom});
}

bool RowJournal::execute(const QByteArray &text, const Row &row, std::initializer_list<qint64> keys)
{
    sqlite3_stmt *statement = nullptr;
    bool done = sqlite3_prepare_v2(statements_.handle(), text.constData(), -1, &statement, nullptr) == SQLITE_OK;
    int place = 0;
    for (const auto &value : row)
        done = done && sqlite3_bind_value(statement, ++place, value.get()) == SQLITE_OK;
    for (const qint64 key : keys)
        done = done && sqlite3_bind_int64(statement, ++place, key) == SQLITE_OK;
    done = done && sqlite3_step(statement) == SQLITE_DONE;
    sqlite3_finalize(statement);
    return done;
}

QByteArrayList RowJournal::columns(const QByteArray &table)
{
    QByteArrayList names;
    std::ignore = statements_.visit({"RowJournal", u"select name from pragma_table_info(?) order by cid"_s},
                                    {QString::fromUtf8(table)},
                                    [&names](const ResultRow &row) { names.append(quoted(row.text(0).toUtf8())); });
    return names;
}
