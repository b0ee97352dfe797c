#pragma once

#include "check/frame/checkrule.h"

#include <span>

/// All rules, in the order of the check.
struct CheckRules
{
    std::span<const ProjectRule> common; ///< of the project as a whole
    std::span<const LineRule> canOpen;   ///< of a line, as the next two
    std::span<const LineRule> j1939;
    std::span<const LineRule> rawCan;

    /// The rules of this program (rules/rulelists.cpp).
    static const CheckRules &builtIn();
};
