#pragma once

#include "store/records/storerecords.h"

#include <QList>

class ObjectDataBase;

/// A message of a line with its signals: a parameter group, or a raw CAN-ID read in the same form.
struct LineMessage
{
    StoreRecords::PGN head = {}; ///< of a CAN-ID: its id as the project has it, texts, times and direction
    bool isCanId = false;
    QList<StoreRecords::SPN> items = {}; ///< SPNs by their place in the group, data elements by number

    bool isTransmitted() const { return head.direction == StoreRecords::transmit; }
    /// The identifier without what the project marks beside it.
    quint32 canId() const { return head.number & 0x1FFFFFFF; }
    /// A CAN-ID of 29 bits, whatever its value: marked by a bit above these.
    bool isExtended() const { return head.number > 0x1FFFFFFF; }
};

/// The messages of a line, read by one scan of the messages and one of their signals: what every output knows of them.
namespace LineMessages {

/// Those received before those transmitted, ascending in each direction.
QList<LineMessage> parameterGroups(ObjectDataBase &store, quint8 line);
QList<LineMessage> canIds(ObjectDataBase &store, quint8 line);

/// Which groups a list holds: safety data groups (SAE J1939-76) are exchanged by a part of the stack of their own.
enum class Groups
{
    All,
    Ordinary,
    Safety
};

/// The messages of one direction that the stack is told of: without the address claim, which it handles by itself.
QList<LineMessage> ofStack(const QList<LineMessage> &messages, quint8 direction, Groups groups = Groups::All);
/// The messages as documents and bus databases have them: those transmitted first, with the placeholders in names and
/// descriptions filled.
QList<LineMessage> ofDocuments(QList<LineMessage> messages, quint8 line);

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
