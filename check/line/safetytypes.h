#pragma once

#include "nodedict/canopendatatype.h"

#include <QtGlobal>

#include <algorithm>
#include <iterator>

/// How a safety data group travels (SAE J1939-76). 0 in a PGN says that nobody has chosen yet.
///
/// A safety header message (SHM) announces a safety data message (SDM), each a classical frame of its own; the other
/// types carry data and safety trailer together in one CAN FD frame.
struct SafetyType
{
    quint8 type = 0;
    quint16 frameBits = 0; ///< of the longest frame; more than 64 need CAN FD
    bool isSDM = false;    ///< sent as SDM behind its SHM
};

inline constexpr quint8 unassignedSafetyType = 0;

inline constexpr SafetyType safetyTypes[] = {
    {1, 64, true},
    {2, 512, false},
    {3, 512, false},
};

/// Null for a type that is not assigned or not known.
inline const SafetyType *safetyType(quint8 type)
{
    const auto *row = std::ranges::find(safetyTypes, type, &SafetyType::type);
    return row == std::end(safetyTypes) ? nullptr : row;
}

/// The types of signals that safety data are packed from: BOOLEAN and the unsigned ones of up to 24 bits and of 32.
inline bool isSafetyDataType(quint32 type)
{
    return type == CAN::Boolean || type == CAN::Unsigned8 || type == CAN::Unsigned16 || type == CAN::Unsigned24 ||
           type == CAN::Unsigned32 || (type >= CAN::Unsigned2 && type <= CAN::Unsigned23);
}
