#pragma once

#include <QList>
#include <QString>
#include <QStringList>

class ObjectDataBase;

/// How the generators of the stack's start-up read lines and numbers; settings are read by `Settings`.
///
/// A number may be decimal, "0x" hexadecimal or octal with a leading 0; what does not parse is 0.
namespace LineSettings {

/// The lines that the stack counts: those below 32, ascending.
QList<quint8> stackLines(ObjectDataBase &store);

quint32 number(const QString &text);
/// One text for each of `count` lines by their position; a list that is too short is repeated as a whole.
QStringList repeatedList(ObjectDataBase &store, const QString &key, qsizetype count);

} // namespace LineSettings
