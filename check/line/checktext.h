#pragma once

#include <QString>

// Numbers as the messages of the check write them.

/// An index: four lower-case hexadecimal digits.
inline QString hex4(quint32 value)
{
    return QStringLiteral("%1").arg(value, 4, 16, QLatin1Char('0'));
}

/// A subindex: two lower-case hexadecimal digits.
inline QString hex2(quint32 value)
{
    return QStringLiteral("%1").arg(value, 2, 16, QLatin1Char('0'));
}

/// A CAN-ID or PGN: lower-case hexadecimal without padding.
inline QString hex(quint32 value)
{
    return QString::number(value, 16);
}

inline QString dec(quint32 value)
{
    return QString::number(value);
}
