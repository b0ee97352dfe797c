#include "import/pdoobjects.h"

#include "nodedict/access.h"
#include "nodedict/canopendatatype.h"
#include "nodedict/codes.h"
#include "nodedict/cohelper.h"
#include "store/objectdatabase.h"

#include <bitset>
#include <span>

using namespace Qt::StringLiterals;

namespace {

using CANopen::Access;
using CANopen::Index::pdoMappingOffset;

constexpr quint8 mappingEntries = 8;
/// Indices from the first communication object to the last mapping object of a direction.
constexpr size_t places = pdoMappingOffset + PDOObjects::maxCount;

struct SubRow
{
    quint8 subindex;
    QLatin1StringView name;
    CAN::CANopenDataType datatype;
    Access access;
    QLatin1StringView value;
    bool limited; ///< the value is the low and the high limit, too; else there is none
};

constexpr SubRow receiveSubs[] = {
    {0, "Number of Entries"_L1, CAN::Unsigned8, Access::ReadOnly, "2"_L1, true},
    {1, "COB-ID"_L1, CAN::Unsigned32, Access::ReadWrite, "0x80000000"_L1, false},
    {2, "Transmission Type"_L1, CAN::Unsigned8, Access::ReadWrite, "0xFF"_L1, false},
};

constexpr SubRow transmitSubs[] = {
    {0, "Number of Entries"_L1, CAN::Unsigned8, Access::ReadOnly, "5"_L1, true},
    {1, "COB-ID"_L1, CAN::Unsigned32, Access::ReadWrite, "0x80000000"_L1, false},
    {2, "Transmission Type"_L1, CAN::Unsigned8, Access::ReadWrite, "0xFF"_L1, false},
    {3, "Inhibit Time"_L1, CAN::Unsigned16, Access::ReadWrite, "0"_L1, false},
    {5, "Event Timer"_L1, CAN::Unsigned16, Access::ReadWrite, "0"_L1, false},
};

constexpr SubRow mappingCount = {0, "Number of Entries"_L1, CAN::Unsigned8, Access::ReadWrite, "8"_L1, true};

struct DirectionRow
{
    quint16 firstCommunication;
    QLatin1StringView name; ///< of a communication object, before the PDO's number
    std::span<const SubRow> subs;
};

constexpr DirectionRow directions[] = {
    {CANopen::Index::rpdos.first, "Receive PDO parameter"_L1, receiveSubs},
    {CANopen::Index::tpdos.first, "Transmit PDO parameter"_L1, transmitSubs},
};

ObjectDataBase::SUBINDEX_DATA_T recordOf(const SubRow &row)
{
    ObjectDataBase::SUBINDEX_DATA_T record;
    record.name = row.name;
    record.datatype = row.datatype;
    record.accesstype = textOf(row.access);
    record.defaultvalue = row.value;
    record.lowlimit = row.limited ? QString(row.value) : QString();
    record.uplimit = record.lowlimit;
    return record;
}

/// Fills the gaps of one direction's objects.
class Filler
{
public:
    Filler(ObjectDataBase &store, quint8 line, const DirectionRow &row)
        : store_(store)
        , line_(line)
        , row_(row)
    {
        const quint16 first = row.firstCommunication;
        for (const quint16 index : store.getIndexList(line, first, static_cast<quint16>(first + existing_.size() - 1)))
            existing_.set(index - first);
    }

    [[nodiscard]] bool fill(quint32 count)
    {
        if (countFrom(0) < count) {
            for (quint32 i = 0; i < count; ++i) {
                addCommunication(i);
                addMapping(i);
            }
        }
        if (countFrom(pdoMappingOffset) < count) {
            for (quint32 i = 0; i < count; ++i)
                addMapping(i);
        }
        return store_.addSubIndices(entries_) && done_;
    }

private:
    /// Number of objects in one of the two ranges.
    size_t countFrom(quint32 offset) const { return (existing_ >> offset << pdoMappingOffset).count(); }

    void addObject(quint32 offset, const QString &name)
    {
        ObjectDataBase::INDEX_DATA_T object;
        object.name = name;
        object.objecttype = CANopen::Record;
        done_ = store_.addIndex(line_, indexAt(offset), object) && done_;
        existing_.set(offset);
    }

    void addCommunication(quint32 number)
    {
        if (existing_.test(number))
            return;
        addObject(number, u"%1 %2"_s.arg(row_.name).arg(number + 1));
        for (const SubRow &sub : row_.subs)
            entries_.append({line_, indexAt(number), sub.subindex, recordOf(sub)});
    }

    void addMapping(quint32 number)
    {
        const quint32 offset = pdoMappingOffset + number;
        if (existing_.test(offset))
            return;
        addObject(offset, u"Mapping Parameter"_s);
        entries_.append({line_, indexAt(offset), 0, recordOf(mappingCount)});
        for (quint8 entry = 1; entry <= mappingEntries; ++entry) {
            auto record = recordOf({entry, ""_L1, CAN::Unsigned32, Access::ReadWrite, "0x00000000"_L1, false});
            record.name = u"Mappping Entry %1"_s.arg(entry);
            entries_.append({line_, indexAt(offset), entry, record});
        }
    }

    quint16 indexAt(quint32 offset) const { return static_cast<quint16>(row_.firstCommunication + offset); }

    ObjectDataBase &store_;
    quint8 line_;
    const DirectionRow &row_;
    /// Communication objects from 0, mapping objects from `pdoMappingOffset`.
    std::bitset<places> existing_;
    QList<ObjectDataBase::SubEntry> entries_;
    bool done_ = true;
};

} // namespace

bool PDOObjects::addMissing(ObjectDataBase &store, quint8 line, Direction direction, quint32 count)
{
    return count == 0 || Filler(store, line, directions[direction]).fill(qMin(count, maxCount));
}
