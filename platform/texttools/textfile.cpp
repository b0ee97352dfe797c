#include "texttools/textfile.h"

#include "texttools/asciitext.h"

#include <QFile>
#include <QFileInfo>
#include <QStringDecoder>

namespace {

constexpr qsizetype maxLineLength = 1 << 20;

/// What Windows-1252 has in place of the control codes 0x80 to 0x9f; the five codes without a letter stay themselves.
constexpr char16_t windows1252[] = {
    0x20ac, 0x81,   0x201a, 0x192,  0x201e, 0x2026, 0x2020, 0x2021, 0x2c6,  0x2030, 0x160,
    0x2039, 0x152,  0x8d,   0x17d,  0x8f,   0x90,   0x2018, 0x2019, 0x201c, 0x201d, 0x2022,
    0x2013, 0x2014, 0x2dc,  0x2122, 0x161,  0x203a, 0x153,  0x9d,   0x17e,  0x178,
};

QString fromWindows1252(QByteArrayView bytes)
{
    QString text = QString::fromLatin1(bytes);
    for (QChar &c : text) {
        if (c.unicode() >= 0x80 && c.unicode() < 0xa0)
            c = QChar(windows1252[c.unicode() - 0x80]);
    }
    return text;
}

/// UTF-16 is known by its byte order mark or, as a description begins with an ASCII character, by the zero byte that
/// one of the first two bytes then is.
std::optional<QStringConverter::Encoding> utf16Encoding(QByteArrayView content)
{
    if (content.size() < 2)
        return std::nullopt;
    const auto first = static_cast<uchar>(content[0]);
    const auto second = static_cast<uchar>(content[1]);
    if ((first == 0xff && second == 0xfe) || (first != 0 && first < 0x80 && second == 0))
        return QStringConverter::Utf16LE;
    if ((first == 0xfe && second == 0xff) || (first == 0 && second != 0 && second < 0x80))
        return QStringConverter::Utf16BE;
    return std::nullopt;
}

bool isBlank(char c)
{
    return c == ' ' || (c >= '\t' && c <= '\r') || c == '\0';
}

} // namespace

bool TextFile::load(const QString &path)
{
    content_.clear();
    const QFileInfo info(path);
    QFile file(path);
    if (!info.isFile() || info.size() > maxFileSize || !file.open(QIODevice::ReadOnly))
        return false;
    setContent(file.readAll());
    return true;
}

void TextFile::setContent(const QByteArray &content)
{
    content_ = content;
    if (const auto encoding = utf16Encoding(content_)) {
        QStringDecoder decoder(*encoding);
        const QString text = decoder(content_);
        content_ = text.toUtf8();
    }
    if (content_.startsWith("\xef\xbb\xbf"))
        content_.remove(0, 3);
    // The mark that old editors put behind the last line.
    while (content_.endsWith('\x1a') || content_.endsWith('\0'))
        content_.chop(1);
    utf8_ = content_.isValidUtf8();
}

QString TextFile::decode(QByteArrayView part) const
{
    if (AsciiText::isAscii(part) && !part.isEmpty() && !part.contains('\0'))
        return AsciiText::shared(part);
    QString text = utf8_ ? QString::fromUtf8(part) : fromWindows1252(part);
    if (text.contains(QChar(u'\0')))
        text.remove(QChar(u'\0'));
    return text;
}

bool TextLines::next(QByteArrayView &line)
{
    while (position_ < text_.size()) {
        start_ = position_;
        // Looked for once only in a text without any.
        if (feed_ < start_)
            feed_ = text_.indexOf('\n', start_);
        if (feed_ < 0)
            feed_ = text_.size();
        line = text_.sliced(start_, feed_ - start_);
        if (const qsizetype carriage = line.indexOf('\r'); carriage >= 0)
            line = line.first(carriage);
        position_ = start_ + line.size();
        ++position_;
        const bool isInsideLineEnd = line.isEmpty() && start_ > 0 && text_[start_ - 1] == '\r' && text_[start_] == '\n';
        if (!isInsideLineEnd)
            ++number_;
        // Nothing that a person or a tool writes is that long; it is garbage and would only cost memory.
        if (line.size() <= maxLineLength)
            return true;
    }
    return false;
}

QByteArrayView TextBytes::trimmed(QByteArrayView text)
{
    while (!text.isEmpty() && isBlank(text.front()))
        text = text.sliced(1);
    while (!text.isEmpty() && isBlank(text.back()))
        text.chop(1);
    return text;
}

bool TextBytes::equals(QByteArrayView text, QByteArrayView lower)
{
    if (text.size() != lower.size())
        return false;
    return std::equal(text.begin(), text.end(), lower.begin(),
                      [](char a, char b) { return (a >= 'A' && a <= 'Z' ? static_cast<char>(a | 0x20) : a) == b; });
}
