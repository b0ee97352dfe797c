#include "ncx/page/printable.h"

QString Printable::xml(const QString &text)
{
    QString result = text;
    for (QChar &letter : result) {
        const bool isControl = letter.unicode() < 0x20 && letter != u'\t' && letter != u'\n';
        if (isControl || letter.unicode() >= 0xfffe)
            letter = QChar::ReplacementCharacter;
    }
    return result.toHtmlEscaped();
}

QByteArray Printable::scriptJson(QByteArray json)
{
    // "<" stands in strings only, which may as well have its number.
    return json.replace('<', "\\u003c");
}
