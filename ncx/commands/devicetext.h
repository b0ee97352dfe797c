#pragma once

#include "ncx/device/devicemodel.h"

#include <QStringList>

/// A device and its parts as a terminal shows them, line by line. A width of 0 cuts nothing.
namespace DeviceText {

QStringList glance(DeviceLine &line, int width);
/// The dictionary as a table.
QStringList dictionary(DeviceLine &line, int width);
/// An object with its subindices, or with one of them; of a PDO also its frame.
QStringList object(DeviceLine &line, const CheckedObject &object, std::optional<quint8> subindex, int width);
QStringList pgn(const CheckedPGN &pgn, int width);
QStringList canId(const CheckedCanId &canId, int width);

} // namespace DeviceText
