#pragma once

#include "store/tables/storerecords.h"

#include <QHash>
#include <QMap>

/// The subindices of whole lines, read at once for the time of a run. A remove does not reach it: it belongs to a run
/// that changes nothing, and is emptied at its end.
class SubObjectCache
{
public:
    using Line = QMap<quint32, StoreRecords::SubIndexData>;

    static constexpr quint32 key(quint16 index, quint8 subindex) { return quint32{index} << 8 | subindex; }

    const StoreRecords::SubIndexData *find(quint8 line, quint16 index, quint8 subindex) const
    {
        const auto lineIt = lines_.constFind(line);
        if (lineIt == lines_.constEnd())
            return nullptr;
        const auto it = lineIt->constFind(key(index, subindex));
        return it == lineIt->constEnd() ? nullptr : &*it;
    }

    /// Replaces an entry that the cache holds already; others stay out.
    void refresh(quint8 line, quint16 index, quint8 subindex, const StoreRecords::SubIndexData &data)
    {
        const auto lineIt = lines_.find(line);
        if (lineIt == lines_.end())
            return;
        const auto it = lineIt->find(key(index, subindex));
        if (it != lineIt->end())
            *it = data;
    }

    void setLine(quint8 line, const Line &entries) { lines_.insert(line, entries); }
    void clear() { lines_.clear(); }

private:
    QHash<quint8, Line> lines_;
};
