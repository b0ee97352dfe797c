#include "generate/model/linedictionary.h"

#include "nodedict/cohelper.h"
#include "store/objectdatabase.h"
#include "texttools/helper.h"
#include "texttools/numbertext.h"

#include <algorithm>
#include <utility>

namespace {

using Entry = StoreRecords::SubEntry;

std::pair<quint16, quint8> placeOf(const Entry &entry)
{
    return {entry.index, entry.subindex};
}

template <typename Entries>
const Entry *find(const Entries &entries, quint16 index, quint8 subindex)
{
    const auto found = std::ranges::lower_bound(entries, std::pair(index, subindex), {}, placeOf);
    return found != entries.end() && placeOf(*found) == std::pair(index, subindex) ? &*found : nullptr;
}

} // namespace

const Entry *LineObject::sub(quint8 subindex) const
{
    return find(subs, index, subindex);
}

bool LineObject::isGroup() const
{
    return data.objecttype == CANopen::Array || data.objecttype == CANopen::Record;
}

bool LineObject::isVirtual() const
{
    const Entry *first = sub(0);
    return first && first->data.implementation == CANopen::Implementation::VirtualObject;
}

QString LineObject::name() const
{
    return Helper::substituteVariables(data.name, index, 0, line);
}

QString LineObject::description() const
{
    return Helper::substituteVariables(data.description, index, 0, line);
}

QString LineObject::plainDescription() const
{
    const Entry *own = sub(0);
    const QString text = own ? own->data.description : QString();
    if (text.isEmpty() || data.description.isEmpty() || text == data.description)
        return text.isEmpty() ? data.description : text;
    return text + u'\n' + data.description;
}

QString filledText(const QString &text, const Entry &sub)
{
    return Helper::substituteVariables(text, sub.index, sub.subindex, sub.line);
}

quint32 defaultNumber(const Entry *sub)
{
    return sub ? NumberText::byPrefix(sub->data.defaultvalue).value_or(0) : 0;
}

LineDictionary::LineDictionary(ObjectDataBase &store, quint8 line, quint16 first)
    : number(line)
    , indices_(store.getAllIndices(line))
    , entries_(store.getAllSubIndices(line))
{
    auto next = entries_.cbegin();
    const auto isBelow = [](const Entry &entry, quint32 index) { return entry.index < index; };
    for (const StoreRecords::IndexEntry &object : std::as_const(indices_)) {
        if (object.index < first)
            continue;
        const auto begin = std::lower_bound(next, entries_.cend(), quint32{object.index}, isBelow);
        next = std::lower_bound(begin, entries_.cend(), object.index + 1U, isBelow);
        objects.push_back({.line = line, .index = object.index, .data = object.data, .subs = {begin, next}});
    }
}

const LineObject *LineDictionary::object(quint16 index) const
{
    const auto found = std::ranges::lower_bound(objects, index, {}, &LineObject::index);
    return found != objects.end() && found->index == index ? &*found : nullptr;
}

std::span<const LineObject> LineDictionary::range(CANopen::IndexRange indices) const
{
    return {std::ranges::lower_bound(objects, indices.first, {}, &LineObject::index),
            std::ranges::upper_bound(objects, indices.last, {}, &LineObject::index)};
}

quint32 LineDictionary::subCount(quint16 index) const
{
    const LineObject *owner = object(index);
    return owner ? static_cast<quint32>(owner->subs.size()) : 0;
}

const Entry *LineDictionary::sub(quint16 index, quint8 subindex) const
{
    const LineObject *owner = object(index);
    return owner ? owner->sub(subindex) : nullptr;
}

const Entry *LineDictionary::entry(quint16 index, quint8 subindex) const
{
    return find(entries_, index, subindex);
}
