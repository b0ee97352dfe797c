#include "texttools/settingstext.h"

#include "texttools/settingsvalue.h"

#include <QFile>
#include <QFileInfo>
#include <QIODevice>
#include <QSet>
#include <QStringEncoder>

#include <algorithm>
#include <array>
#include <charconv>
#include <utility>
#include <vector>

using namespace Qt::StringLiterals;

namespace SettingsText {
namespace {

constexpr qsizetype bufferSize = 1 << 16;
constexpr qint64 maxFileSize = 512LL << 20; ///< a text beyond this is no project
constexpr auto generalSection = "general"_L1;

bool isPlainKeyCharacter(char16_t ch)
{
    return (ch >= 'a' && ch <= 'z') || (ch >= 'A' && ch <= 'Z') || (ch >= '0' && ch <= '9') || ch == '_' || ch == '-' ||
           ch == '.';
}

/// The letter that stands behind a backslash for a character; 0 for one that has none.
char escapeLetter(char16_t ch)
{
    switch (ch) {
    case '\0':
        return '0';
    case '\a':
        return 'a';
    case '\b':
        return 'b';
    case '\f':
        return 'f';
    case '\n':
        return 'n';
    case '\r':
        return 'r';
    case '\t':
        return 't';
    case '\v':
        return 'v';
    case '"':
    case '\\':
        return static_cast<char>(ch);
    default:
        return 0;
    }
}

/// True for text that stands in a file as it is, but perhaps in quotes.
bool isPlainText(const QString &text)
{
    return !text.startsWith(u'@') && std::all_of(text.begin(), text.end(), [](QChar qch) {
        const char16_t ch = qch.unicode();
        return ch >= ' ' && ch < 0x7f && ch != '"' && ch != '\\';
    });
}

bool separates(QChar ch)
{
    return ch == u';' || ch == u',' || ch == u'=';
}

/// Copies a text that stands in a file exactly as it is, which nearly all do; false for any other.
bool appendVerbatim(QByteArray &out, const QString &text)
{
    const bool isVerbatim = !text.startsWith(u'@') && !text.startsWith(u' ') && !text.endsWith(u' ') &&
                            std::all_of(text.begin(), text.end(), [](QChar qch) {
                                const char16_t ch = qch.unicode();
                                return ch >= ' ' && ch < 0x7f && ch != '"' && ch != '\\' && !separates(qch);
                            });
    if (!isVerbatim)
        return false;
    const qsizetype start = out.size();
    out.resize(start + text.size());
    std::transform(text.begin(), text.end(), out.begin() + start, [](QChar ch) { return ch.toLatin1(); });
    return true;
}

/// Writes a text with its escapes; bytes are one character each and stay ASCII in the file.
void appendCharacters(QByteArray &out, const QString &text, bool asUtf8)
{
    QStringEncoder encoder(QStringEncoder::Utf8);
    bool digitWouldExtendEscape = false;
    for (const QChar qch : text) {
        const char16_t ch = qch.unicode();
        if (digitWouldExtendEscape && isHexDigit(ch)) {
            out += "\\x" + QByteArray::number(ch, 16);
            continue;
        }
        digitWouldExtendEscape = ch == 0;
        if (const char letter = escapeLetter(ch)) {
            out += '\\';
            out += letter;
        } else if (ch <= 0x1f || (ch >= 0x7f && !asUtf8)) {
            out += "\\x" + QByteArray::number(ch, 16);
            digitWouldExtendEscape = true;
        } else if (asUtf8) {
            const QByteArray encoded = encoder(QStringView(&qch, 1));
            out += encoded;
        } else {
            out += static_cast<char>(ch);
        }
    }
}

void appendEscaped(QByteArray &out, const QString &text, bool asUtf8)
{
    const qsizetype start = out.size();
    if (isPlainText(text))
        out += QLatin1StringView(text.toLatin1());
    else
        appendCharacters(out, text, asUtf8);
    const bool needsQuotes = std::any_of(text.begin(), text.end(), separates) ||
                             (out.size() > start && (out.at(start) == ' ' || out.back() == ' '));
    if (needsQuotes) {
        out.insert(start, '"');
        out += '"';
    }
}

/// A line of a file: a section head, or a key and its value.
struct Line
{
    qsizetype start = 0;
    qsizetype length = 0;
    qsizetype equals = -1; ///< place of the first "=" outside quotes, from the start of the line

    QByteArrayView of(QByteArrayView data) const { return data.sliced(start, length); }
};

/// Splits a file into lines. A line goes on over line breaks inside quotes and behind a backslash; a ";" outside quotes
/// begins a comment up to the end of the line.
class LineScanner
{
public:
    explicit LineScanner(QByteArrayView data)
        : data_(data)
    {
    }

    qsizetype position() const { return position_; }

    bool next(Line &line)
    {
        while (position_ < data_.size() && isSpace(data_.at(position_)))
            ++position_;
        line = {position_, 0, -1};
        bool inQuotes = false;
        while (position_ < data_.size() && (isOrdinary(data_.at(position_)) || step(line, inQuotes)))
            ++position_;
        line.length = position_ - line.start;
        return line.length > 0;
    }

private:
    static bool isSpace(char ch) { return ch == ' ' || ch == '\t' || ch == '\n' || ch == '\r'; }
    static bool isBreak(char ch) { return ch == '\n' || ch == '\r'; }
    static bool isOrdinary(char ch) { return ch > '=' || (ch > '"' && ch < ';') ? ch != '\\' : ch == ' '; }

    /// Looks at one character; false at the end of the line. Leaves the position at the last character consumed.
    bool step(Line &line, bool &inQuotes)
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

    void skipEscaped()
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

    void skipComment(Line &line)
    {
        while (position_ < data_.size() && !isBreak(data_.at(position_)))
            ++position_;
        while (position_ < data_.size() && isSpace(data_.at(position_)))
            ++position_;
        line.start = position_--;
    }

    QByteArrayView data_;
    qsizetype position_ = 0;
};

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

/// Most values are words and numbers, which need no parser.
QVariant valueOf(QByteArrayView data)
{
    const bool plain = std::all_of(data.begin(), data.end(), [](char ch) {
        return ch >= ' ' && ch < 0x7f && ch != '"' && ch != '\\' && ch != ',' && ch != '@';
    });
    const bool bounded = data.isEmpty() || (data.front() != ' ' && data.back() != ' ');
    return plain && bounded ? QVariant(QString::fromLatin1(data)) : ValueParser(data).value();
}

/// Order of two keys that hold nothing to unescape but the separator of groups.
bool isBelow(QByteArrayView left, QByteArrayView right)
{
    const auto [l, r] = std::mismatch(left.begin(), left.end(), right.begin(), right.end());
    if (l == left.end() || r == right.end())
        return r != right.end();
    const auto orderOf = [](char ch) { return ch == '\\' ? '/' : ch; };
    return orderOf(*l) < orderOf(*r);
}

bool needsNoUnescaping(QByteArrayView key)
{
    return std::all_of(key.begin(), key.end(),
                       [](char ch) { return ch == '\\' || isPlainKeyCharacter(static_cast<uchar>(ch)); });
}

QByteArrayView keyOf(QByteArrayView data, const Line &line)
{
    return line.of(data).first(line.equals).trimmed();
}

QByteArrayView rawValueOf(QByteArrayView data, const Line &line)
{
    return line.of(data).sliced(line.equals + 1);
}

/// The prefix of a section's keys, from its head.
QString prefixOf(QByteArrayView head)
{
    const qsizetype end = head.indexOf(']');
    const QByteArrayView name = (end < 0 ? head : head.first(end)).sliced(1).trimmed();
    const QLatin1StringView latin1(name);
    if (latin1.compare(generalSection, Qt::CaseInsensitive) == 0)
        return {};
    QString prefix;
    if (latin1.startsWith(u'%') && latin1.sliced(1).compare(generalSection, Qt::CaseInsensitive) == 0)
        prefix = latin1.sliced(1);
    else
        appendUnescapedKey(prefix, name);
    return prefix + u'/';
}

} // namespace

QByteArray escapedKey(QStringView key)
{
    QByteArray result;
    result.reserve(key.size());
    for (const QChar qch : key) {
        const char16_t ch = qch.unicode();
        if (ch == '/')
            result += '\\';
        else if (isPlainKeyCharacter(ch))
            result += static_cast<char>(ch);
        else if (ch <= 0xff)
            result += '%' + QByteArray::number(ch, 16).rightJustified(2, '0').toUpper();
        else
            result += "%U" + QByteArray::number(ch, 16).rightJustified(4, '0').toUpper();
    }
    return result;
}

void appendText(QByteArray &out, const QString &text)
{
    if (appendVerbatim(out, text))
        return;
    // Read back, "@" marks what is no text, and a zero character would end one.
    if (text.contains(QChar::Null))
        appendEscaped(out, "@String("_L1 + text + u')', true);
    else if (text.startsWith(u'@'))
        appendEscaped(out, u'@' + text, true);
    else
        appendEscaped(out, text, true);
}

void appendBytes(QByteArray &out, const QByteArray &bytes)
{
    appendEscaped(out, "@ByteArray("_L1 + QString::fromLatin1(bytes) + u')', false);
}

void Writer::beginKey(const QByteArray &escapedKey)
{
    if (!anySection_ || section_ != openSection_) {
        QByteArray name = SettingsText::escapedKey(section_);
        if (name.isEmpty())
            name = "General";
        else if (section_.compare(generalSection, Qt::CaseInsensitive) == 0)
            name = "%General";
        buffer_ += (anySection_ ? "\n[" : "[") + name + "]\n";
        openSection_ = section_;
        anySection_ = true;
    }
    buffer_ += row_;
    buffer_ += escapedKey;
    buffer_ += '=';
}

void Writer::endKey()
{
    buffer_ += '\n';
    if (buffer_.size() >= bufferSize)
        flush();
}

void Writer::writeText(const QByteArray &escapedKey, const QString &value)
{
    beginKey(escapedKey);
    appendText(buffer_, value);
    endKey();
}

void Writer::writeBytes(const QByteArray &escapedKey, const QByteArray &value)
{
    beginKey(escapedKey);
    appendBytes(buffer_, value);
    endKey();
}

void Writer::writeNumber(const QByteArray &escapedKey, qint64 value)
{
    beginKey(escapedKey);
    std::array<char, 24> digits{};
    const auto end = std::to_chars(digits.begin(), digits.end(), value).ptr;
    buffer_.append(digits.data(), end - digits.data());
    endKey();
}

bool Writer::flush()
{
    failed_ |= device_.write(buffer_) != buffer_.size();
    buffer_.resize(0);
    return !failed_;
}

bool Reader::open(const QString &path)
{
    const QFileInfo info(path);
    QFile file(path);
    // A pipe or device would never end.
    if (!info.isFile() || info.size() > maxFileSize || !file.open(QIODevice::ReadOnly))
        return false;
    setContent(file.readAll());
    return file.error() == QFileDevice::NoError;
}

void Reader::setContent(const QByteArray &content)
{
    constexpr QByteArrayView byteOrderMark = "\xef\xbb\xbf";
    content_ = content;
    sections_.clear();
    QByteArrayView data = content_;
    const qsizetype begin = data.startsWith(byteOrderMark) ? byteOrderMark.size() : 0;
    data = data.sliced(begin);

    QSet<QString> groups;
    QString prefix;
    QString key;
    Section section;
    QByteArrayView keyBefore;
    qsizetype sectionStart = 0;
    const auto endSection = [&](qsizetype end) {
        if (keyBefore.isNull())
            return;
        if (!prefix.isEmpty())
            groups.insert(prefix.left(prefix.indexOf(u'/')));
        Section &known = sections_[prefix];
        known.isOrdered = section.isOrdered && known.slices.isEmpty();
        known.hasGroups |= section.hasGroups;
        known.slices.append({begin + sectionStart, end - sectionStart});
    };
    LineScanner scanner(data);
    for (Line line; scanner.next(line);) {
        if (line.of(data).startsWith('[')) {
            endSection(line.start);
            prefix = prefixOf(line.of(data));
            sectionStart = scanner.position();
            section = {};
            keyBefore = {};
        } else if (line.equals >= 0) {
            const QByteArrayView rawKey = keyOf(data, line);
            section.isOrdered =
                section.isOrdered && needsNoUnescaping(rawKey) && (keyBefore.isNull() || isBelow(keyBefore, rawKey));
            keyBefore = rawKey;
            if (prefix.isEmpty()) {
                key.clear();
                appendUnescapedKey(key, rawKey);
                section.hasGroups |= key.contains(u'/');
                if (key.contains(u'/'))
                    groups.insert(key.left(key.indexOf(u'/')));
            }
        }
    }
    endSection(data.size());
    groups.remove(QString());
    groups_ = QStringList(groups.begin(), groups.end());
    groups_.sort();
}

void Reader::visitOrdered(const Section &section, const QString &prefix, const Visit &visit) const
{
    const auto &[start, length] = section.slices.first();
    const QByteArrayView data = QByteArrayView(content_).sliced(start, length);
    QString key;
    constexpr qsizetype usualLength = 256;
    key.reserve(usualLength);
    key += prefix;
    LineScanner scanner(data);
    for (Line line; scanner.next(line);) {
        if (line.equals < 0)
            continue;
        key.truncate(prefix.size());
        key += QLatin1StringView(keyOf(data, line));
        key.replace(u'\\', u'/');
        visit(key, valueOf(rawValueOf(data, line)));
    }
}

void Reader::forEachKey(const QString &group, const Visit &visit) const
{
    const QString groupPrefix = group + u'/';
    std::vector<std::pair<QString, const Section *>> sources;
    if (const auto rest = sections_.constFind(QString()); rest != sections_.constEnd() && rest->hasGroups)
        sources.emplace_back(rest.key(), &rest.value());
    for (auto it = sections_.lowerBound(groupPrefix); it != sections_.constEnd(); ++it) {
        if (!it.key().startsWith(groupPrefix))
            break;
        sources.emplace_back(it.key(), &it.value());
    }
    if (sources.size() == 1 && !sources.front().first.isEmpty() && sources.front().second->isOrdered) {
        visitOrdered(*sources.front().second, sources.front().first.sliced(groupPrefix.size()), visit);
        return;
    }

    struct Entry
    {
        QString key;
        QByteArrayView value;
    };
    std::vector<Entry> entries;
    for (const auto &[prefix, section] : sources) {
        for (const Slice &slice : section->slices) {
            const QByteArrayView data = QByteArrayView(content_).sliced(slice.start, slice.length);
            LineScanner scanner(data);
            for (Line line; scanner.next(line);) {
                if (line.equals < 0)
                    continue;
                QString key = prefix;
                appendUnescapedKey(key, keyOf(data, line));
                if (key.startsWith(groupPrefix))
                    entries.push_back({key.sliced(groupPrefix.size()), rawValueOf(data, line)});
            }
        }
    }
    std::stable_sort(entries.begin(), entries.end(),
                     [](const Entry &left, const Entry &right) { return left.key < right.key; });
    for (std::size_t i = 0; i < entries.size(); ++i) {
        if (i + 1 == entries.size() || entries[i].key != entries[i + 1].key)
            visit(entries[i].key, valueOf(entries[i].value));
    }
}

} // namespace SettingsText
