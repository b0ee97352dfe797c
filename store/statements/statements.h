#pragma once

#include "store/statements/storegate.h"

#include <QByteArrayView>
#include <QMutex>
#include <QSqlDatabase>
#include <QString>
#include <QVariant>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <tuple>
#include <type_traits>
#include <unordered_map>

struct sqlite3;
struct sqlite3_stmt;

/// A statement and what is told of it. Its text has a "?" in the place of each value, and of a project's own texts none
/// but the names of its tables and columns, as identifiers.
struct Statement
{
    enum class Effect : quint8
    {
        None,       ///< a question, or nothing that a listener wants to know
        Rows,       ///< rows written
        Subindices, ///< rows of `SubObjects%1` written
        Schema      ///< tables or columns made, changed or dropped
    };

    const char *operation; ///< what a failure is logged as; null where a failure is not worth a word
    QString text;
    Effect effect = Effect::None;
};

/// The current row of a result; columns count from 0.
class ResultRow
{
public:
    explicit ResultRow(sqlite3_stmt *statement)
        : statement_(statement)
    {
    }

    int count() const;
    /// A qint64, a double, a QByteArray or a QString; a null QVariant for a NULL.
    QVariant value(int column) const;
    bool isNull(int column) const;
    bool isInteger(int column) const;
    /// Null for a NULL. Short texts share their memory with those before.
    QString text(int column) const;
    /// The bytes of a text, until the next row; nothing for another value.
    std::optional<QByteArrayView> utf8(int column) const;
    /// Appends the text of each value in UTF-8, with `behind` behind it; a blob counts as the text that its bytes are.
    void appendTexts(std::string &out, char behind) const;
    /// 0 for a NULL and for a text that is no number; cut to the type.
    template <class Number>
    Number number(int column) const
    {
        return static_cast<Number>(integer(column));
    }

private:
    qint64 integer(int column) const;

    sqlite3_stmt *statement_;
};

/// All statements of a project go through here.
///
/// Each passes the gate, is prepared once and kept, and has its values bound by position; a null QString is bound as an
/// empty text, an invalid QVariant as NULL. A failure is logged with the operation, the statement and the driver's
/// error. Nothing throws.
///
/// The connection is one of the driver QSQLITE, but the statements run on SQLite itself: through the driver each value
/// would become a QVariant, each name of a column a text, and a project has a million of them.
class Statements
{
public:
    using Visitor = std::function<void(const ResultRow &)>;

    /// Makes a connection of a name of its own.
    Statements();
    ~Statements();
    Q_DISABLE_COPY_MOVE(Statements)

    /// Opens a database file; the one before is closed, with the transaction that was open in it.
    [[nodiscard]] bool open(const QString &path);
    void close();
    bool isOpen() const { return connection_.isOpen(); }
    QString path() const { return connection_.databaseName(); }
    bool inTransaction() const { return depth_ > 0; }
    /// Counts the files that have been opened.
    int generation() const { return generation_; }

    [[nodiscard]] bool execute(const Statement &statement, const QVariantList &values = {});
    /// Column 0 of the first row; invalid without a row.
    QVariant value(const Statement &statement, const QVariantList &values = {});
    /// True if there is a row.
    bool hasRow(const Statement &statement, const QVariantList &values = {});
    /// False for a failure; no row is none.
    [[nodiscard]] bool visit(const Statement &statement, const QVariantList &values, const Visitor &visitor);
    /// False for a failure and without a row.
    bool visitFirst(const Statement &statement, const QVariantList &values, const Visitor &visitor);
    /// What `read` makes of the first row; nothing without one.
    template <class Read>
    auto first(const Statement &statement, const QVariantList &values, const Read &read)
    {
        std::optional<std::invoke_result_t<Read, const ResultRow &>> found;
        visitFirst(statement, values, [&](const ResultRow &row) { found = read(row); });
        return found;
    }
    /// What `read` makes of each row. After a failure, of which the log tells, it is what could be read.
    template <class Read>
    auto list(const Statement &statement, const QVariantList &values, const Read &read)
    {
        QList<std::invoke_result_t<Read, const ResultRow &>> rows;
        std::ignore = visit(statement, values, [&](const ResultRow &row) { rows.append(read(row)); });
        return rows;
    }

    /// Of the last statement that failed.
    QString errorText() const { return error_; }
    /// True if a statement has failed because the file could not be read or written as a whole, until the next open.
    bool isDamaged() const { return damaged_; }
    /// How many rows have been written since the file was opened, those that were rolled back too.
    qint64 rowChanges() const;
    /// For what has gone wrong in another way.
    void noteDamage() { damaged_ = true; }

    /// Is told of each statement with an effect that succeeded.
    void setWriteListener(std::function<void(Statement::Effect)> listener) { written_ = std::move(listener); }
    /// Is told of each row that is inserted, changed or deleted, by the name of its table, before the statement ends.
    void setRowListener(std::function<void(QByteArrayView table)> listener) { rowWritten_ = std::move(listener); }
    /// Is told when writes have been taken back, so that what was remembered of them can be forgotten.
    void setRollbackListener(std::function<void()> listener) { rolledBack_ = std::move(listener); }

    /// Tells that listener, for writes that were taken back otherwise than by a rollback.
    void tellTakenBack() { tellRollback(); }

    StoreGate &gate() { return gate_; }
    /// The connection as SQLite knows it, for what no statement can do; null while no file is open.
    sqlite3 *handle() const { return database_; }

private:
    friend class BoundStatement;
    friend class TransactionScope;
    struct Finalizer
    {
        void operator()(sqlite3_stmt *statement) const;
    };
    /// Of a statement's text: some of its characters, as there is a lookup for each execution and texts are long.
    struct TextHash
    {
        size_t operator()(const QString &text) const;
    };
    using KeptStatements = std::unordered_map<QString, std::unique_ptr<sqlite3_stmt, Finalizer>, TextHash>;
    /// Taken out of the kept ones, and put back as it is.
    using Prepared = KeptStatements::node_type;
    /// Reads the result of a statement from its first row; false where it cannot be read to its end.
    using Reader = std::function<bool(sqlite3_stmt *, bool hasRow)>;

    bool perform(const Statement &statement, const QVariantList &values, const Reader &read = {});
    Prepared prepared(const QString &text);
    void keep(Prepared statement);
    bool fail(const Statement &statement, const char *what);
    void tellWrite(const Statement &statement);
    void listenToRows();
    void tellRollback();

    QSqlDatabase connection_;
    sqlite3 *database_ = nullptr; ///< of the connection, while it is open
    StoreGate gate_;
    QMutex mutex_;
    KeptStatements kept_;
    QString error_;
    int generation_ = 0;
    int depth_ = 0; ///< of the transaction scopes
    bool damaged_ = false;
    std::function<void(Statement::Effect)> written_;
    std::function<void(QByteArrayView)> rowWritten_;
    std::function<void()> rolledBack_;
};

namespace SqlText {

/// A name as an identifier: in double quotes, with those in it doubled.
QString identifier(QString name);
/// The places of values: "?,?,?".
QString places(qsizetype count);

} // namespace SqlText
