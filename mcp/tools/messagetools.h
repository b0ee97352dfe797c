#pragma once

#include "mcp/call/tool.h"
#include "mcp/tools/arguments.h"
#include "store/objectdatabase.h"

#include <QHash>

#include <limits>

/// What the tools of J1939 PGNs and of raw CAN-IDs share: a message is a number and a direction, and carries signals.
namespace MessageTools {

inline constexpr qint64 maxNumber = std::numeric_limits<qint32>::max();

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

/// What all messages have, but for their numbers.
template <typename Message>
QJsonObject messageObject(const ToolCall &call, const Message &message)
{
    using Qt::StringLiterals::operator""_s;
    return {{u"line"_s, call.line()},
            {u"direction"_s, directionWord(call)},
            {u"name"_s, message.name},
            {u"description"_s, message.desc},
            {u"cycleTimeMs"_s, message.cycletime_ms},
            {u"inhibitTimeMs"_s, message.inhibittime_ms}};
}

/// One of the two kinds of messages: what it is called, and the store's operations on it.
struct Kind
{
    using Signal = StoreRecords::SPN;
    using Store = ProjectTables;

    QLatin1StringView message;
    QLatin1StringView signal;       ///< at the beginning of a sentence
    QLatin1StringView signalWithin; ///< and within one
    QLatin1StringView number;       ///< argument with the message's number
    QLatin1StringView signalNumber; ///< argument with the signal's
    QString (*numberText)(quint32); ///< of the message, in sentences
    bool (Store::*exists)(quint8 line, quint32 number, quint8 direction);
    bool (Store::*remove)(quint8 line, quint32 number, quint8 direction);
    bool (Store::*signalExists)(quint8 line, quint32 number, quint8 direction, quint32 signal);
    bool (Store::*addSignal)(quint8 line, quint32 number, quint8 direction, quint32 signal, const Signal &, Quotes);
    bool (Store::*removeSignal)(quint8 line, quint32 number, quint32 signal, quint8 direction);
    QList<Signal> (Store::*signalsOf)(quint8 line, quint32 number, quint8 direction);
    void (*describeSignal)(QJsonObject &object, const Signal &signal); ///< adds its number, and what others lack

    quint32 numberOf(const ToolCall &call) const { return call.number<quint32>(number); }
    quint32 signalOf(const ToolCall &call) const { return call.number<quint32>(signalNumber); }
    bool has(const ToolCall &call) const;
    bool hasSignal(const ToolCall &call) const;
    /// Fills a sentence about the call's message: what it is called, number, direction, line.
    QString about(const ToolCall &call, const QString &sentence) const;
    /// Fills a sentence about the call's signal: number, what its message is called, that one's number, direction,
    /// line.
    QString aboutSignal(const ToolCall &call, const QString &sentence) const;

    std::optional<Reply> refuseUnlessThere(const ToolCall &call, bool isWanted) const;
    std::optional<Reply> refuseUnlessSignalIsThere(const ToolCall &call, bool isWanted) const;
    Reply missing(const ToolCall &call) const;
    Reply missingSignal(const ToolCall &call) const;
    /// Tells what became of a new message.
    Reply added(const ToolCall &call, bool done) const;
    Reply removeOne(const ToolCall &call) const;
    Reply addOneSignal(const ToolCall &call) const;
    Reply removeOneSignal(const ToolCall &call) const;
    QJsonObject describe(const Signal &signal) const;
    QJsonArray signalList(const ToolCall &call) const;
};

// Guards and handlers of a kind.

template <const Kind &kind>
std::optional<Reply> exists(const ToolCall &call)
{
    return kind.refuseUnlessThere(call, true);
}

template <const Kind &kind>
std::optional<Reply> isNew(const ToolCall &call)
{
    return kind.refuseUnlessThere(call, false);
}

template <const Kind &kind>
std::optional<Reply> signalExists(const ToolCall &call)
{
    return kind.refuseUnlessSignalIsThere(call, true);
}

template <const Kind &kind>
std::optional<Reply> signalIsNew(const ToolCall &call)
{
    return kind.refuseUnlessSignalIsThere(call, false);
}

template <const Kind &kind>
Reply remove(const ToolCall &call)
{
    return kind.removeOne(call);
}

template <const Kind &kind>
Reply addSignal(const ToolCall &call)
{
    return kind.addOneSignal(call);
}

template <const Kind &kind>
Reply removeSignal(const ToolCall &call)
{
    return kind.removeOneSignal(call);
}

} // namespace MessageTools
