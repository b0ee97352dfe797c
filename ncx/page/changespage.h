#pragma once

#include "ncx/compare/changes.h"

/// One page of HTML that shows what differs between two devices, with the frames of both. It loads nothing.
namespace ChangesPage {

inline constexpr int version = 1;

/// The data of the page, in the form "ncx-changes-page" (docs/ncx.md): the changes that are told, which `diff` has in
/// the form "ncx-diff", and the messages that they are of.
QJsonObject data(const DeviceChanges &changes, const QList<DeviceChange> &told, const QJsonObject &diff);
/// The page with its data.
QByteArray html(const QJsonObject &data);

} // namespace ChangesPage
