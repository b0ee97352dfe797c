#include "texttools/settingslines.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace SettingsText {
namespace {

bool isSpace(char ch)
{
    return ch == ' ' || ch == '\t' || ch == '\n' || ch == '\r';
}

bool isBreak(char ch)
{
    return ch == '\n' || ch == '\r';
}

/// True for a character that means nothing to the scanner, wherever it stands.
bool isOrdinary(char ch)
{
    return ch > '=' || (ch > '"' && ch < ';') ? ch != '\\' : ch == ' ';
}

/// Where a character means nothing but itself; in a key that may be a separator, too.
enum Place : quint8
{
    InKey = 1,
    InValue = 2
};

constexpr std::array<quint8, 256> plainPlaces = [] {
    std::array<quint8, 256> places = {};
    for (size_t i = 0; i < places.size(); ++i) {
        const auto ch = static_cast<char16_t>(i);
        const bool isPlainInKey = isPlainKeyCharacter(ch) || ch == '\\';
        const bool isPlainInValue = ch != '"' && ch != '\\' && ch != ';' && ch != '\r';
        places[i] = static_cast<quint8>((isPlainInKey ? InKey : 0) | (isPlainInValue ? InValue : 0));
    }
    return places;
}();

bool isPlain(QByteArrayView text, Place place)
{
    quint8 places = place;
    for (const char ch : text)
        places &= plainPlaces[static_cast<uchar>(ch)];
    return places != 0;
}

/// A backslash at the end would hide what is behind it.
bool isPlainKey(QByteArrayView key)
{
    return !key.isEmpty() && !key.endsWith('\\') && isPlain(key, InKey);
}

bool isPlainValue(QByteArrayView value)
{
    const bool isQuoted = value.size() > 1 && value.startsWith('"') && value.endsWith('"');
    return isPlain(isQuoted ? value.sliced(1, value.size() - 2) : value, InValue);
}

} // namespace

bool LineScanner::next(Line &line)
{
    while (position_ < data_.size() && isSpace(data_.at(position_)))
        ++position_;
    if (nextPlain(line))
        return true;
    line = {position_, 0, -1, false};
    bool inQuotes = false;
    while (position_ < data_.size() && (isOrdinary(data_.at(position_)) || step(line, inQuotes)))
        ++position_;
    line.length = position_ - line.start;
    return line.length > 0;
}

/// Takes a key of plain characters and groups with a value in which nothing but all of it is quoted and nothing is
/// escaped, as nearly all are; false, without a step, for another line.
bool LineScanner::nextPlain(Line &line)
{
    // A longer line is not looked through in search of its end, as that of one without an end would be for each of its
    // parts.
    constexpr qsizetype longest = 4096;
    const char *const start = data_.data() + position_;
    const qsizetype size = std::min(data_.size() - position_, longest);
    if (size == 0 || *start == ';')
        return false;
    const void *const feed = std::memchr(start, '\n', static_cast<size_t>(size));
    if (!feed && size == longest)
        return false;
    QByteArrayView whole(start, feed ? static_cast<const char *>(feed) - start : size);
    if (whole.endsWith('\r'))
        whole.chop(1);
    const void *const sign = std::memchr(start, '=', static_cast<size_t>(whole.size()));
    if (!sign)
        return false;
    const qsizetype equals = static_cast<const char *>(sign) - start;
    if (!arePlain_ && !(isPlainKey(whole.first(equals)) && isPlainValue(whole.sliced(equals + 1))))
        return false;
    line = {position_, whole.size(), equals, true};
    position_ += line.length;
    return true;
}

/// Looks at one character; false at the end of the line. Leaves the position at the last character consumed.
bool LineScanner::step(Line &line, bool &inQuotes)
{
    switch (data_.at(position_)) {
    case '=':
        if (!inQuotes && line.equals < 0)
            line.equals = position_ - line.start;
        return true;
    case '\n':
    case '\r':
        if (position_ != line.start)
            return inQuotes;
        ++line.start;
        return true;
    case '\\':
        skipEscaped();
        return true;
    case '"':
        inQuotes = !inQuotes;
        return true;
    case ';':
        if (position_ != line.start)
            return inQuotes;
        skipComment(line);
        return true;
    default:
        return true;
    }
}

void LineScanner::skipEscaped()
{
    if (position_ + 1 >= data_.size())
        return;
    const char first = data_.at(++position_);
    if (position_ + 1 < data_.size()) {
        const char second = data_.at(position_ + 1);
        if (isBreak(first) && isBreak(second) && first != second)
            ++position_;
    }
}

void LineScanner::skipComment(Line &line)
{
    while (position_ < data_.size() && !isBreak(data_.at(position_)))
        ++position_;
    while (position_ < data_.size() && isSpace(data_.at(position_)))
        ++position_;
    line.start = position_--;
}

bool needsNoUnescaping(QByteArrayView key)
{
    return isPlain(key, InKey);
}

bool isBelow(QByteArrayView left, QByteArrayView right)
{
    // Keys that follow each other mostly begin alike.
    constexpr qsizetype block = 8;
    qsizetype same = 0;
    while (same + block <= std::min(left.size(), right.size()) &&
           std::memcmp(left.data() + same, right.data() + same, block) == 0)
        same += block;
    const auto [l, r] = std::mismatch(left.begin() + same, left.end(), right.begin() + same, right.end());
    if (l == left.end() || r == right.end())
        return r != right.end();
    const auto orderOf = [](char ch) { return ch == '\\' ? '/' : ch; };
    return orderOf(*l) < orderOf(*r);
}

void appendUnescapedKey(QString &result, QByteArrayView key)
{
    const QString decoded = QString::fromUtf8(key);
    qsizetype i = 0;
    while (i < decoded.size()) {
        const QChar ch = decoded.at(i++);
        if (ch == u'\\') {
            result += u'/';
            continue;
        }
        if (ch != u'%' || i == decoded.size()) {
            result += ch;
            continue;
        }
        const bool wide = decoded.at(i) == u'U';
        const qsizetype first = wide ? i + 1 : i;
        const qsizetype digits = wide ? 4 : 2;
        bool ok = false;
        ushort code = 0;
        if (first + digits <= decoded.size())
            code = QStringView(decoded).sliced(first, digits).toUShort(&ok, 16);
        if (ok) {
            result += QChar(code);
            i = first + digits;
        } else {
            result += u'%';
        }
    }
}

} // namespace SettingsText
