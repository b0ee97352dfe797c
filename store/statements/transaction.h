#pragma once

#include <QtGlobal>

class Statements;

/// The statements of its lifetime are one transaction, or a part of the one that is under way.
///
/// A batch keeps what succeeded and is committed at its end at the latest. A step is done whole or not at all: unless
/// it is committed, its end takes everything back that was written since its start, also within a batch. A scope that
/// was begun on another file than is open at its end does nothing.
class TransactionScope
{
public:
    enum class Kind
    {
        Batch,
        Step
    };

    TransactionScope(Statements &statements, Kind kind);
    ~TransactionScope();
    Q_DISABLE_COPY_MOVE(TransactionScope)

    /// Ends it; false if it could not be committed, and then nothing of it has been written.
    [[nodiscard]] bool commit();

private:
    bool isOver() const;
    bool end();
    void takeBack();

    Statements &statements_;
    const int generation_;
    const Kind kind_;
    const bool isOuter_;
    bool begun_ = false;
    bool ended_ = false;
};
