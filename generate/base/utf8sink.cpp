#include "generate/base/utf8sink.h"

#include <QIODevice>
#include <QStringEncoder>

#include <cstring>

namespace {

constexpr qsizetype narrowedAtOnce = 8;

/// Narrows so many characters, a number that the compiler knows and makes a few instructions of. Its result has the
/// bits that any of them has.
char16_t narrowBlock(const char16_t *units, char *bytes)
{
    std::array<char16_t, narrowedAtOnce> wide;
    std::array<char, narrowedAtOnce> narrowed;
    std::memcpy(wide.data(), units, sizeof wide);
    char16_t all = 0;
    for (size_t i = 0; i < wide.size(); ++i) {
        all |= wide[i];
        narrowed[i] = static_cast<char>(wide[i]);
    }
    std::memcpy(bytes, narrowed.data(), sizeof narrowed);
    return all;
}

/// Narrows a text that is all ASCII; false, with bytes of no meaning, for any other.
bool narrow(QStringView text, char *bytes)
{
    const char16_t *units = text.utf16();
    const qsizetype size = text.size();
    char16_t all = 0;
    if (size >= narrowedAtOnce) {
        const qsizetype last = size - narrowedAtOnce; // the last block may overlap the one before
        for (qsizetype i = 0; i < last; i += narrowedAtOnce)
            all |= narrowBlock(units + i, bytes + i);
        all |= narrowBlock(units + last, bytes + last);
    } else {
        for (qsizetype i = 0; i < size; ++i) {
            all |= units[i];
            bytes[i] = static_cast<char>(units[i]);
        }
    }
    return all < 0x80;
}

} // namespace

Digits Digits::decimal(quint64 value)
{
    Digits result;
    do {
        result.prepend(static_cast<char>('0' + value % 10));
        value /= 10;
    } while (value != 0);
    return result;
}

Digits Digits::hexadecimal(quint64 value, int digits)
{
    Digits result;
    do {
        result.prepend("0123456789abcdef"[value & 0xf]);
        value >>= 4;
    } while (value != 0 || static_cast<int>(result.view().size()) < digits);
    return result;
}

Digits Digits::prefixedHexadecimal(quint64 value, int digits)
{
    Digits result = hexadecimal(value, digits);
    result.prepend('x');
    result.prepend('0');
    return result;
}

Utf8Sink::Utf8Sink(QIODevice *device)
    : device_(device)
{
}

void Utf8Sink::put(QStringView text)
{
    if (text.size() > capacity - size_)
        flush();
    if (text.size() <= capacity && narrow(text, block_.get() + size_)) {
        size_ += text.size();
        return;
    }
    // Without a state: a half of a surrogate pair at the end of a text is no part of the next.
    QStringEncoder encoder(QStringEncoder::Utf8, QStringEncoder::Flag::Stateless);
    putBytes(QByteArray(encoder(text)));
}

void Utf8Sink::putBeyond(QByteArrayView bytes)
{
    flush();
    if (bytes.size() > capacity)
        device_->write(bytes.data(), bytes.size());
    else
        putBytes(bytes);
}

void Utf8Sink::flush()
{
    if (size_ > 0)
        device_->write(block_.get(), size_);
    size_ = 0;
}
