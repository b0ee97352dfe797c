#include "generate/model/objectrecords.h"

#include "nodedict/cohelper.h"
#include "store/objectdatabase.h"
#include "texttools/helper.h"

#include <algorithm>

ObjectReader::ObjectReader(ObjectDataBase &store, quint8 line, quint16 first)
    : line_(line)
    , objects_(store.getIndices(line, first, 0xffff))
    , subs_(store.getAllSubIndices(line))
{
}

ObjectRecords ObjectReader::read(quint16 index) const
{
    ObjectRecords records{.line = line_, .index = index, .object = objects_.value(index), .subs = {}};
    auto entry = std::ranges::lower_bound(subs_, index, {}, &ObjectDataBase::SubEntry::index);
    for (; entry != subs_.end() && entry->index == index; ++entry)
        records.subs.append({entry->subindex, entry->data});
    return records;
}

bool ObjectRecords::isGroup() const
{
    return object.objecttype == CANopen::Array || object.objecttype == CANopen::Record;
}

const ObjectRecords::Sub *ObjectRecords::sub(quint8 subindex) const
{
    const auto found = std::ranges::lower_bound(subs, subindex, {}, &Sub::subindex);
    return found != subs.end() && found->subindex == subindex ? &*found : nullptr;
}

QString ObjectRecords::name() const
{
    return Helper::substituteVariables(object.name, index, 0, line);
}

QString ObjectRecords::name(const Sub &sub) const
{
    return Helper::substituteVariables(sub.data.name, index, sub.subindex, line);
}

QString ObjectRecords::plainDescription() const
{
    const Sub *own = sub(0);
    const QString text = own ? own->data.description : QString();
    if (text.isEmpty() || object.description.isEmpty() || text == object.description)
        return text.isEmpty() ? object.description : text;
    return text + u'\n' + object.description;
}
