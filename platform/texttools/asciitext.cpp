#include "texttools/asciitext.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>

namespace {

constexpr qsizetype wordSize = 8;

/// Some bytes, at most a word of them.
quint64 wordOf(const char *bytes, qsizetype size)
{
    quint64 word = 0;
    std::memcpy(&word, bytes, static_cast<size_t>(size));
    return word;
}

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

bool isHexDigit(char c)
{
    return isDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

} // namespace

bool AsciiText::isAscii(QByteArrayView bytes)
{
    const char *place = bytes.data();
    qsizetype rest = bytes.size();
    quint64 all = 0;
    for (; rest >= wordSize; rest -= wordSize, place += wordSize)
        all |= wordOf(place, wordSize);
    for (; rest > 0; --rest, ++place)
        all |= static_cast<uchar>(*place);
    return (all & 0x8080808080808080U) == 0;
}

QString AsciiText::shared(QByteArrayView ascii)
{
    constexpr qsizetype longest = 40;
    constexpr size_t slots = 512;
    constexpr quint64 spread = 0x9e3779b97f4a7c15U; // the golden ratio, as multiplicative hashes have it
    if (ascii.isEmpty())
        return QStringLiteral("");
    if (ascii.size() > longest)
        return QString::fromLatin1(ascii);
    static thread_local std::array<QString, slots> recent;
    auto hash = static_cast<quint64>(ascii.size());
    for (qsizetype i = 0; i < ascii.size(); i += wordSize) {
        hash = (hash ^ wordOf(ascii.data() + i, qMin(wordSize, ascii.size() - i))) * spread;
        hash ^= hash >> 32;
    }
    QString &slot = recent[hash % slots];
    if (slot != QLatin1StringView(ascii))
        slot = QString::fromLatin1(ascii);
    return slot;
}

bool AsciiText::isPlainDecimal(QByteArrayView text)
{
    if (text.startsWith('-'))
        text = text.sliced(1);
    return !text.isEmpty() && (text.size() == 1 || text.front() != '0') && std::ranges::all_of(text, isDigit);
}

bool AsciiText::isPlainHexadecimal(QByteArrayView text)
{
    constexpr qsizetype longest = 18;
    return text.size() > 2 && text.size() <= longest && text.startsWith("0x") &&
           std::ranges::all_of(text.sliced(2), isHexDigit);
}

std::optional<quint32> AsciiText::plainNumber(QByteArrayView text)
{
    constexpr qsizetype longestHexadecimal = 10;
    constexpr qsizetype longestDecimal = 9;
    const bool isHexadecimal = text.startsWith("0x");
    const bool isPlain = isHexadecimal ? text.size() <= longestHexadecimal && isPlainHexadecimal(text)
                                       : text.size() <= longestDecimal && isPlainDecimal(text);
    if (!isPlain || text.front() == '-')
        return std::nullopt;
    quint32 value = 0;
    std::from_chars(text.begin() + (isHexadecimal ? 2 : 0), text.end(), value, isHexadecimal ? 16 : 10);
    return value;
}
