#pragma once

#include <QtGlobal>

class ObjectDataBase;

/// Protocols of a line, by its type code. The codes are no bit masks: 3 is no type, and 5, 6 and 7 are the three pairs.
struct LineProtocols
{
    static LineProtocols ofType(int typeCode);
    /// Of a line of a project, by its setting `line%1type`.
    static LineProtocols ofLine(ObjectDataBase &store, quint8 line);

    bool canOpen = false;
    bool j1939 = false;
    bool rawCan = false;

    bool any() const { return canOpen || j1939 || rawCan; }
    bool combined() const { return int{canOpen} + int{j1939} + int{rawCan} > 1; }
};

/// The lines of a project that take part in generation (scratch lines do not), and those that count for its protocols.
inline constexpr quint8 firstScratchLine = 254;
inline constexpr quint8 firstLineWithoutProtocol = 240;
/// The stack's tables have room for the lines below this one.
inline constexpr quint8 firstLineBeyondStack = 32;
