#include "texttools/numbertext.h"

std::optional<quint32> NumberText::byPrefix(const QString &text)
{
    constexpr int automaticBase = 0;
    bool isNumber = false;
    const quint32 number = text.trimmed().toUInt(&isNumber, automaticBase);
    return isNumber ? std::optional(number) : std::nullopt;
}
