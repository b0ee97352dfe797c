#pragma once

#include "store/statements/statements.h"

#include <array>

/// A statement whose values are bound one after the other, without a variant for each: for the records of a project, of
/// which there are many and of many columns. It is executed as `Statements::execute` does it, any number of times.
///
/// It belongs to the file that is open, and must not outlive it.
class BoundStatement
{
public:
    BoundStatement(Statements &statements, Statement statement);
    ~BoundStatement();
    Q_DISABLE_COPY_MOVE(BoundStatement)

    /// For the next place.
    void bind(qint64 number);
    void bindNull();
    /// A null text is an empty one.
    void bind(const QString &text);
    /// A text in UTF-8, which must stay where it is until the execution.
    void bindUtf8(QByteArrayView text);

    /// With a value for each place; the next value is again for the first.
    [[nodiscard]] bool execute();
    /// By the last execution.
    int changedRows() const;
    qint64 insertedRow() const;

private:
    sqlite3_stmt *prepared();
    void note(int result);

    Statements &statements_;
    const Statement statement_;
    Statements::Prepared prepared_;
    int place_ = 0;
    bool isBound_ = true;
    std::array<char, 512> texts_; ///< plain ones that are bound, where they stay until the execution
    std::size_t textsSize_ = 0;
};
