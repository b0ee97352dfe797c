#pragma once

#include <QLatin1StringView>

#include <optional>

/// Objects that a service of the stack has to do with (CiA 301, 302, 304, EN 50325-5): what stands in their rows of
/// od_description, and where their values are kept.
namespace ServiceObjects {

/// The end of the specifier, "_SYNC"; empty for a subindex that no service serves.
QLatin1StringView specifier(quint16 index, quint8 subindex);
/// The number of the service or the index that the value column has; none where it has the position of a variable.
std::optional<quint16> value(quint16 index, quint8 subindex);
/// The stack keeps the value by itself, so that there is no array element for it.
bool keepsValue(quint16 index, quint8 subindex);

} // namespace ServiceObjects
