#pragma once

#include "store/records/storerecords.h"

#include <QHash>
#include <QList>

#include <algorithm>

/// The subindices of whole lines, read at once for the time of a run. A remove does not reach it: it belongs to a run
/// that changes nothing, and is emptied at its end.
class SubObjectCache
{
public:
    /// In ascending order of their keys; mostly shared with who has read them.
    using Line = QList<StoreRecords::SubEntry>;

    static constexpr quint32 key(quint16 index, quint8 subindex) { return quint32{index} << 8 | subindex; }
    static quint32 keyOf(const StoreRecords::SubEntry &entry) { return key(entry.index, entry.subindex); }

    const StoreRecords::SubIndexData *find(quint8 line, quint16 index, quint8 subindex) const
    {
        const auto entries = lines_.constFind(line);
        const qsizetype place = entries == lines_.constEnd() ? -1 : placeOf(*entries, key(index, subindex));
        return place < 0 ? nullptr : &entries->at(place).data;
    }

    /// Replaces an entry that the cache holds already; others stay out.
    void refresh(quint8 line, quint16 index, quint8 subindex, const StoreRecords::SubIndexData &data)
    {
        const auto entries = lines_.find(line);
        const qsizetype place = entries == lines_.end() ? -1 : placeOf(*entries, key(index, subindex));
        if (place >= 0)
            (*entries)[place].data = data;
    }

    void setLine(quint8 line, const Line &entries) { lines_.insert(line, entries); }
    void clear() { lines_.clear(); }

private:
    /// The last entry of a key; -1 if there is none.
    static qsizetype placeOf(const Line &entries, quint32 key)
    {
        const auto behind = std::ranges::upper_bound(entries, key, {}, keyOf);
        const bool isThere = behind != entries.begin() && keyOf(*std::prev(behind)) == key;
        return isThere ? std::prev(behind) - entries.begin() : -1;
    }

    QHash<quint8, Line> lines_;
};
