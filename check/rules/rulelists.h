#pragma once

#include "check/frame/checkrules.h"

// The rules by subject, each list in a file of its subject's name, from which `CheckRules::builtIn` is joined.

namespace RuleLists {

std::span<const ProjectRule> project();    // projectrules.cpp
std::span<const LineRule> values();        // objectrules.cpp
std::span<const LineRule> lines();         // linerules.cpp
std::span<const LineRule> communication(); // communicationrules.cpp
std::span<const LineRule> objects();       // objectrules.cpp
std::span<const LineRule> pdoMappings();   // mappingrules.cpp
std::span<const LineRule> pdos();          // pdorules.cpp
std::span<const LineRule> srdos();         // mappingrules.cpp
std::span<const LineRule> mappingModes();  // mappingrules.cpp
std::span<const LineRule> variables();     // objectrules.cpp
std::span<const LineRule> j1939();         // j1939rules.cpp
std::span<const LineRule> rawCan();        // rawcanrules.cpp

} // namespace RuleLists
