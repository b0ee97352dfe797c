#include "store/statements/literaltext.h"

using namespace Qt::StringLiterals;

bool LiteralText::breaksStatement(QStringView text)
{
    bool isOpen = false;
    for (const QChar ch : text) {
        if (ch == QChar::Null || (isOpen && ch != u'\''))
            return true;
        isOpen = ch == u'\'' && !isOpen;
    }
    return isOpen;
}

std::optional<QString> LiteralText::stored(const QString &text, Quotes quotes)
{
    if (quotes == Quotes::Kept)
        return text.contains(QChar::Null) ? std::nullopt : std::optional(text);
    if (breaksStatement(text))
        return std::nullopt;
    QString single = text;
    return single.replace("''"_L1, "'"_L1);
}
