#pragma once

#include "candb/candb.h"

#include <optional>

/// The data type (CAN::CANopenDataType) that holds the bits of a DBC signal.
namespace DbcSignalType {

/// Nothing where no type has the width. A text type and an OCTET_STRING take their width from the record.
std::optional<quint16> of(const CANdb::Signal &signal, bool isText);
/// False for a signed signal of a width that only unsigned types have: its sign bit is a bit as any other then.
bool keepsSign(const CANdb::Signal &signal);
/// The first bit as a project counts, from the least significant of byte 0; nothing for a signal in Motorola byte order
/// that lies in more than one byte. Within a byte both orders are the same.
std::optional<quint32> firstBit(const CANdb::Signal &signal);

} // namespace DbcSignalType
