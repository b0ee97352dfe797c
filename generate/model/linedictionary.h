#pragma once

#include "nodedict/codes.h"
#include "store/records/storerecords.h"

#include <QList>
#include <QString>

#include <span>
#include <vector>

class ObjectDataBase;

/// A limit that no subindex lies above: the object has a row for each of its subindices.
inline constexpr quint8 notCompact = 255;

/// An object of a line with its subindices.
struct LineObject
{
    quint8 line = 0;
    quint16 index = 0;
    const StoreRecords::IndexData &data;            ///< lives as long as the line's dictionary, as do the subindices
    std::span<const StoreRecords::SubEntry> subs{}; ///< ascending
    /// The first subindex of a tail of equal ones, which stands for all behind it. Told by `collectDictionaryTables`.
    quint8 compactLimit = notCompact;

    /// Null where the object has no such subindex.
    const StoreRecords::SubEntry *sub(quint8 subindex) const;
    /// 0 where there is none.
    quint8 highestSubindex() const { return subs.empty() ? quint8{0} : subs.back().subindex; }
    /// ARRAY or RECORD: the subindices are items of their own.
    bool isGroup() const;
    /// True if the object is left to gen_vobjdict.c.
    bool isVirtual() const;

    /// Name and description with their placeholders filled.
    QString name() const;
    QString description() const;
    /// The text about an object without subindices of its own, to which the description of subindex 0 belongs just as
    /// the object's: both, unless they are the same. An import puts such a text into both places.
    QString plainDescription() const;
};

/// A text of a subindex with its placeholders filled.
QString filledText(const QString &text, const StoreRecords::SubEntry &sub);
/// The number that is the default value of a subindex; 0 for none and for what is no number.
quint32 defaultNumber(const StoreRecords::SubEntry *sub);

/// The object dictionary of a line, read by one scan of its objects and one of its subindices: what every output knows
/// of it.
class LineDictionary
{
public:
    LineDictionary() = default;
    /// The objects from `first` up.
    LineDictionary(ObjectDataBase &store, quint8 line, quint16 first = CANopen::Index::firstCommunicationObject);

    /// Null where the line has no such object.
    const LineObject *object(quint16 index) const;
    bool has(quint16 index) const { return object(index) != nullptr; }
    std::span<const LineObject> range(CANopen::IndexRange indices) const;
    quint32 count(CANopen::IndexRange indices) const { return static_cast<quint32>(range(indices).size()); }
    /// Number of subindices of an object; 0 if it does not exist.
    quint32 subCount(quint16 index) const;
    /// Null where the line has no such object or subindex.
    const StoreRecords::SubEntry *sub(quint16 index, quint8 subindex) const;
    /// The same for a subindex whose object may be missing.
    const StoreRecords::SubEntry *entry(quint16 index, quint8 subindex) const;
    const QList<StoreRecords::SubEntry> &entries() const { return entries_; }
    quint32 value(quint16 index, quint8 subindex) const { return defaultNumber(sub(index, subindex)); }

    quint8 number = 0;
    std::vector<LineObject> objects{}; ///< ascending

private:
    // Shared with the store and with the other readers of the line, as long as nobody writes.
    QList<StoreRecords::IndexEntry> indices_;
    QList<StoreRecords::SubEntry> entries_; ///< by index and subindex
};
