#pragma once

#include "store/storerecords.h"

#include <QList>

class ObjectDataBase;

/// A message of a line with its signals: a parameter group, or a raw CAN-ID read in the same form.
struct LineMessage
{
    StoreRecords::PGN head = {}; ///< of a CAN-ID: its id as number, name, times and direction
    bool isCanId = false;
    QList<StoreRecords::SPN> items = {}; ///< SPNs by their place in the group, data elements by number
};

/// How the generators of J1939 and raw CAN read the messages of a line.
namespace LineMessages {

/// The group by which a J1939 device claims its address (SAE J1939-81). The stack handles it by itself.
inline constexpr quint32 addressClaim = 60928;

/// Which groups a list holds: safety data groups (SAE J1939-76) are exchanged by a part of the stack of their own.
enum class Groups
{
    All,
    Ordinary,
    Safety
};

/// The parameter groups of a direction, ascending, without the address claim. The SPNs come from the store's cache,
/// which is to be filled for the line (`cacheSPNs`).
QList<LineMessage> parameterGroups(ObjectDataBase &store, quint8 line, quint8 direction, Groups groups = Groups::All);
/// The CAN-IDs of a direction, ascending.
QList<LineMessage> canIds(ObjectDataBase &store, quint8 line, quint8 direction);

/// Width of a signal in its message: that of its data type, or its own size where the type tells none.
quint32 bits(const StoreRecords::SPN &signal);
/// The C variable of the application that a signal stands in; empty where it has another place or none.
QString variable(const StoreRecords::SPN &signal);

} // namespace LineMessages

/// How C programs hold values of the project's data types.
namespace SignalType {

/// The smallest C type of the stack that holds a value; one element of the array of a text type.
QString cType(quint32 dataType);
/// True for the types that a C program holds in an array.
bool isArray(quint32 dataType);

} // namespace SignalType
