#include "generate/base/utf8sink.h"

#include <QIODevice>
#include <QStringEncoder>

#include <cstring>

namespace {

/// Narrows a text that is all ASCII; false, with bytes of no meaning, for any other. In blocks of a known size, which
/// the compiler turns into a few instructions.
bool narrow(QStringView text, char *bytes)
{
    constexpr qsizetype blockSize = 8;
    const char16_t *units = text.utf16();
    qsizetype rest = text.size();
    char16_t all = 0;
    for (; rest >= blockSize; rest -= blockSize, units += blockSize, bytes += blockSize) {
        std::array<char16_t, blockSize> wide;
        std::array<char, blockSize> narrowed;
        std::memcpy(wide.data(), units, sizeof wide);
        for (size_t i = 0; i < wide.size(); ++i) {
            all |= wide[i];
            narrowed[i] = static_cast<char>(wide[i]);
        }
        std::memcpy(bytes, narrowed.data(), sizeof narrowed);
    }
    for (; rest > 0; --rest) {
        all |= *units;
        *bytes++ = static_cast<char>(*units++);
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
