#include "generate/model/busmessages.h"

#include "nodedict/cohelper.h"
#include "store/objectdatabase.h"
#include "texttools/helper.h"

#include <QHash>

#include <array>
#include <type_traits>

namespace {

constexpr std::array directions{ObjectDataBase::transmit, ObjectDataBase::receive};

/// A message is its number in one direction.
constexpr quint64 keyOf(quint32 number, quint8 direction)
{
    return quint64{number} << 8 | direction;
}

quint32 numberOf(const StoreRecords::PGN &record)
{
    return record.number;
}

quint32 numberOf(const StoreRecords::CANID &record)
{
    return record.id;
}

using SignalsByMessage = QHash<quint64, QList<StoreRecords::SPN>>;

/// The signals of a line by their messages, in the order that they come in.
SignalsByMessage byMessage(const QList<StoreRecords::SPN> &signalList, quint8 line)
{
    SignalsByMessage result;
    for (StoreRecords::SPN signal : signalList) {
        signal.name = Helper::substituteVariables(signal.name, signal.pgnnumber, signal.spnnumber, line);
        signal.desc = Helper::substituteVariables(signal.desc, signal.pgnnumber, signal.spnnumber, line);
        result[keyOf(signal.pgnnumber, signal.direction)].append(signal);
    }
    return result;
}

template <typename Record>
QList<BusMessage> messagesOf(const QList<Record> &records, const SignalsByMessage &signalsByMessage, quint8 line)
{
    QList<BusMessage> messages;
    for (const quint8 direction : directions) {
        for (const Record &record : records) {
            if (record.direction != direction)
                continue;
            const quint32 number = numberOf(record);
            BusMessage &message = messages.emplaceBack();
            message = {.number = number,
                       .direction = direction,
                       .name = Helper::substituteVariables(record.name, number, 0, line),
                       .description = Helper::substituteVariables(record.desc, number, 0, line),
                       .cycleTimeMs = record.cycletime_ms,
                       .inhibitTimeMs = record.inhibittime_ms,
                       .signalList = signalsByMessage.value(keyOf(number, direction))};
            if constexpr (std::is_same_v<Record, StoreRecords::PGN>)
                message.priority = record.priority;
        }
    }
    return messages;
}

} // namespace

QList<BusMessage> BusMessage::pgns(ObjectDataBase &store, quint8 line)
{
    return messagesOf(store.getAllPGNs(line), byMessage(store.getAllSPNs(line), line), line);
}

QList<BusMessage> BusMessage::canIds(ObjectDataBase &store, quint8 line)
{
    return messagesOf(store.getAllCANIDs(line), byMessage(store.getAllDataElements(line), line), line);
}

quint32 BusMessage::bitsOf(const StoreRecords::SPN &signal)
{
    const quint32 ofType = COHelper::getDataLengthBits(signal.datatype);
    return ofType != 0 ? ofType : signal.bitsize;
}
