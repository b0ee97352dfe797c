#pragma once

#include "store/storerecords.h"

#include <QList>
#include <QMap>

class ObjectDataBase;

/// An object with its subindices, as the descriptions and tables print it.
struct ObjectRecords
{
    struct Sub
    {
        quint8 subindex = 0;
        StoreRecords::SubIndexData data;
    };

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

/// Reads the objects of a line one after another, with few statements for all of them.
class ObjectReader
{
public:
    /// For the objects from `first` to 0xffff, as they are now.
    ObjectReader(ObjectDataBase &store, quint8 line, quint16 first);

    /// By index.
    const QMap<quint16, StoreRecords::IndexData> &objects() const { return objects_; }
    QList<quint16> indices() const { return objects_.keys(); }
    ObjectRecords read(quint16 index) const;

private:
    const quint8 line_;
    QMap<quint16, StoreRecords::IndexData> objects_;
    const QList<StoreRecords::SubEntry> subs_; ///< by index and subindex
};
