#pragma once

#include <QList>

class ObjectDataBase;

/// How the generators of the stack's start-up read lines; settings are read by `Settings`.
namespace LineSettings {

/// The lines that the stack counts: those below 32, ascending.
QList<quint8> stackLines(ObjectDataBase &store);
/// Those of them that the stack has; line 0 if there is none. A CANopen line without objects is left out everywhere, as
/// it is in the object dictionary.
QList<quint8> partakingLines(ObjectDataBase &store);
/// Whether the stack is built for several lines, so that its functions take one: several take part, or one is to be
/// written like one of several.
bool severalLines(ObjectDataBase &store);

} // namespace LineSettings
