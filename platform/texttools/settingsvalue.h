#pragma once

#include <QByteArrayView>
#include <QString>
#include <QStringDecoder>
#include <QVariant>

namespace SettingsText {

constexpr bool isHexDigit(char16_t ch)
{
    return (ch >= '0' && ch <= '9') || (ch >= 'a' && ch <= 'f') || (ch >= 'A' && ch <= 'F');
}

/// Reads the value of a key in a settings file. A comma outside quotes makes a list of it, whose parts are unescaped
/// one by one; told is the text as it stands, with the commas and the blanks around them.
class ValueParser
{
public:
    explicit ValueParser(QByteArrayView data);

    QVariant value();

private:
    void step();
    void skipSpaces();
    QString takeTrailingSpaces();
    void endPart();
    void readPlain();
    void readEscape();
    void readNumber(uint code, uint base);

    QByteArrayView data_;
    qsizetype position_ = 0;
    qsizetype chopLimit_ = 0;
    bool inQuotes_ = false;
    bool partWasQuoted_ = false;
    bool isList_ = false;
    QString text_;
    QString list_; ///< the parts so far, each with its comma and the blanks around that
    QStringDecoder fromUtf8_{QStringDecoder::Utf8};
};

} // namespace SettingsText
