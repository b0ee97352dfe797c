#pragma once

#include <QLatin1StringView>

/// The types that the columns of a project file are declared with.
namespace ProjectSchema::ColumnTypes {

inline constexpr QLatin1StringView integer{"integer"};
inline constexpr QLatin1StringView text{"text"};
inline constexpr QLatin1StringView blob{"blob"};

} // namespace ProjectSchema::ColumnTypes
