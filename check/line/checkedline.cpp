#include "check/line/checkedline.h"

#include "check/line/pdo.h"
#include "check/line/storevalue.h"
#include "nodedict/codes.h"
#include "nodedict/cohelper.h"
#include "store/objectdatabase.h"
#include "store/settings.h"
#include "texttools/helper.h"

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

quint64 messageKey(quint32 number, quint8 direction)
{
    return quint64{number} << 8 | direction;
}

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

std::vector<CheckedObject> readObjects(ObjectDataBase &store, quint8 line)
{
    std::vector<CheckedObject> objects;
    for (const ObjectDataBase::IndexEntry &entry : store.getAllIndices(line))
        objects.push_back({entry.index, entry.data, {}});
    auto object = objects.begin();
    for (const ObjectDataBase::SubEntry &entry : store.getAllSubIndices(line)) {
        while (object != objects.end() && object->index < entry.index)
            ++object;
        if (object != objects.end() && object->index == entry.index)
            object->subs.push_back({entry.index, entry.subindex, entry.data});
    }
    return objects;
}

/// Collects signals under the messages that they belong to.
template <class Message>
void distribute(const QList<StoreRecords::SPN> &all, std::vector<Message> &messages,
                const QHash<quint64, size_t> &places, std::vector<CheckedSignal> Message::*signalList)
{
    for (const StoreRecords::SPN &data : all) {
        if (const auto place = places.constFind(messageKey(data.pgnnumber, data.direction)); place != places.cend())
            (messages[*place].*signalList).push_back({.data = data});
    }
    for (Message &message : messages)
        placeSignals(message.*signalList);
}

std::vector<CheckedPGN> readPgns(ObjectDataBase &store, quint8 line)
{
    std::vector<CheckedPGN> pgns;
    QHash<quint64, size_t> places;
    for (const StoreRecords::PGN &data : store.getAllPGNs(line)) {
        if (!isChecked(data.direction))
            continue;
        places.insert(messageKey(data.number, data.direction), pgns.size());
        pgns.push_back({.data = data, .spns = {}});
    }
    distribute(store.getAllSPNs(line), pgns, places, &CheckedPGN::spns);
    for (CheckedPGN &pgn : pgns) {
        for (const CheckedSignal &spn : pgn.spns)
            pgn.bits = std::max(pgn.bits, spn.data.bitposition + spn.bits);
    }
    return pgns;
}

std::vector<CheckedCanId> readCanIds(ObjectDataBase &store, quint8 line)
{
    std::vector<CheckedCanId> canIds;
    QHash<quint64, size_t> places;
    for (const StoreRecords::CANID &data : store.getAllCANIDs(line)) {
        if (!isChecked(data.direction))
            continue;
        places.insert(messageKey(data.id, data.direction), canIds.size());
        canIds.push_back({.data = data, .signalList = {}});
    }
    distribute(store.getAllDataElements(line), canIds, places, &CheckedCanId::signalList);
    for (CheckedCanId &canId : canIds) {
        for (const CheckedSignal &signal : canId.signalList)
            canId.bits += signal.bits;
    }
    return canIds;
}

/// The first signal of each variable.
template <class Message>
QHash<QString, const CheckedSignal *> variablesOf(const std::vector<Message> &messages,
                                                  std::vector<CheckedSignal> Message::*signalList)
{
    QHash<QString, const CheckedSignal *> first;
    for (const Message &message : messages) {
        for (const CheckedSignal &signal : message.*signalList) {
            const QString &variable = signal.data.varname;
            if (!variable.isEmpty() && !first.contains(variable))
                first.insert(variable, &signal);
        }
    }
    return first;
}

LineSettings readSettings(ObjectDataBase &store, quint8 line)
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

} // namespace

QString CheckedSubindex::variable(quint8 line) const
{
    if (data.implementation != CANopen::Implementation::Variable)
        return {};
    return Helper::substituteVariables(data.varname.trimmed(), index, subindex, line);
}

const CheckedSubindex *CheckedObject::sub(quint8 subindex) const
{
    const auto it = std::ranges::lower_bound(subs, subindex, {}, &CheckedSubindex::subindex);
    return it != subs.end() && it->subindex == subindex ? &*it : nullptr;
}

std::optional<quint64> CheckedObject::value(quint8 subindex) const
{
    const CheckedSubindex *found = sub(subindex);
    return found ? plainValue(found->data.defaultvalue) : std::nullopt;
}

bool CheckedObject::isComplex() const
{
    return data.objecttype == CANopen::Array || data.objecttype == CANopen::Record;
}

CheckedLine::CheckedLine(ObjectDataBase &store, quint8 line)
    : store_(store)
    , line_(line)
    , settings_(readSettings(store, line))
{
}

const std::vector<CheckedObject> &CheckedLine::objects()
{
    if (!objects_)
        objects_ = readObjects(store_, line_);
    return *objects_;
}

const CheckedObject *CheckedLine::object(quint16 index)
{
    const auto it = std::ranges::lower_bound(objects(), index, {}, &CheckedObject::index);
    return it != objects_->end() && it->index == index ? &*it : nullptr;
}

const CheckedSubindex *CheckedLine::sub(quint16 index, quint8 subindex)
{
    const CheckedObject *found = object(index);
    return found ? found->sub(subindex) : nullptr;
}

const std::vector<CheckedPGN> &CheckedLine::pgns()
{
    if (!pgns_)
        pgns_ = readPgns(store_, line_);
    return *pgns_;
}

const std::vector<CheckedCanId> &CheckedLine::canIds()
{
    if (!canIds_)
        canIds_ = readCanIds(store_, line_);
    return *canIds_;
}

const CheckedSubindex *CheckedLine::firstUserOf(const QString &variable)
{
    if (!variables_) {
        variables_.emplace();
        for (const CheckedObject &object : objects()) {
            for (const CheckedSubindex &sub : object.subs) {
                if (const QString name = sub.variable(line_); !name.isEmpty() && !variables_->contains(name))
                    variables_->insert(name, &sub);
            }
        }
    }
    return variables_->value(variable);
}

const CheckedSignal *CheckedLine::firstSpnWith(const QString &variable)
{
    if (!spnVariables_)
        spnVariables_ = variablesOf(pgns(), &CheckedPGN::spns);
    return spnVariables_->value(variable);
}

const CheckedSignal *CheckedLine::firstSignalWith(const QString &variable)
{
    if (!signalVariables_)
        signalVariables_ = variablesOf(canIds(), &CheckedCanId::signalList);
    return signalVariables_->value(variable);
}

std::optional<quint64> CheckedLine::cobIdKey(const CheckedObject &communication) const
{
    const std::optional<StoreValue> cobId = PDO::cobIdOf(communication);
    if (!cobId)
        return {};
    const quint64 canId = cobId->magnitude & CAN::identifierBits;
    if (!cobId->nodeRelative)
        return canId;
    // Without a fixed node-id a relative COB-ID can only be held against another.
    constexpr quint64 relativeMark = quint64{1} << 32;
    return settings_.nodeId ? canId + *settings_.nodeId : canId | relativeMark;
}

std::optional<quint16> CheckedLine::firstPdoLike(const CheckedObject &communication)
{
    if (!pdos_) {
        pdos_.emplace();
        for (const CheckedObject &object : objects()) {
            const auto key = PDO::isCommunication(object.index) ? cobIdKey(object) : std::nullopt;
            if (key && PDO::isEnabled(&object) && !pdos_->contains(*key))
                pdos_->insert(*key, object.index);
        }
    }
    const auto key = cobIdKey(communication);
    const auto first = key ? pdos_->constFind(*key) : pdos_->cend();
    return first != pdos_->cend() ? std::optional(*first) : std::nullopt;
}

bool CheckedLine::hasCanId(quint32 id, quint8 direction)
{
    if (!canIdKeys_) {
        canIdKeys_.emplace();
        for (const CheckedCanId &canId : canIds())
            canIdKeys_->insert(messageKey(canId.data.id, canId.direction()));
    }
    return canIdKeys_->contains(messageKey(id, direction));
}

void CheckedLine::replace(quint16 index, quint8 subindex, const StoreRecords::SubIndexData &data)
{
    variables_.reset();
    pdos_.reset();
    if (!objects_)
        return;
    const auto object = std::ranges::lower_bound(*objects_, index, {}, &CheckedObject::index);
    if (object == objects_->end() || object->index != index)
        return;
    const auto sub = std::ranges::lower_bound(object->subs, subindex, {}, &CheckedSubindex::subindex);
    if (sub != object->subs.end() && sub->subindex == subindex)
        sub->data = data;
}
