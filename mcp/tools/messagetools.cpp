#include "mcp/tools/messagetools.h"

using namespace Qt::StringLiterals;

namespace {

std::optional<quint8> codeOf(const QString &word)
{
    if (word == "Transmit"_L1)
        return ObjectDataBase::transmit;
    if (word == "Receive"_L1)
        return ObjectDataBase::receive;
    if (word == "Invalid"_L1)
        return 0;
    return {};
}

} // namespace

std::optional<Reply> MessageTools::directionIsKnown(const ToolCall &call)
{
    if (!call.has(Arguments::direction.name) || codeOf(directionWord(call)))
        return {};
    return Reply::invalidParams(u"Invalid direction: expected Transmit, Receive or Invalid"_s);
}

quint8 MessageTools::direction(const ToolCall &call)
{
    return codeOf(directionWord(call)).value_or(0);
}

QString MessageTools::directionWord(const ToolCall &call)
{
    return call.text(Arguments::direction.name);
}

QJsonArray MessageTools::summaries(const QList<quint32> &numbers, const QHash<quint32, QString> &transmitted,
                                   const QHash<quint32, QString> &received, QJsonObject (*describe)(quint32 number))
{
    QJsonArray list;
    std::optional<quint32> former;
    // The store lists a number once for each of its directions, side by side.
    for (const quint32 number : numbers) {
        if (number == former)
            continue;
        former = number;
        QJsonArray directions;
        if (transmitted.contains(number))
            directions.append(u"Transmit"_s);
        if (received.contains(number))
            directions.append(u"Receive"_s);
        QJsonObject summary = describe(number);
        summary.insert(u"directions"_s, directions);
        summary.insert(u"name"_s, transmitted.contains(number) ? transmitted[number] : received.value(number));
        list.append(summary);
    }
    return list;
}

QJsonObject MessageTools::signalObject(const StoreRecords::SPN &signal)
{
    return {
        {u"name"_s, signal.name},
        {u"description"_s, signal.desc},
        {u"dataTypeCode"_s, qint64{signal.datatype}},
        {u"defaultValue"_s, signal.defaultvalue},
        {u"pos"_s, qint64{signal.pos}},
        {u"bitSize"_s, signal.bitsize},
        {u"bitPosition"_s, signal.bitposition},
        {u"varname"_s, signal.varname},
    };
}

StoreRecords::SPN MessageTools::newSignal(const ToolCall &call)
{
    StoreRecords::SPN signal;
    signal.name = call.text("name"_L1);
    signal.desc = call.text(Arguments::description.name);
    signal.datatype = call.number<quint32>(Arguments::dataType.name);
    // The store takes no single quote in these two: adding the signal fails then.
    signal.defaultvalue = call.text(Arguments::defaultValue.name, signal.defaultvalue);
    signal.varname = call.text(Arguments::varname.name);
    signal.pos = call.number<quint32>("pos"_L1);
    signal.bitsize = call.number<quint16>(Arguments::bitSize.name);
    signal.bitposition = call.number<quint16>(Arguments::bitPosition.name);
    signal.slot_df = call.number<quint16>("slotDf"_L1);
    return signal;
}

bool MessageTools::Kind::has(const ToolCall &call) const
{
    return (call.store().*exists)(call.line(), numberOf(call), direction(call));
}

bool MessageTools::Kind::hasSignal(const ToolCall &call) const
{
    return (call.store().*signalExists)(call.line(), numberOf(call), direction(call), signalOf(call));
}

QString MessageTools::Kind::about(const ToolCall &call, const QString &sentence) const
{
    return sentence.arg(message, numberText(numberOf(call)), directionWord(call), QString::number(call.line()));
}

QString MessageTools::Kind::aboutSignal(const ToolCall &call, const QString &sentence) const
{
    return sentence.arg(QString::number(signalOf(call)), message, numberText(numberOf(call)), directionWord(call),
                        QString::number(call.line()));
}

std::optional<Reply> MessageTools::Kind::refuseUnlessThere(const ToolCall &call, bool isWanted) const
{
    if (has(call) == isWanted)
        return {};
    return isWanted ? missing(call) : Reply::refusal(about(call, u"%1 %2 (%3) already exists on line %4."_s));
}

std::optional<Reply> MessageTools::Kind::refuseUnlessSignalIsThere(const ToolCall &call, bool isWanted) const
{
    if (hasSignal(call) == isWanted)
        return {};
    return isWanted ? missingSignal(call)
                    : Reply::refusal(signal + aboutSignal(call, u" %1 already exists on %2 %3 (%4), line %5."_s));
}

Reply MessageTools::Kind::missing(const ToolCall &call) const
{
    return Reply::refusal(about(call, u"%1 %2 (%3) does not exist on line %4."_s));
}

Reply MessageTools::Kind::missingSignal(const ToolCall &call) const
{
    return Reply::refusal(signal + aboutSignal(call, u" %1 does not exist on %2 %3 (%4), line %5."_s));
}

Reply MessageTools::Kind::added(const ToolCall &call, bool done) const
{
    if (!done || !has(call))
        return Reply::refusal(about(call, u"Failed to add %1 %2 (%3) on line %4."_s));
    return call.edited(about(call, u"%1 %2 (%3) added on line %4."_s));
}

Reply MessageTools::Kind::removeOne(const ToolCall &call) const
{
    const bool done = (call.store().*remove)(call.line(), numberOf(call), direction(call));
    return call.edited(
        about(call, done ? u"%1 %2 (%3) deleted from line %4."_s : u"Failed to delete %1 %2 (%3) from line %4."_s),
        !done);
}

Reply MessageTools::Kind::addOneSignal(const ToolCall &call) const
{
    const bool done = (call.store().*addSignal)(call.line(), numberOf(call), direction(call), signalOf(call),
                                                newSignal(call), Quotes::Literal);
    if (!done || !hasSignal(call))
        return Reply::refusal("Failed to add "_L1 + signalWithin + aboutSignal(call, u" %1 on %2 %3 (%4), line %5."_s));
    return call.edited(signal + aboutSignal(call, u" %1 added on %2 %3 (%4), line %5."_s));
}

Reply MessageTools::Kind::removeOneSignal(const ToolCall &call) const
{
    const bool done = (call.store().*removeSignal)(call.line(), numberOf(call), signalOf(call), direction(call));
    const QString sentence =
        done ? signal + aboutSignal(call, u" %1 deleted from %2 %3 (%4), line %5."_s)
             : "Failed to delete "_L1 + signalWithin + aboutSignal(call, u" %1 from %2 %3 (%4), line %5."_s);
    return call.edited(sentence, !done);
}

QJsonObject MessageTools::Kind::describe(const Signal &data) const
{
    QJsonObject object = signalObject(data);
    describeSignal(object, data);
    return object;
}

QJsonArray MessageTools::Kind::signalList(const ToolCall &call) const
{
    QJsonArray list;
    for (const Signal &data : (call.store().*signalsOf)(call.line(), numberOf(call), direction(call)))
        list.append(describe(data));
    return list;
}
