#pragma once

#include <QString>

/// What the name of a line's document begins with: the project's base name and, in a project of several lines, "_" and
/// the line's number.
inline QString documentName(const QString &baseName, quint8 line, bool multiLine)
{
    return multiLine ? QStringLiteral("%1_%2").arg(baseName, QString::number(line)) : baseName;
}
