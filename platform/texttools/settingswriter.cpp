#include "texttools/settingslines.h"
#include "texttools/settingstext.h"
#include "texttools/settingsvalue.h"

#include <QIODevice>
#include <QStringEncoder>

#include <algorithm>
#include <array>
#include <charconv>

using namespace Qt::StringLiterals;

namespace SettingsText {
namespace {

constexpr std::size_t bufferSize = 1 << 16;

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

/// What a byte of a text asks for, as bits of one number.
enum Need : quint8
{
    Nothing = 0,
    TextQuotes = 1,
    Escape = 2
};

constexpr std::array<quint8, 256> needs = [] {
    std::array<quint8, 256> table = {};
    for (std::size_t byte = 0; byte < table.size(); ++byte) {
        const bool isPlain = byte >= ' ' && byte < 0x7f && byte != '"' && byte != '\\';
        const bool separates = byte == ';' || byte == ',' || byte == '=';
        table[byte] = isPlain ? separates ? TextQuotes : Nothing : Escape;
    }
    return table;
}();

/// Copies a text that needs no escapes, as nearly none does; false for any other.
bool appendPlain(std::string &out, QByteArrayView utf8)
{
    if (utf8.startsWith('@'))
        return false;
    uint need = utf8.startsWith(' ') || utf8.endsWith(' ') ? TextQuotes : Nothing;
    for (const char byte : utf8)
        need |= needs[static_cast<uchar>(byte)];
    if (need & Escape)
        return false;
    if (need & TextQuotes)
        out += '"';
    out.append(utf8.begin(), utf8.end());
    if (need & TextQuotes)
        out += '"';
    return true;
}

/// The same for a text. One that is no valid UTF-16 needs the encoder's way with it.
bool appendPlain(std::string &out, const QString &text)
{
    const bool isAscii = std::ranges::all_of(text, [](QChar ch) { return ch.unicode() < 0x80; });
    return isAscii && appendPlain(out, QByteArrayView(text.toLatin1()));
}

void appendHexadecimal(std::string &out, char16_t ch)
{
    std::array<char, 4> digits{};
    out += "\\x";
    out.append(digits.begin(), std::to_chars(digits.begin(), digits.end(), ch, 16).ptr);
}

/// Writes a text with its escapes; bytes are one character each and stay ASCII in the file.
void appendCharacters(std::string &out, const QString &text, bool asUtf8)
{
    QStringEncoder encoder(QStringEncoder::Utf8);
    bool digitWouldExtendEscape = false;
    for (const QChar qch : text) {
        const char16_t ch = qch.unicode();
        if (digitWouldExtendEscape && isHexDigit(ch)) {
            appendHexadecimal(out, ch);
            continue;
        }
        digitWouldExtendEscape = ch == 0;
        if (const char letter = escapeLetter(ch)) {
            out += '\\';
            out += letter;
        } else if (ch <= 0x1f || (ch >= 0x7f && !asUtf8)) {
            appendHexadecimal(out, ch);
            digitWouldExtendEscape = true;
        } else if (asUtf8) {
            const QByteArray encoded = encoder(QStringView(&qch, 1));
            out.append(encoded.begin(), encoded.end());
        } else {
            out += static_cast<char>(ch);
        }
    }
}

void appendEscaped(std::string &out, const QString &text, bool asUtf8)
{
    const std::size_t start = out.size();
    appendCharacters(out, text, asUtf8);
    const bool needsQuotes =
        std::ranges::any_of(text, [](QChar ch) { return ch == u';' || ch == u',' || ch == u'='; }) ||
        (out.size() > start && (out.at(start) == ' ' || out.back() == ' '));
    if (needsQuotes) {
        out.insert(start, 1, '"');
        out += '"';
    }
}

void appendText(std::string &out, const QString &text)
{
    // Read back, "@" marks what is no text, and a zero character would end one.
    if (text.contains(QChar::Null))
        appendEscaped(out, "@String("_L1 + text + u')', true);
    else if (text.startsWith(u'@'))
        appendEscaped(out, u'@' + text, true);
    else
        appendEscaped(out, text, true);
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

QByteArray valueText(const QString &text)
{
    std::string out;
    if (!appendPlain(out, text))
        appendText(out, text);
    return QByteArray::fromStdString(out);
}

void Writer::setSection(const QString &name)
{
    section_ = name;
    isOpen_ = false;
}

void Writer::openSection()
{
    QByteArray name = escapedKey(section_);
    if (name.isEmpty())
        name = "General";
    else if (section_.compare("general"_L1, Qt::CaseInsensitive) == 0)
        name = "%General";
    buffer_ += anySection_ ? "\n[" : "[";
    buffer_.append(name.begin(), name.end());
    buffer_ += "]\n";
    isOpen_ = true;
    anySection_ = true;
}

void Writer::beginKey(QByteArrayView escapedKey)
{
    if (!isOpen_)
        openSection();
    buffer_.append(row_.begin(), row_.end());
    buffer_.append(escapedKey.begin(), escapedKey.end());
    buffer_ += '=';
}

void Writer::endKey()
{
    buffer_ += '\n';
    if (buffer_.size() >= bufferSize)
        flush();
}

void Writer::writeText(QByteArrayView escapedKey, const QString &value)
{
    beginKey(escapedKey);
    if (!appendPlain(buffer_, value))
        appendText(buffer_, value);
    endKey();
}

void Writer::writeUtf8(QByteArrayView escapedKey, QByteArrayView value)
{
    beginKey(escapedKey);
    if (!appendPlain(buffer_, value))
        appendText(buffer_, QString::fromUtf8(value));
    endKey();
}

void Writer::writeBytes(QByteArrayView escapedKey, const QByteArray &value)
{
    beginKey(escapedKey);
    appendEscaped(buffer_, "@ByteArray("_L1 + QString::fromLatin1(value) + u')', false);
    endKey();
}

void Writer::writeNumber(QByteArrayView escapedKey, qint64 value)
{
    beginKey(escapedKey);
    std::array<char, 24> digits{};
    buffer_.append(digits.begin(), std::to_chars(digits.begin(), digits.end(), value).ptr);
    endKey();
}

void Writer::writeAsItStands(QByteArrayView escapedKey, QByteArrayView value)
{
    beginKey(escapedKey);
    buffer_.append(value.begin(), value.end());
    endKey();
}

bool Writer::flush()
{
    const auto size = static_cast<qint64>(buffer_.size());
    failed_ |= device_.write(buffer_.data(), size) != size;
    buffer_.clear();
    return !failed_;
}

} // namespace SettingsText
