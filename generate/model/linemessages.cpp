#include "generate/model/linemessages.h"

#include "nodedict/canopendatatype.h"
#include "nodedict/codes.h"
#include "nodedict/cohelper.h"
#include "store/objectdatabase.h"
#include "texttools/helper.h"

#include <QHash>

#include <algorithm>
#include <array>
#include <functional>
#include <iterator>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

LineMessage messageOf(const StoreRecords::PGN &pgn)
{
    return {.head = pgn};
}

LineMessage messageOf(const StoreRecords::CANID &canId)
{
    return {.head = {.name = canId.name,
                     .desc = canId.desc,
                     .number = canId.id,
                     .cycletime_ms = canId.cycletime_ms,
                     .inhibittime_ms = canId.inhibittime_ms,
                     .direction = canId.direction},
            .isCanId = true};
}

bool hasDirection(const LineMessage &message)
{
    return message.head.direction == StoreRecords::receive || message.isTransmitted();
}

/// The records with their signals, both in the order that they come in.
template <typename Record>
QList<LineMessage> messagesOf(const QList<Record> &records, const QList<StoreRecords::SPN> &items)
{
    QHash<std::pair<quint32, quint8>, QList<StoreRecords::SPN>> byMessage;
    byMessage.reserve(records.size());
    for (const StoreRecords::SPN &item : items)
        byMessage[{item.pgnnumber, item.direction}].append(item);
    QList<LineMessage> messages;
    messages.reserve(records.size());
    for (const Record &record : records) {
        LineMessage message = messageOf(record);
        message.items = byMessage.value({message.head.number, message.head.direction});
        if (hasDirection(message))
            messages.append(std::move(message));
    }
    return messages;
}

} // namespace

QList<LineMessage> LineMessages::parameterGroups(ObjectDataBase &store, quint8 line)
{
    return messagesOf(store.getAllPGNs(line), store.getAllSPNs(line));
}

QList<LineMessage> LineMessages::canIds(ObjectDataBase &store, quint8 line)
{
    return messagesOf(store.getAllCANIDs(line), store.getAllDataElements(line));
}

QList<LineMessage> LineMessages::ofStack(const QList<LineMessage> &messages, quint8 direction, Groups groups)
{
    QList<LineMessage> result;
    std::ranges::copy_if(messages, std::back_inserter(result), [&](const LineMessage &message) {
        const bool isClaim = !message.isCanId && message.head.number == J1939::addressClaim;
        const bool isAsked = groups == Groups::All || (groups == Groups::Safety) == message.head.issafe;
        return message.head.direction == direction && !isClaim && isAsked;
    });
    return result;
}

QList<LineMessage> LineMessages::ofDocuments(QList<LineMessage> messages, quint8 line)
{
    std::stable_partition(messages.begin(), messages.end(), std::mem_fn(&LineMessage::isTransmitted));
    for (LineMessage &message : messages) {
        message.head.name = Helper::substituteVariables(message.head.name, message.head.number, 0, line);
        message.head.desc = Helper::substituteVariables(message.head.desc, message.head.number, 0, line);
        for (StoreRecords::SPN &item : message.items) {
            item.name = Helper::substituteVariables(item.name, item.pgnnumber, item.spnnumber, line);
            item.desc = Helper::substituteVariables(item.desc, item.pgnnumber, item.spnnumber, line);
        }
    }
    return messages;
}

quint32 LineMessages::bits(const StoreRecords::SPN &signal)
{
    const quint32 ofType = COHelper::getDataLengthBits(signal.datatype);
    return ofType == 0 ? signal.bitsize : ofType;
}

QString LineMessages::variable(const StoreRecords::SPN &signal)
{
    return signal.implementation == CANopen::Implementation::Variable ? signal.varname.trimmed() : QString();
}

namespace {

struct CType
{
    quint32 maxBits;
    QLatin1StringView unsignedName;
    QLatin1StringView signedName;
};

constexpr std::array cTypes{
    CType{8, "UNSIGNED8"_L1, "INTEGER8"_L1},
    CType{16, "UNSIGNED16"_L1, "INTEGER16"_L1},
    CType{32, "UNSIGNED32"_L1, "INTEGER32"_L1},
    CType{64, "UNSIGNED64"_L1, "INTEGER64"_L1},
};

bool isText(quint32 dataType)
{
    return dataType == CAN::VisibleString || dataType == CAN::StringNull || dataType == CAN::StringAsterisk ||
           dataType == CAN::Utf8String;
}

} // namespace

QString SignalType::cType(quint32 dataType)
{
    if (dataType == CAN::Real32)
        return u"REAL32"_s;
    if (dataType == CAN::Real64)
        return u"REAL64"_s;
    if (isText(dataType))
        return u"char"_s;
    const quint32 bits = COHelper::getDataLengthBits(dataType);
    const auto type = std::ranges::find_if(cTypes, [bits](const CType &row) { return bits <= row.maxBits; });
    return COHelper::getDefaultLimits(dataType).low.startsWith(u'-') ? type->signedName : type->unsignedName;
}

bool SignalType::isArray(quint32 dataType)
{
    return COHelper::isTextType(dataType);
}
