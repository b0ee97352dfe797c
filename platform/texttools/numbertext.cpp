#include "texttools/numbertext.h"

std::optional<quint64> NumberText::inBase(QStringView text, int base)
{
    bool ok = false;
    const quint64 number = text.toULongLong(&ok, base);
    return ok ? std::optional(number) : std::nullopt;
}

std::optional<qint64> NumberText::signedInBase(QStringView text, int base)
{
    bool ok = false;
    const qint64 number = text.toLongLong(&ok, base);
    return ok ? std::optional(number) : std::nullopt;
}
