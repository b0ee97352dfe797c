#pragma once

#include <QByteArrayView>
#include <QString>

#include <algorithm>
#include <array>
#include <memory>
#include <variant>

class QIODevice;

/// The digits of a number. They go into a file without a string of their own, and become one where somebody asks.
class Digits
{
public:
    static Digits decimal(quint64 value);
    /// Lower-case, zeros in front up to the number of digits.
    static Digits hexadecimal(quint64 value, int digits);
    /// The same behind "0x".
    static Digits prefixedHexadecimal(quint64 value, int digits);

    QLatin1StringView view() const { return {digits_.data() + begin_, digits_.data() + digits_.size()}; }
    operator QString() const { return view(); } // NOLINT(google-explicit-constructor)

private:
    void prepend(char digit) { digits_[--begin_] = digit; }

    std::array<char, 20> digits_; ///< from `begin_` on; room for 64 bits
    quint8 begin_ = 20;
};

/// What can be printed: a text, a text that is all ASCII, or a number.
using PrintedValue = std::variant<QString, QLatin1StringView, Digits>;

/// The same as an argument: it keeps nothing, so that it serves only to the end of the expression that made it.
class PrintedView
{
public:
    // NOLINTBEGIN(google-explicit-constructor)
    PrintedView(QStringView text)
        : data_(text.utf16())
        , size_(text.size())
    {
    }
    PrintedView(const QString &text)
        : PrintedView(QStringView(text))
    {
    }
    PrintedView(QLatin1StringView ascii)
        : data_(ascii.data())
        , size_(ascii.size())
        , isAscii_(true)
    {
    }
    PrintedView(const Digits &digits)
        : PrintedView(digits.view())
    {
    }
    PrintedView(const PrintedValue &value)
        : PrintedView(std::visit([](const auto &held) { return PrintedView(held); }, value))
    {
    }
    // NOLINTEND(google-explicit-constructor)

    bool isAscii() const { return isAscii_; }
    /// Of a view that is ASCII.
    QByteArrayView ascii() const { return {static_cast<const char *>(data_), size_}; }
    /// Of any other.
    QStringView text() const { return {static_cast<const char16_t *>(data_), size_}; }

private:
    const void *data_;
    qsizetype size_;
    bool isAscii_ = false;
};

/// Takes the text of a file piece by piece and hands it to a device in UTF-8, block by block. Every byte of every
/// output passes here, and nearly all of them are ASCII, so that these are narrowed in place.
class Utf8Sink
{
public:
    /// The device outlives the sink.
    explicit Utf8Sink(QIODevice *device);
    ~Utf8Sink() { flush(); }
    Q_DISABLE_COPY_MOVE(Utf8Sink)

    void put(QStringView text);
    void put(const PrintedView &value)
    {
        if (value.isAscii())
            putBytes(value.ascii());
        else
            put(value.text());
    }
    /// Bytes that are UTF-8 already.
    void putBytes(QByteArrayView bytes)
    {
        if (bytes.size() > capacity - size_) {
            putBeyond(bytes);
            return;
        }
        std::copy(bytes.begin(), bytes.end(), block_.get() + size_);
        size_ += bytes.size();
    }
    void flush();
    QIODevice *device() const { return device_; }

    Utf8Sink &operator<<(const QString &text)
    {
        put(QStringView(text));
        return *this;
    }
    Utf8Sink &operator<<(QLatin1StringView ascii)
    {
        putBytes({ascii.data(), ascii.size()});
        return *this;
    }
    Utf8Sink &operator<<(const Digits &digits) { return *this << digits.view(); }
    Utf8Sink &operator<<(char ascii)
    {
        if (size_ == capacity)
            flush();
        block_[static_cast<size_t>(size_++)] = ascii;
        return *this;
    }

private:
    static constexpr qsizetype capacity = 1 << 16;

    /// Bytes that the block has no room for.
    void putBeyond(QByteArrayView bytes);

    QIODevice *device_;
    std::unique_ptr<char[]> block_ = std::make_unique_for_overwrite<char[]>(capacity);
    qsizetype size_ = 0;
};
