#include "generate/model/dictionarycollect.h"

#include "generate/model/serviceobjects.h"
#include "nodedict/access.h"
#include "nodedict/canopendatatype.h"
#include "nodedict/cohelper.h"

#include <algorithm>

using namespace Qt::StringLiterals;
using CANopen::Access;
using CANopen::Implementation;
using Entry = StoreRecords::SubEntry;

namespace {

/// What an access lets the stack do; with an unknown one it does all that a client asks for.
Attributes accessAttribute(const QString &access)
{
    if (access == Access::Const || access == Access::ReadOnly)
        return Attribute::Readable;
    return access == Access::WriteOnly ? Attribute::Writable : Attribute::Readable | Attribute::Writable;
}

Attributes descriptionAttributes(const StoreRecords::SubIndexData &data, bool compact)
{
    Attributes attributes = DictionaryCollect::accessAttributes(data);
    attributes.setFlag(Attribute::HasDefault, data.defaultineds);
    attributes.setFlag(Attribute::HasLimits, DictionaryCollect::declaredLimits(data).has_value());
    attributes.setFlag(Attribute::Stored, data.nvstorage);
    attributes.setFlag(Attribute::Compact, compact);
    return attributes;
}

quint16 valueColumn(const DictionaryTables &tables, const Entry &sub)
{
    const quint32 key = subKey(sub);
    if (sub.data.implementation == Implementation::ManagedConst)
        return tables.defaultIndexMap.value(key);
    if (const auto value = ServiceObjects::value(sub.index, sub.subindex))
        return *value;
    if (tables.staticSrdoObjects.contains(key))
        return sub.index;
    return tables.variableIndexMap.value(sub.data.sharedlines ? subKey(0, sub.index, sub.subindex) : key);
}

DescriptionRow descriptionRow(const DictionaryTables &tables, const LineObject &object, const Entry &sub)
{
    const quint32 key = subKey(sub);
    const bool compact = object.compactLimit != notCompact && sub.subindex == object.compactLimit;
    return {
        .line = sub.line,
        .index = sub.index,
        .subindex = sub.subindex,
        .dataType = sub.data.datatype,
        .specifier = DictionaryCollect::specifier(sub, tables.staticSrdoObjects.contains(key)),
        .value = valueColumn(tables, sub),
        .attributes = descriptionAttributes(sub.data, compact),
        .defaultPosition = tables.defaultIndexMap.value(key),
        .lowerPosition = tables.lowerLimitIndexMap.value(key),
        .upperPosition = tables.upperLimitIndexMap.value(key),
    };
}

void describeObject(DictionaryTables &tables, const LineObject &object)
{
    // Without a subindex 0 the object begins with the first that it has.
    tables.descriptionStartMap.insert(objectKey(object.line, object.index),
                                      static_cast<quint16>(tables.description.size()));
    for (const Entry &sub : object.subs) {
        if (sub.subindex > object.compactLimit)
            break;
        if (sub.data.implementation == Implementation::VirtualObject)
            continue;
        ++tables.descriptionCount;
        if (object.line == 0 || !sub.data.sharedlines)
            tables.description.push_back(descriptionRow(tables, object, sub));
    }
}

AssignRow assignRow(const DictionaryTables &tables, const LineObject &object)
{
    const Entry *first = object.sub(0);
    const quint8 owner = first && first->data.sharedlines ? quint8{0} : object.line;
    const auto counts = [&](const Entry &sub) {
        return tables.options.compactDescription ? sub.subindex <= object.compactLimit
                                                 : sub.data.implementation != Implementation::VirtualObject;
    };
    return {
        .index = object.index,
        .subs = static_cast<quint32>(std::ranges::count_if(object.subs, counts)),
        .highest = object.highestSubindex(),
        .objectType = DictionaryCollect::objectTypeWord(object.data.objecttype),
        .start = tables.descriptionStartMap.value(objectKey(owner, object.index)),
    };
}

} // namespace

QLatin1StringView DictionaryCollect::objectTypeWord(quint32 objectType)
{
    switch (objectType) {
    case CANopen::Domain:
        return "CO_ODTYPE_DOM"_L1;
    case CANopen::Var:
        return "CO_ODTYPE_VAR"_L1;
    case CANopen::Array:
        return "CO_ODTYPE_ARRAY"_L1;
    case CANopen::Record:
        return "CO_ODTYPE_STRUCT"_L1;
    default:
        return "invalid"_L1;
    }
}

QLatin1StringView DictionaryCollect::specifier(const Entry &sub, bool staticSrdo)
{
    if (sub.data.implementation == Implementation::ManagedConst)
        return "_CONST"_L1;
    if (const QLatin1StringView service = ServiceObjects::specifier(sub.index, sub.subindex); !service.isEmpty())
        return service;
    if (staticSrdo)
        return "_SRDO"_L1;
    return sub.data.implementation == Implementation::ManagedVariable ? "_VAR"_L1 : "_PTR"_L1;
}

Attributes DictionaryCollect::accessAttributes(const StoreRecords::SubIndexData &data)
{
    Attributes attributes = accessAttribute(data.accesstype);
    const bool isMappable = data.pdomapping != PDOMapping::Forbidden;
    attributes.setFlag(Attribute::Numeric, data.datatype < CAN::VisibleString || data.datatype == CAN::Unsigned24);
    attributes.setFlag(Attribute::Transmitted, isMappable && CANopen::fitsTransmitPdo(data.accesstype));
    attributes.setFlag(Attribute::Received, isMappable && CANopen::fitsReceivePdo(data.accesstype));
    return attributes;
}

void DictionaryCollect::rows(DictionaryTables &tables)
{
    for (DictionaryLine &line : tables.lines) {
        for (const LineObject &object : line.objects)
            describeObject(tables, object);
        line.descriptionCount = static_cast<quint32>(tables.description.size());
    }
    for (DictionaryLine &line : tables.lines) {
        line.assignStart = static_cast<quint32>(tables.assign.size());
        for (const LineObject &object : line.objects) {
            if (!object.isVirtual())
                tables.assign.push_back(assignRow(tables, object));
        }
        line.assignCount = static_cast<quint32>(tables.assign.size()) - line.assignStart;
    }
    tables.assignCount = static_cast<quint32>(tables.assign.size());
}
