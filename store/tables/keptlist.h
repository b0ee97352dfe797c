#pragma once

#include "store/tables/tablefamily.h"

#include <utility>

/// The rows of a line as they were read last, given again until anything is written or the pool lets its texts go: the
/// check and each output of a run ask for them. Kept where `TableContext::keepsLists` says so.
template <class Record>
class KeptList
{
public:
    /// What `read` reads of a line, or has read.
    template <class Read>
    QList<Record> get(const TableContext &context, quint8 line, const Read &read)
    {
        const State state{line, context.statements.rowChanges(), context.strings.clearings()};
        if (context.keepsLists && rows_ && state_ == state)
            return *rows_;
        rows_.reset();
        QList<Record> rows = read();
        if (!context.keepsLists || context.statements.isDamaged())
            return rows;
        state_ = state;
        return rows_.emplace(std::move(rows));
    }
    void drop() { rows_.reset(); }

private:
    struct State
    {
        quint8 line;
        qint64 changes; ///< rows that had been written to the project
        qint64 clearings;
        bool operator==(const State &) const = default;
    };

    std::optional<QList<Record>> rows_;
    State state_{};
};
