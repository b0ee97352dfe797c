#include "generate/docs/busmessages.h"

#include "nodedict/canopendatatype.h"
#include "nodedict/cohelper.h"
#include "store/objectdatabase.h"
#include "texttools/helper.h"

#include <array>

namespace {

constexpr std::array directions{ObjectDataBase::transmit, ObjectDataBase::receive};

/// Takes what PGN and CAN-ID have alike.
template <typename Record>
BusMessage messageOf(const Record &record, quint32 number, quint8 line)
{
    return {.number = number,
            .direction = record.direction,
            .name = Helper::substituteVariables(record.name, number, 0, line),
            .description = Helper::substituteVariables(record.desc, number, 0, line),
            .cycleTimeMs = record.cycletime_ms,
            .inhibitTimeMs = record.inhibittime_ms};
}

StoreRecords::SPN withTextsFilled(StoreRecords::SPN signal, quint32 message, quint8 line)
{
    signal.name = Helper::substituteVariables(signal.name, message, signal.spnnumber, line);
    signal.desc = Helper::substituteVariables(signal.desc, message, signal.spnnumber, line);
    return signal;
}

} // namespace

QList<BusMessage> BusMessage::pgns(ObjectDataBase &store, quint8 line)
{
    QList<BusMessage> messages;
    store.cacheSPNs(line);
    for (const quint8 direction : directions) {
        const QList<quint32> numbers = store.getPGNList(line, direction);
        for (const quint32 number : numbers) {
            StoreRecords::PGN record;
            if (!store.getPGN(line, number, direction, record))
                continue;
            record.direction = direction;
            BusMessage message = messageOf(record, number, line);
            message.priority = record.priority;
            const QList<quint32> spns = store.getSPNList(line, number, direction);
            for (const quint32 spn : spns) {
                StoreRecords::SPN signal;
                if (!store.getSPN(line, number, direction, spn, signal))
                    continue;
                signal.spnnumber = spn;
                message.signalList.append(withTextsFilled(signal, number, line));
            }
            messages.append(message);
        }
    }
    store.clearSPNCache();
    return messages;
}

QList<BusMessage> BusMessage::canIds(ObjectDataBase &store, quint8 line)
{
    QHash<quint64, QList<StoreRecords::DataElement>> elements;
    const auto key = [](quint32 number, quint8 direction) { return quint64{number} << 8 | direction; };
    for (const StoreRecords::DataElement &element : store.getDataElements(line))
        elements[key(element.pgnnumber, element.direction)].append(withTextsFilled(element, element.pgnnumber, line));

    QList<BusMessage> messages;
    for (const quint8 direction : directions) {
        const QList<quint32> numbers = store.getCANIDList(line, direction);
        for (const quint32 number : numbers) {
            StoreRecords::CANID record;
            if (!store.getCANID(line, number, direction, record))
                continue;
            BusMessage message = messageOf(record, number, line);
            message.signalList = elements.value(key(number, direction));
            messages.append(message);
        }
    }
    return messages;
}

quint32 BusMessage::bitsOf(const StoreRecords::SPN &signal)
{
    const quint32 ofType = COHelper::getDataLengthBits(signal.datatype);
    return ofType != 0 ? ofType : signal.bitsize;
}
