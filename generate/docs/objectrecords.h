#pragma once

#include "store/storerecords.h"

#include <QList>

class ObjectDataBase;

/// An object with its subindices, read at once, as the descriptions and tables print it.
struct ObjectRecords
{
    struct Sub
    {
        quint8 subindex = 0;
        StoreRecords::SubIndexData data;
    };

    /// Reads from the store. What it does not have counts as a record that is new: "unnamed object" and so on.
    static ObjectRecords read(ObjectDataBase &store, quint8 line, quint16 index);

    /// ARRAY or RECORD: the subindices are items of their own.
    bool isGroup() const;
    const Sub *sub(quint8 subindex) const;
    /// 0 where there is none.
    quint8 highestSubindex() const { return subs.isEmpty() ? quint8{0} : subs.last().subindex; }

    /// Names with their placeholders filled.
    QString name() const;
    QString name(const Sub &sub) const;
    /// The text about an object without subindices of its own, to which the description of subindex 0 belongs just as
    /// the object's: both, unless they are the same. An import puts such a text into both places.
    QString plainDescription() const;

    quint8 line = 0;
    quint16 index = 0;
    StoreRecords::IndexData object;
    QList<Sub> subs; ///< ascending
};
