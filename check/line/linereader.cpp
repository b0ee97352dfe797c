#include "check/line/linereader.h"

#include "check/line/storevalue.h"
#include "nodedict/codes.h"
#include "nodedict/cohelper.h"
#include "store/objectdatabase.h"
#include "store/settings.h"

#include <algorithm>
#include <map>

using namespace Qt::StringLiterals;

namespace {

/// Bits of a message that signals take.
class TakenBits
{
public:
    /// Takes the bits, and tells whether some of them had been taken.
    bool take(quint32 first, quint32 end)
    {
        bool overlaps = false;
        auto next = ranges_.upper_bound(first);
        if (next != ranges_.begin() && std::prev(next)->second > first)
            --next;
        while (next != ranges_.end() && next->first < end) {
            overlaps = true;
            first = std::min(first, next->first);
            end = std::max(end, next->second);
            next = ranges_.erase(next);
        }
        ranges_.emplace(first, end);
        return overlaps;
    }

private:
    std::map<quint32, quint32> ranges_; ///< first bit and the one behind the last, apart from each other
};

bool isChecked(quint8 direction)
{
    return direction == StoreRecords::receive || direction == StoreRecords::transmit;
}

/// Tells of each signal what its place among the others means.
void placeSignals(std::vector<CheckedSignal> &messageSignals)
{
    TakenBits taken;
    const CheckedSignal *before = nullptr;
    for (CheckedSignal &signal : messageSignals) {
        const quint32 bits = COHelper::getDataLengthBits(signal.data.datatype);
        signal.bits = bits > 0 ? bits : signal.data.bitsize;
        signal.position = before ? before->position + 1 : 1;
        signal.ascends = !before || signal.data.bitposition > before->data.bitposition;
        if (signal.bits > 0)
            signal.overlapsEarlier = taken.take(signal.data.bitposition, signal.data.bitposition + signal.bits);
        before = &signal;
    }
}

CheckedPGN pgnOf(const StoreRecords::PGN &data)
{
    return {.data = data, .spns = {}};
}

CheckedCanId canIdOf(const StoreRecords::CANID &data)
{
    return {.data = data, .signalList = {}};
}

void complete(CheckedPGN &pgn)
{
    placeSignals(pgn.spns);
    for (const CheckedSignal &spn : pgn.spns)
        pgn.bits = std::max(pgn.bits, spn.data.bitposition + spn.bits);
}

void complete(CheckedCanId &canId)
{
    placeSignals(canId.signalList);
    for (const CheckedSignal &signal : canId.signalList)
        canId.bits += signal.bits;
}

/// Collects signals under the messages that they belong to.
template <class Message>
void distribute(const QList<StoreRecords::SPN> &all, std::vector<Message> &messages,
                std::vector<CheckedSignal> Message::*signalList)
{
    QHash<quint64, size_t> places;
    places.reserve(static_cast<qsizetype>(messages.size()));
    for (size_t i = 0; i < messages.size(); ++i)
        places.insert(messages[i].key(), i);
    for (const StoreRecords::SPN &data : all) {
        const auto place = places.constFind(WriteLog::messageKey(data.pgnnumber, data.direction));
        if (place != places.cend())
            (messages[*place].*signalList).push_back({.data = data});
    }
    for (Message &message : messages)
        complete(message);
}

template <class Message, class Record>
std::vector<Message> messagesOf(const QList<Record> &records, Message (*read)(const Record &))
{
    std::vector<Message> messages;
    messages.reserve(static_cast<size_t>(records.size()));
    for (const Record &data : records) {
        if (isChecked(data.direction))
            messages.push_back(read(data));
    }
    return messages;
}

/// A message with its signals; nothing for one that does not exist or is not checked.
template <class Message, class Record>
std::optional<Message> messageOf(const std::optional<Record> &record, Message (*read)(const Record &),
                                 const QList<StoreRecords::SPN> &signalsOfIt,
                                 std::vector<CheckedSignal> Message::*signalList)
{
    if (!record || !isChecked(record->direction))
        return {};
    Message message = read(*record);
    for (const StoreRecords::SPN &data : signalsOfIt)
        (message.*signalList).push_back({.data = data});
    complete(message);
    return message;
}

/// Calls `take` with each of these records as a subindex that shares them with whoever else has read them.
template <class Take>
void shareSubs(QList<StoreRecords::SubEntry> entries, Take take)
{
    const auto owner = std::make_shared<const QList<StoreRecords::SubEntry>>(std::move(entries));
    for (const StoreRecords::SubEntry &entry : *owner)
        take(CheckedSubindex{entry.index, entry.subindex, {owner, &entry.data}});
}

quint32 numberOf(quint64 key)
{
    return static_cast<quint32>(key >> 8);
}

quint8 directionOf(quint64 key)
{
    return static_cast<quint8>(key);
}

} // namespace

template <>
std::vector<CheckedObject> LineReader::all(ObjectDataBase &store, quint8 line)
{
    std::vector<CheckedObject> objects;
    const QList<StoreRecords::IndexEntry> indices = store.getAllIndices(line);
    objects.reserve(static_cast<size_t>(indices.size()));
    for (const StoreRecords::IndexEntry &entry : indices)
        objects.push_back({entry.index, entry.data, {}});
    auto object = objects.begin();
    shareSubs(store.getAllSubIndices(line), [&](CheckedSubindex &&sub) {
        while (object != objects.end() && object->index < sub.index)
            ++object;
        if (object != objects.end() && object->index == sub.index)
            object->subs.push_back(std::move(sub));
    });
    return objects;
}

template <>
std::vector<CheckedPGN> LineReader::all(ObjectDataBase &store, quint8 line)
{
    std::vector<CheckedPGN> pgns = messagesOf(store.getAllPGNs(line), pgnOf);
    distribute(store.getAllSPNs(line), pgns, &CheckedPGN::spns);
    return pgns;
}

template <>
std::vector<CheckedCanId> LineReader::all(ObjectDataBase &store, quint8 line)
{
    std::vector<CheckedCanId> canIds = messagesOf(store.getAllCANIDs(line), canIdOf);
    distribute(store.getAllDataElements(line), canIds, &CheckedCanId::signalList);
    return canIds;
}

template <>
std::optional<CheckedObject> LineReader::one(ObjectDataBase &store, quint8 line, quint64 key)
{
    const auto index = static_cast<quint16>(key);
    const std::optional<StoreRecords::IndexData> data = store.getIndex(line, index);
    if (!data)
        return {};
    CheckedObject object{index, *data, {}};
    shareSubs(store.getSubIndices(line, index),
              [&object](CheckedSubindex &&sub) { object.subs.push_back(std::move(sub)); });
    return object;
}

template <>
std::optional<CheckedPGN> LineReader::one(ObjectDataBase &store, quint8 line, quint64 key)
{
    return messageOf(store.getPGN(line, numberOf(key), directionOf(key)), pgnOf,
                     store.getSPNs(line, numberOf(key), directionOf(key)), &CheckedPGN::spns);
}

template <>
std::optional<CheckedCanId> LineReader::one(ObjectDataBase &store, quint8 line, quint64 key)
{
    return messageOf(store.getCANID(line, numberOf(key), directionOf(key)), canIdOf,
                     store.getDataElements(line, numberOf(key), directionOf(key)), &CheckedCanId::signalList);
}

LineSettings LineReader::settings(ObjectDataBase &store, quint8 line)
{
    LineSettings settings;
    const quint8 current = store.currentLine();
    store.setCurrentLine(line);
    const quint64 granularity = plainValue(store.getDescriptionSetting(u"Granularity"_s)).value_or(0);
    store.setCurrentLine(current);
    settings.granularity = static_cast<quint8>(std::min<quint64>(granularity, 255));
    const Settings general(store);
    settings.canFd = general.isOn(u"canfd_supported"_s);
    settings.bitwiseMapping = general.isOn(u"bitwise_mapping"_s);
    settings.limitCheckEnabled = general.isOn(u"limit_check"_s);
    settings.nmtMaster = general.isOn(u"nmtmaster"_s, line);
    settings.safetySupport = Settings(store, Settings::Table::J1939).isOn(u"safetysupport"_s, line);
    const quint32 nodeId = general.number(u"co_node_id"_s, line);
    if (nodeId >= 1 && nodeId <= CANopen::lastNodeId)
        settings.nodeId = static_cast<quint8>(nodeId);
    settings.defaultCobIds = predefinedCobIds(settings.nodeId);
    return settings;
}
