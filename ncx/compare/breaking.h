#pragma once

#include "ncx/compare/changes.h"

#include <span>

/// By which changes the other side of the bus loses something that it could rely on. Names, descriptions, defaults of
/// parameters, times and all that only concerns the software of the device break nothing.
struct BreakingRule
{
    using Test = bool (*)(const DeviceChange &);

    QLatin1StringView of;       ///< part, as `nameOf` and the table of docs/ncx.md have it; empty for any
    QLatin1StringView property; ///< what has changed, settings with patterns; empty for the part as a whole
    QLatin1StringView text;     ///< when it breaks
    Test test = nullptr;        ///< null for any change

    /// The first rule that a change falls under; null for none.
    static const BreakingRule *find(const DeviceChange &change);
    static std::span<const BreakingRule> all();
};
