#include "check/checkedline.h"

#include "store/objectdatabase.h"

#include <algorithm>
#include <array>

namespace {

constexpr std::array directions{ObjectDataBase::receive, ObjectDataBase::transmit};

std::vector<CheckedObject> readObjects(ObjectDataBase &store, quint8 line)
{
    std::vector<CheckedObject> objects;
    for (const quint16 index : store.getIndexList(line, 0, 0xFFFF)) {
        CheckedObject &object = objects.emplace_back();
        object.index = index;
        store.getIndex(line, index, object.data);
        for (const quint8 subindex : store.getSubIndexList(line, index)) {
            CheckedSubindex &sub = object.subs.emplace_back();
            sub.subindex = subindex;
            store.getSubIndex(line, index, subindex, sub.data);
        }
    }
    return objects;
}

std::vector<CheckedPGN> readPgns(ObjectDataBase &store, quint8 line)
{
    std::vector<CheckedPGN> pgns;
    store.cacheSPNs(line);
    for (const quint8 direction : directions) {
        for (const quint32 number : store.getPGNList(line, direction)) {
            CheckedPGN &pgn = pgns.emplace_back();
            pgn.direction = direction;
            store.getPGN(line, number, direction, pgn.data);
            for (const quint32 spn : store.getSPNList(line, number, direction))
                store.getSPN(line, number, direction, spn, pgn.spns.emplace_back());
        }
    }
    store.clearSPNCache();
    return pgns;
}

std::vector<CheckedCanId> readCanIds(ObjectDataBase &store, quint8 line)
{
    std::vector<CheckedCanId> canIds;
    for (const quint8 direction : directions) {
        for (const quint32 id : store.getCANIDList(line, direction)) {
            CheckedCanId &canId = canIds.emplace_back();
            canId.direction = direction;
            store.getCANID(line, id, direction, canId.data);
            for (const quint32 number : store.getDataElementList(line, id, direction))
                store.getDataElement(line, id, direction, number, canId.signalList.emplace_back());
        }
    }
    return canIds;
}

} // namespace

const CheckedSubindex *CheckedObject::sub(quint8 subindex) const
{
    const auto it = std::ranges::lower_bound(subs, subindex, {}, &CheckedSubindex::subindex);
    return it != subs.end() && it->subindex == subindex ? &*it : nullptr;
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

void CheckedLine::replace(quint16 index, quint8 subindex, const StoreRecords::SubIndexData &data)
{
    if (!objects_)
        return;
    const auto object = std::ranges::lower_bound(*objects_, index, {}, &CheckedObject::index);
    if (object == objects_->end() || object->index != index)
        return;
    const auto sub = std::ranges::lower_bound(object->subs, subindex, {}, &CheckedSubindex::subindex);
    if (sub != object->subs.end() && sub->subindex == subindex)
        sub->data = data;
}
