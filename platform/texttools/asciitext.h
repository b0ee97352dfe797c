#pragma once

#include <QByteArrayView>
#include <QString>

#include <algorithm>
#include <optional>

/// Bytes that are ASCII, as nearly all of a project is.
namespace AsciiText {

/// True if there is no byte beyond 0x7f.
bool isAscii(QByteArrayView bytes);
/// The text of such bytes. Access types, limits and the like repeat: of a short text that this thread has made a little
/// before the memory is shared.
QString shared(QByteArrayView ascii);

/// What identifiers are made of: a letter, a digit or an underscore.
constexpr bool isWordCharacter(QChar c)
{
    return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || (c >= u'0' && c <= u'9') || c == u'_';
}
/// A word of these characters that does not begin with a digit, as C and DBC files have them.
inline bool isIdentifier(QStringView text)
{
    const bool begins = !text.isEmpty() && (text.front() < u'0' || text.front() > u'9');
    return begins && std::all_of(text.begin(), text.end(), isWordCharacter);
}

/// Decimal digits without padding, perhaps behind a "-".
bool isPlainDecimal(QByteArrayView text);
/// Up to 16 hexadecimal digits behind "0x".
bool isPlainHexadecimal(QByteArrayView text);
/// A number of 32 bits in one of these two forms, which every notation of numbers reads alike and nearly all numbers
/// have; nothing for another text.
std::optional<quint32> plainNumber(QByteArrayView text);

} // namespace AsciiText
