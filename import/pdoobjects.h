#pragma once

#include <QtGlobal>

class ObjectDataBase;

/// The objects of PDOs that a device description announces without defining them (CiA 301).
namespace PDOObjects {

enum Direction : quint8
{
    Receive,
    Transmit
};

/// Number of PDOs of each direction that a device can have.
inline constexpr quint32 maxCount = 512;

/// Makes communication and mapping objects for the first `count` PDOs of a direction, as far as the line lacks them;
/// none if it has that many objects by now, wherever in their range they stand. A count beyond `maxCount` counts as
/// that.
[[nodiscard]] bool addMissing(ObjectDataBase &store, quint8 line, Direction direction, quint32 count);

} // namespace PDOObjects
