#pragma once

#include "store/statements/storegate.h"

#include <QMutex>
#include <QSqlDatabase>
#include <QSqlError>
#include <QString>
#include <QVariant>

#include <functional>
#include <optional>
#include <unordered_map>

class QSqlQuery;

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
    explicit ResultRow(const QSqlQuery &query)
        : query_(query)
    {
    }

    int count() const;
    QVariant value(int column) const;
    QString text(int column) const { return value(column).toString(); }
    /// 0 for a NULL and for a text that is no number; cut to the type.
    template <class Number>
    Number number(int column) const
    {
        return static_cast<Number>(value(column).toLongLong());
    }

private:
    const QSqlQuery &query_;
};

/// All statements of a project go through here.
///
/// Each passes the gate, is prepared once and kept, and has its values bound by position; a null QString is bound as an
/// empty text, an invalid QVariant as NULL. A failure is logged with the operation, the statement and the driver's
/// error. Nothing throws.
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
    /// The id of the row that is inserted.
    [[nodiscard]] std::optional<qint64> insert(const Statement &statement, const QVariantList &values);
    /// Column 0 of the first row; invalid without a row.
    QVariant value(const Statement &statement, const QVariantList &values = {});
    /// True if there is a row.
    bool hasRow(const Statement &statement, const QVariantList &values = {});
    /// False for a failure; no row is none.
    bool visit(const Statement &statement, const QVariantList &values, const Visitor &visitor);
    /// False for a failure and without a row.
    bool visitFirst(const Statement &statement, const QVariantList &values, const Visitor &visitor);

    /// Of the last statement that failed.
    QString errorText() const { return error_.text(); }
    /// True if a statement has failed because the file could not be read or written as a whole, until the next open.
    bool isDamaged() const { return damaged_; }
    /// For what has gone wrong in another way.
    void noteDamage() { damaged_ = true; }

    /// Is told of each statement with an effect that succeeded.
    void setWriteListener(std::function<void(Statement::Effect)> listener) { written_ = std::move(listener); }
    /// Is told when writes have been taken back, so that what was remembered of them can be forgotten.
    void setRollbackListener(std::function<void()> listener) { rolledBack_ = std::move(listener); }

    StoreGate &gate() { return gate_; }

private:
    friend class TransactionScope;
    using Kept = std::unordered_map<QString, QSqlQuery>;

    bool perform(const Statement &statement, const QVariantList &values,
                 const std::function<void(QSqlQuery &)> &use = {});
    bool prepareAndRun(QSqlQuery &query, bool isPrepared, const Statement &statement, const QVariantList &values);
    Kept::node_type take(const QString &text);
    void keep(Kept::node_type statement);
    void note(const Statement &statement, const QSqlError &error);
    void tellRollback();

    QSqlDatabase connection_;
    StoreGate gate_;
    QMutex mutex_;
    Kept kept_;
    QSqlError error_;
    int generation_ = 0;
    int depth_ = 0; ///< of the transaction scopes
    bool damaged_ = false;
    std::function<void(Statement::Effect)> written_;
    std::function<void()> rolledBack_;
};

namespace SqlText {

/// A name as an identifier: in double quotes, with those in it doubled.
QString identifier(QString name);
/// The places of values: "?,?,?".
QString places(qsizetype count);

} // namespace SqlText
