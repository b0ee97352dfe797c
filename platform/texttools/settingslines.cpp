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

constexpr std::array<bool, 256> plainKeyCharacters = [] {
    std::array<bool, 256> plain = {};
    for (size_t ch = 0; ch < plain.size(); ++ch)
        plain[ch] = isPlainKeyCharacter(static_cast<char16_t>(ch));
    return plain;
}();

bool isPlainInKey(char ch)
{
    return plainKeyCharacters[static_cast<uchar>(ch)];
}

} // namespace

bool LineScanner::next(Line &line)
{
    while (position_ < data_.size() && isSpace(data_.at(position_)))
        ++position_;
    if (nextPlain(line))
        return true;
    line = {position_, 0, -1};
    bool inQuotes = false;
    while (position_ < data_.size() && (isOrdinary(data_.at(position_)) || step(line, inQuotes)))
        ++position_;
    line.length = position_ - line.start;
    return line.length > 0;
}

/// Takes a key of plain characters and groups with a value in which nothing is quoted or escaped, as nearly all are;
/// false, without a step, for another line.
bool LineScanner::nextPlain(Line &line)
{
    const char *const start = data_.data() + position_;
    const char *const end = data_.data() + data_.size();
    const char *equals = start;
    while (equals != end &&
           (isPlainInKey(*equals) || (*equals == '\\' && equals + 1 != end && isPlainInKey(equals[1]))))
        ++equals;
    if (equals == end || equals == start || *equals != '=')
        return false;
    const void *feed = std::memchr(equals, '\n', static_cast<size_t>(end - equals));
    const char *const last = feed ? static_cast<const char *>(feed) : end;
    bool isPlain = true;
    for (const char *place = equals; place != last; ++place)
        isPlain &= *place != '"' && *place != '\\' && *place != ';' && *place != '\r';
    if (!isPlain)
        return false;
    line = {position_, last - start, equals - start};
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
    return std::ranges::all_of(key, [](char ch) { return ch == '\\' || isPlainInKey(ch); });
}

bool isBelow(QByteArrayView left, QByteArrayView right)
{
    const auto [l, r] = std::mismatch(left.begin(), left.end(), right.begin(), right.end());
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
