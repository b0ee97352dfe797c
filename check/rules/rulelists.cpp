#include "check/rules/rulelists.h"

namespace {

std::vector<LineRule> joined(std::initializer_list<std::span<const LineRule>> lists)
{
    std::vector<LineRule> rules;
    for (const std::span<const LineRule> list : lists)
        rules.insert(rules.end(), list.begin(), list.end());
    return rules;
}

} // namespace

const CheckRules &CheckRules::builtIn()
{
    using namespace RuleLists;
    static const std::vector<LineRule> canOpen = joined(
        {values(), lines(), communication(), objects(), pdoMappings(), pdos(), srdos(), mappingModes(), variables()});
    static const CheckRules rules{
        .common = project(), .canOpen = canOpen, .j1939 = RuleLists::j1939(), .rawCan = RuleLists::rawCan()};
    return rules;
}
