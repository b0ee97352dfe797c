#pragma once

#include "ncx_cli/mcp/call/tool.h"
#include "ncx_cli/mcp/tools/arguments.h"
#include "store/tables/storerecords.h"

#include <QHash>

/// What the tools of J1939 PGNs and of raw CAN-IDs share: a message is a number and a direction, and carries signals.
namespace MessageTools {

/// A direction is one of the words of the schema; their case counts.
std::optional<Reply> directionIsKnown(const ToolCall &call);
/// The store's code of the `direction` given; 0, which lists take for both, without one.
quint8 direction(const ToolCall &call);
/// The word as it was given.
QString directionWord(const ToolCall &call);

/// One entry for each number, with the directions in which it exists and a name; `describe` makes the entry's number.
QJsonArray summaries(const QList<quint32> &numbers, const QHash<quint32, QString> &transmitted,
                     const QHash<quint32, QString> &received, QJsonObject (*describe)(quint32 number));

/// A signal's members but for its number.
QJsonObject signalObject(const StoreRecords::SPN &signal);
/// The record of a new signal from the arguments of a call.
StoreRecords::SPN newSignal(const ToolCall &call);

/// Sets what is given of a new message: `name`, `description`, `cycleTimeMs` and `inhibitTimeMs`.
template <typename Message>
void readMessage(const ToolCall &call, Message &message)
{
    message.name = call.text(QLatin1StringView("name"));
    message.desc = call.text(Arguments::description.name);
    message.cycletime_ms = call.number<quint16>(Arguments::cycleTimeMs.name);
    message.inhibittime_ms = call.number<quint16>(Arguments::inhibitTimeMs.name);
    message.direction = direction(call);
}

} // namespace MessageTools
