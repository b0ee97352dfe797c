#include "nodedict/pdomapping.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

struct Words
{
    QLatin1StringView xdd;
    QLatin1StringView csv;
};

/// By the stored number.
constexpr Words words[] = {
    {"no"_L1, "forbidden"_L1}, {"optional"_L1, "allowed"_L1}, {"default"_L1, "default"_L1},
    {"RPDO"_L1, "rpdo"_L1},    {"TPDO"_L1, "tpdo"_L1},
};

const Words &wordsOf(uint value)
{
    return words[value < std::size(words) ? value : uint{PDOMapping::Forbidden}];
}

} // namespace

QString PDOMapping::getXDDStringValue() const
{
    return wordsOf(value_).xdd;
}

QString PDOMapping::getCSVStringValue() const
{
    return wordsOf(value_).csv;
}

PDOMapping PDOMapping::fromCSVString(const QString &text)
{
    const QString word = text.trimmed().toLower();
    const auto row = std::ranges::find_if(words, [&](const Words &entry) { return word == entry.csv; });
    return row == std::end(words) ? PDOMapping(Forbidden) : PDOMapping(static_cast<uint>(row - std::begin(words)));
}
