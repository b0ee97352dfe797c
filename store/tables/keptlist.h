#pragma once

#include "store/tables/tablefamily.h"

#include <utility>

/// The rows of a line as they were read last, given again until anything is written: the check and each output of a run
/// ask for them. Kept where `TableContext::keepsLists` says so.
template <class Record>
class KeptList
{
public:
    /// What `read` reads of a line, or has read.
    template <class Read>
    QList<Record> get(const TableContext &context, quint8 line, const Read &read)
    {
        const qint64 changes = context.statements.rowChanges();
        if (context.keepsLists && rows_ && line_ == line && changes_ == changes)
            return *rows_;
        rows_.reset();
        QList<Record> rows = read();
        if (!context.keepsLists || context.statements.isDamaged())
            return rows;
        line_ = line;
        changes_ = changes;
        return rows_.emplace(std::move(rows));
    }
    void drop() { rows_.reset(); }

private:
    std::optional<QList<Record>> rows_;
    quint8 line_ = 0;
    qint64 changes_ = 0; ///< rows that had been written to the project
};
