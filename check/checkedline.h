#pragma once

#include "store/storerecords.h"

#include <optional>
#include <vector>

class ObjectDataBase;

struct CheckedSubindex
{
    quint8 subindex = 0;
    StoreRecords::SubIndexData data;
};

struct CheckedObject
{
    quint16 index = 0;
    StoreRecords::IndexData data;
    std::vector<CheckedSubindex> subs; ///< ascending

    /// Null where the object has no such subindex.
    const CheckedSubindex *sub(quint8 subindex) const;
};

struct CheckedPGN
{
    quint8 direction = 0;
    StoreRecords::PGN data;
    std::vector<StoreRecords::SPN> spns; ///< in the order of their places in the message
};

struct CheckedCanId
{
    quint8 direction = 0;
    StoreRecords::CANID data;
    std::vector<StoreRecords::DataElement> signalList; ///< by number
};

/// A line as the rules see it: read from the store once, each part when it is first asked for.
class CheckedLine
{
public:
    CheckedLine(ObjectDataBase &store, quint8 line)
        : store_(store)
        , line_(line)
    {
    }

    quint8 number() const { return line_; }
    /// All objects, ascending.
    const std::vector<CheckedObject> &objects();
    /// Null where the line has no such object.
    const CheckedObject *object(quint16 index);
    /// Receive before transmit, ascending in each, as the next.
    const std::vector<CheckedPGN> &pgns();
    const std::vector<CheckedCanId> &canIds();

    /// Takes a subindex that was corrected in the store over into the loaded objects.
    void replace(quint16 index, quint8 subindex, const StoreRecords::SubIndexData &data);

private:
    ObjectDataBase &store_;
    quint8 line_;
    std::optional<std::vector<CheckedObject>> objects_;
    std::optional<std::vector<CheckedPGN>> pgns_;
    std::optional<std::vector<CheckedCanId>> canIds_;
};
