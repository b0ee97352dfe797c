#include "texttools/settingsvalue.h"

#include <algorithm>
#include <array>
#include <utility>

using namespace Qt::StringLiterals;

namespace SettingsText {
namespace {

QVariant variantOf(const QString &text)
{
    constexpr auto bytesMark = "@ByteArray("_L1;
    constexpr auto stringMark = "@String("_L1;
    if (!text.startsWith(u'@'))
        return text;
    if (text.endsWith(u')')) {
        if (text.startsWith(bytesMark))
            return QStringView(text).sliced(bytesMark.size()).chopped(1).toLatin1();
        if (text.startsWith(stringMark))
            return QStringView(text).sliced(stringMark.size()).chopped(1).toString();
        if (text == "@Invalid()"_L1)
            return {};
    }
    return text.startsWith("@@"_L1) ? text.mid(1) : text;
}

} // namespace

ValueParser::ValueParser(QByteArrayView data)
    : data_(data)
{
    skipSpaces();
}

QVariant ValueParser::value()
{
    while (position_ < data_.size())
        step();
    takeTrailingSpaces();
    if (!isList_)
        return variantOf(text_);
    return QString(list_ + variantOf(text_).toString());
}

void ValueParser::step()
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

void ValueParser::skipSpaces()
{
    while (position_ < data_.size() && (data_.at(position_) == ' ' || data_.at(position_) == '\t'))
        ++position_;
    chopLimit_ = text_.size();
}

/// Cuts the blanks at the end of a part, but for those in quotes and those that an escape wrote.
QString ValueParser::takeTrailingSpaces()
{
    qsizetype size = text_.size();
    while (!partWasQuoted_ && size > chopLimit_ && (text_.at(size - 1) == u' ' || text_.at(size - 1) == u'\t'))
        --size;
    QString spaces = text_.sliced(size);
    text_.truncate(size);
    return spaces;
}

/// A comma outside quotes: in a project it is a part of the text, and so are the blanks around it.
void ValueParser::endPart()
{
    const QString spaces = takeTrailingSpaces();
    isList_ = true;
    list_ += variantOf(text_).toString() + spaces + u',';
    text_.clear();
    partWasQuoted_ = false;
    const qsizetype start = position_;
    skipSpaces();
    list_ += QLatin1StringView(data_.sliced(start, position_ - start));
}

void ValueParser::readPlain()
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

void ValueParser::readEscape()
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

void ValueParser::readNumber(uint code, uint base)
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

} // namespace SettingsText
