#pragma once

#include <QLatin1StringView>
#include <QStringView>

#include <concepts>
#include <limits>
#include <optional>

/// Numbers in texts, a reader for each notation. Each answers none for a text that is no such number and for a number
/// that the type cannot hold. Blanks around a number do not count.
namespace NumberText {

/// In a base from 2 to 36, or for 0 in that of its prefix.
std::optional<quint64> inBase(QStringView text, int base);
/// The same for a number that may have a sign.
std::optional<qint64> signedInBase(QStringView text, int base);

template <std::unsigned_integral Number>
std::optional<Number> fitting(std::optional<quint64> number)
{
    const bool fits = number && *number <= std::numeric_limits<Number>::max();
    return fits ? std::optional(static_cast<Number>(*number)) : std::nullopt;
}

/// Decimal, "0x" hexadecimal, or octal with a leading 0, as the prefix says.
template <std::unsigned_integral Number = quint32>
std::optional<Number> byPrefix(QStringView text)
{
    return fitting<Number>(inBase(text, 0));
}

/// "-26", "-0x1a" or "-032"
inline std::optional<qint64> signedByPrefix(QStringView text)
{
    return signedInBase(text, 0);
}

/// "26"
template <std::unsigned_integral Number = quint32>
std::optional<Number> decimal(QStringView text)
{
    return fitting<Number>(inBase(text, 10));
}

/// "1a" or "0x1a"
template <std::unsigned_integral Number = quint32>
std::optional<Number> hexadecimal(QStringView text)
{
    return fitting<Number>(inBase(text, 16));
}

/// "26" or "0x1a"; a leading 0 has no meaning.
template <std::unsigned_integral Number = quint32>
std::optional<Number> decimalOrHexadecimal(QStringView text)
{
    const QStringView digits = text.trimmed();
    const bool isHexadecimal = digits.startsWith(QLatin1StringView("0x"), Qt::CaseInsensitive);
    return fitting<Number>(inBase(digits, isHexadecimal ? 16 : 10));
}

/// As device descriptions write it (CiA 306): "26", "0x1a" or octal "032"; "09" is 9.
template <std::unsigned_integral Number = quint32>
std::optional<Number> ofDescription(QStringView text)
{
    const auto number = inBase(text, 0);
    return fitting<Number>(number ? number : inBase(text, 10));
}

} // namespace NumberText
