#pragma once

#include <QByteArray>
#include <QList>

class ObjectDataBase;
class OpenedProject;

/// One page of HTML on which people look a device up: the device in the form "ncx-device" and what the check finds,
/// with the style and the scripts that show them. It loads nothing.
namespace DevicePage {

inline constexpr int version = 1;

/// The page with its data, in the form "ncx-page" (docs/ncx.md); `lines` are those of the device that it shows.
QByteArray html(OpenedProject &project, const QList<quint8> &lines);

} // namespace DevicePage
