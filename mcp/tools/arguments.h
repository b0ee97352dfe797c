#pragma once

#include "mcp/call/property.h"

/// The arguments that tools of several families share; a shared one reads the same in all of them. An argument of one
/// family alone stands beside that family's tools.
namespace Arguments {

using Qt::StringLiterals::operator""_L1;

inline constexpr Property line = Properties::integer("line"_L1, 0, 255, "Line id (0-255)"_L1);
inline constexpr Property index =
    Properties::integer("index"_L1, 0, 65535, "Object dictionary index, decimal (e.g. 24641 for 0x6041)"_L1);
inline constexpr Property sub = Properties::integer("sub"_L1, 0, 255, "Subindex, decimal"_L1);
inline constexpr Property dataType =
    Properties::integer("dataType"_L1, 0, 65535, "CANopen datatype object index, decimal (e.g. 5 for UNSIGNED8)"_L1);
inline constexpr Property description = Properties::string("description"_L1, "Descriptive text (optional)"_L1);
inline constexpr Property defaultValue =
    Properties::string("defaultValue"_L1, R"(Default value, e.g. "0x0" (optional))"_L1);

/// Protocols of a line.
inline constexpr QLatin1StringView lineTypeNames[]{"CANopen"_L1,       "J1939"_L1,          "RawCAN"_L1,
                                                   "CANopen+J1939"_L1, "CANopen+RawCAN"_L1, "J1939+RawCAN"_L1};

inline constexpr QLatin1StringView directions[]{"Transmit"_L1, "Receive"_L1, "Invalid"_L1};
/// As part of the identity of a message.
inline constexpr Property direction = Properties::choice(
    "direction"_L1, directions, "Part of the identity key - the same number can exist as both Transmit and Receive"_L1);
/// As a filter of a listing.
inline constexpr Property directionFilter =
    Properties::choice("direction"_L1, directions, "Filter by direction (omit for both)"_L1);
inline constexpr Property cycleTimeMs =
    Properties::integer("cycleTimeMs"_L1, 0, 65535, "Cyclic transmission time in ms, 0 = acyclic (optional)"_L1);
inline constexpr Property inhibitTimeMs =
    Properties::integer("inhibitTimeMs"_L1, 0, 65535, "Inhibit time in ms (optional)"_L1);
inline constexpr Property bitSize =
    Properties::integer("bitSize"_L1, 0, 65535, "Bit length within the frame (optional)"_L1);
inline constexpr Property bitPosition =
    Properties::integer("bitPosition"_L1, 0, 65535, "Bit offset within the frame (optional)"_L1);
inline constexpr Property varname = Properties::string("varname"_L1, "Mapped application variable name (optional)"_L1);

} // namespace Arguments
