#pragma once

#include "store/records/storerecords.h"

#include <QList>
#include <QMap>

#include <tuple>

/// The SPNs of lines and their order in each PGN, read at once for a generator.
class SpnCache
{
public:
    using Key = std::tuple<quint8, quint32, quint8, quint32>; ///< line, PGN, direction, SPN
    using ListKey = std::tuple<quint8, quint32, quint8>;      ///< line, PGN, direction

    void add(quint8 line, const StoreRecords::SPN &spn)
    {
        records_.insert({line, spn.pgnnumber, spn.direction, spn.spnnumber}, spn);
        lists_[{line, spn.pgnnumber, spn.direction}].append(spn.spnnumber);
    }

    const StoreRecords::SPN *find(const Key &key) const
    {
        const auto it = records_.constFind(key);
        return it == records_.constEnd() ? nullptr : &*it;
    }

    const QList<quint32> *list(const ListKey &key) const
    {
        const auto it = lists_.constFind(key);
        return it == lists_.constEnd() ? nullptr : &*it;
    }

    void clear()
    {
        records_.clear();
        lists_.clear();
    }

private:
    QMap<Key, StoreRecords::SPN> records_;
    QMap<ListKey, QList<quint32>> lists_;
};
