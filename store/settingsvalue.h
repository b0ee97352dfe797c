#pragma once

#include <QByteArrayView>
#include <QString>
#include <QStringDecoder>
#include <QVariant>

#include <algorithm>
#include <array>

namespace SettingsText {

constexpr bool isHexDigit(char16_t ch)
{
    return (ch >= '0' && ch <= '9') || (ch >= 'a' && ch <= 'f') || (ch >= 'A' && ch <= 'F');
}

/// Reads the value of a key in a settings file: text, or a list where a comma stands outside quotes.
class ValueParser
{
public:
    explicit ValueParser(QByteArrayView data)
        : data_(data)
    {
        skipSpaces();
    }

    QVariant value()
    {
        while (position_ < data_.size())
            step();
        if (!partWasQuoted_)
            chopTrailingSpaces();
        if (!isList_)
            return variantOf(text_);
        return QString(list_ + variantOf(text_).toString());
    }

private:
    static QVariant variantOf(const QString &text)
    {
        constexpr auto bytesMark = QLatin1StringView("@ByteArray(");
        constexpr auto stringMark = QLatin1StringView("@String(");
        if (!text.startsWith(u'@'))
            return text;
        if (text.endsWith(u')')) {
            if (text.startsWith(bytesMark))
                return QStringView(text).sliced(bytesMark.size()).chopped(1).toLatin1();
            if (text.startsWith(stringMark))
                return QStringView(text).sliced(stringMark.size()).chopped(1).toString();
            if (text == QLatin1StringView("@Invalid()"))
                return {};
        }
        return text.startsWith(QLatin1StringView("@@")) ? text.mid(1) : text;
    }

    void step()
    {
        const char ch = data_.at(position_);
        if (ch == '\\') {
            ++position_;
            readEscape();
            // What an escape wrote is no blank to be cut.
            chopLimit_ = text_.size();
        } else if (ch == '"') {
            ++position_;
            partWasQuoted_ = true;
            inQuotes_ = !inQuotes_;
            if (!inQuotes_)
                skipSpaces();
        } else if (ch == ',' && !inQuotes_) {
            ++position_;
            endPart();
        } else {
            readPlain();
        }
    }

    void skipSpaces()
    {
        while (position_ < data_.size() && (data_.at(position_) == ' ' || data_.at(position_) == '\t'))
            ++position_;
        chopLimit_ = text_.size();
    }

    void chopTrailingSpaces()
    {
        qsizetype size = text_.size();
        while (size > chopLimit_ && (text_.at(size - 1) == u' ' || text_.at(size - 1) == u'\t'))
            --size;
        text_.truncate(size);
    }

    void endPart()
    {
        if (!partWasQuoted_)
            chopTrailingSpaces();
        isList_ = true;
        list_ += variantOf(text_).toString() + u',';
        text_.clear();
        partWasQuoted_ = false;
        skipSpaces();
    }

    void readPlain()
    {
        const qsizetype start = position_++;
        while (position_ < data_.size()) {
            const char ch = data_.at(position_);
            if (ch == '\\' || ch == '"' || ch == ',')
                break;
            ++position_;
        }
        const QString decoded = fromUtf8_(data_.sliced(start, position_ - start));
        text_ += decoded;
    }

    void readEscape()
    {
        static constexpr std::array<std::pair<char, char16_t>, 11> letters = {{{'a', u'\a'},
                                                                               {'b', u'\b'},
                                                                               {'f', u'\f'},
                                                                               {'n', u'\n'},
                                                                               {'r', u'\r'},
                                                                               {'t', u'\t'},
                                                                               {'v', u'\v'},
                                                                               {'"', u'"'},
                                                                               {'?', u'?'},
                                                                               {'\'', u'\''},
                                                                               {'\\', u'\\'}}};
        if (position_ >= data_.size())
            return;
        const char ch = data_.at(position_++);
        const auto *const letter =
            std::find_if(letters.begin(), letters.end(), [ch](const auto &entry) { return entry.first == ch; });
        if (letter != letters.end()) {
            text_ += QChar(letter->second);
        } else if (ch == 'x') {
            if (position_ < data_.size() && isHexDigit(static_cast<uchar>(data_.at(position_))))
                readNumber(0, 16);
        } else if (ch >= '0' && ch <= '7') {
            readNumber(static_cast<uint>(ch - '0'), 8);
        } else if ((ch == '\n' || ch == '\r') && position_ < data_.size()) {
            const char second = data_.at(position_);
            if ((second == '\n' || second == '\r') && second != ch)
                ++position_;
        }
    }

    void readNumber(uint code, uint base)
    {
        while (position_ < data_.size()) {
            const char ch = data_.at(position_);
            const bool isDigit = base == 16 ? isHexDigit(static_cast<uchar>(ch)) : ch >= '0' && ch <= '7';
            if (!isDigit)
                break;
            const uint digit = ch <= '9' ? static_cast<uint>(ch - '0') : static_cast<uint>((ch | 0x20) - 'a') + 10;
            code = (code * base + digit) & 0xffff;
            ++position_;
        }
        text_ += QChar(static_cast<char16_t>(code));
    }

    QByteArrayView data_;
    qsizetype position_ = 0;
    qsizetype chopLimit_ = 0;
    bool inQuotes_ = false;
    bool partWasQuoted_ = false;
    bool isList_ = false;
    QString text_;
    QString list_; ///< the parts so far, each with its comma
    QStringDecoder fromUtf8_{QStringDecoder::Utf8};
};

} // namespace SettingsText
