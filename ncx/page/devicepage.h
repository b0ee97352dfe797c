#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QList>

class ObjectDataBase;
class OpenedProject;

/// One page of HTML on which people look a device up: the device in the form "ncx-device" and what the check finds,
/// with the style and the scripts that show them. It loads nothing.
namespace DevicePage {

inline constexpr int version = 1;

/// The data of the page, in the form "ncx-page" (docs/ncx.md); `lines` are those of the device that it shows.
QJsonObject data(OpenedProject &project, const QList<quint8> &lines);
/// The page with its data.
QByteArray html(const QJsonObject &data);

} // namespace DevicePage
