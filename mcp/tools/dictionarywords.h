#pragma once

#include "nodedict/cohelper.h"

#include <QLatin1StringView>
#include <QString>

#include <algorithm>
#include <optional>
#include <span>

/// The words that tools have for the codes of objects and subindices.
namespace DictionaryWords {

using Qt::StringLiterals::operator""_L1;

inline constexpr QLatin1StringView objectTypes[]{"Variable"_L1, "Array"_L1, "Record"_L1, "Domain"_L1};
inline constexpr CANopen::ObjectCode objectCodes[]{CANopen::Var, CANopen::Array, CANopen::Record, CANopen::Domain};
/// By CANopen::ObjectCategory.
inline constexpr QLatin1StringView categories[]{"Mandatory"_L1, "Optional"_L1, "Conditional"_L1};
/// By PDOMapping.
inline constexpr QLatin1StringView pdoMappings[]{"forbidden"_L1, "allowed"_L1, "default"_L1, "rpdo"_L1, "tpdo"_L1};
inline constexpr QLatin1StringView accessTypes[]{"const"_L1, "ro"_L1, "rw"_L1, "wo"_L1, "rww"_L1, "rwr"_L1};
/// By CANopen::Implementation.
inline constexpr QLatin1StringView implementations[]{"managedVariable"_L1, "managedConst"_L1, "variable"_L1,
                                                     "virtual"_L1};

/// The place of a word in its list; nothing for another word.
inline std::optional<quint32> placeOf(std::span<const QLatin1StringView> words, const QString &word)
{
    const auto found = std::ranges::find_if(words, [&](QLatin1StringView known) { return known == word; });
    if (found == words.end())
        return {};
    return static_cast<quint32>(found - words.begin());
}

} // namespace DictionaryWords
