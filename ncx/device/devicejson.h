#pragma once

#include "ncx/device/devicemodel.h"

#include <QJsonArray>
#include <QJsonObject>

class ObjectDataBase;

/// A device and its parts in the form "ncx-device" (docs/ncx.md). Numbers that a project keeps as text stay text.
namespace DeviceJson {

inline constexpr int version = 1;

QJsonObject ofDevice(ObjectDataBase &store, const QString &file, const QList<quint8> &lines);
/// The whole form around lines, or what was asked for of them.
QJsonObject wrap(const QString &file, const QJsonArray &lines);
QJsonObject ofLine(DeviceLine &line);
QJsonObject ofObject(const CheckedObject &object);
QJsonObject ofSubindex(const CheckedSubindex &sub);
QJsonObject ofPdo(const Pdo &pdo);
QJsonObject ofPgn(const CheckedPGN &pgn);
QJsonObject ofCanId(const CheckedCanId &canId);
QJsonObject ofFrame(const Frame &frame);

} // namespace DeviceJson
