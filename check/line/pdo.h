#pragma once

#include "check/line/checkedline.h"
#include "check/line/storevalue.h"
#include "nodedict/codes.h"

/// Process data objects (CiA 301).
namespace PDO {

inline constexpr quint32 disabledBit = 0x80000000; ///< of a COB-ID
inline constexpr quint8 maxEntries = 64;

constexpr bool isCommunication(quint16 index)
{
    return CANopen::Index::rpdos.contains(index) || CANopen::Index::tpdos.contains(index);
}
constexpr bool isTransmitMapping(quint16 index)
{
    return CANopen::Index::tpdoMappings.contains(index);
}
constexpr bool isMapping(quint16 index)
{
    return CANopen::Index::rpdoMappings.contains(index) || isTransmitMapping(index);
}

/// A subindex of a mapping object, of a PDO or an SRDO.
struct MappingEntry
{
    quint8 number = 0;
    quint32 value = 0;
    const CheckedSubindex *target = nullptr; ///< null where the line has no such subindex

    quint16 index() const { return static_cast<quint16>(value >> 16); }
    quint8 subindex() const { return static_cast<quint8>(value >> 8); }
    quint8 bits() const { return static_cast<quint8>(value); }
    /// Dummy entries name a data type (CiA 301) and stand for bits that nobody reads.
    bool isDummy() const { return value != 0 && index() < 8; }
};

/// Number of entries that subindex 0 names. An MPDO (254, 255) and an unreadable number have none.
quint8 activeEntries(const CheckedObject &mapping);
/// True for a mapping object of an MPDO.
bool isMultiplexed(const CheckedObject &mapping);
/// The entries that are active and exist, up to 64 of them.
std::vector<MappingEntry> entriesOf(CheckedLine &line, const CheckedObject &mapping);
/// True if some entry, active or not, names an object.
bool mapsSomething(const CheckedObject &mapping);
/// Bits of all active entries together.
quint32 mappedBits(CheckedLine &line, const CheckedObject &mapping);
/// True for a mapping that can be changed at run time.
bool isDynamic(const CheckedObject &mapping);
/// Width of a mapped subindex; 0 where it is not told.
quint32 widthOf(const StoreRecords::SubIndexData &data);

/// The COB-ID of a communication object as it is written; empty where subindex 1 is missing.
QString cobIdText(const CheckedObject &communication);
/// The number of the COB-ID: 0 for one that is empty or missing, which the stack takes for that; nothing for a text
/// that is no number.
std::optional<StoreValue> cobIdOf(const CheckedObject &communication);
/// False for a communication object that is missing or has bit 31 of its COB-ID set, and for no other.
bool isEnabled(const CheckedObject *communication);

} // namespace PDO

/// Safety-relevant data objects (EN 50325-5).
namespace SRDO {

constexpr bool isMapping(quint16 index)
{
    return CANopen::Index::srdoMappings.contains(index);
}

} // namespace SRDO
