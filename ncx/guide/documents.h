#pragma once

#include <QJsonArray>
#include <QString>

#include <optional>

/// The documents under docs/ that an assistant needs, compiled in, and the rules of the check one by one.
namespace Documents {

/// The descriptors that clients list.
QJsonArray resources();
QJsonArray templates();
/// The text of the resource with that URI, Markdown; nothing for another URI.
std::optional<QString> text(const QString &uri);

} // namespace Documents
