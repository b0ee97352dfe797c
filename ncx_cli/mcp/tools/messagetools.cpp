#include "ncx_cli/mcp/tools/messagetools.h"

#include "store/objectdatabase.h"

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
