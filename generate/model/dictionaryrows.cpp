#include "generate/model/dictionarycollect.h"
#include "nodedict/canopendatatype.h"
#include "nodedict/cohelper.h"

#include <algorithm>
#include <span>

using namespace Qt::StringLiterals;
using DictionaryCollect::Objects;
using DictionaryCollect::Subs;

namespace {

/// The part of the stack that serves a subindex.
struct SpecifierRule
{
    Objects objects;
    QLatin1StringView suffix;
};

// The first that fits counts.
constexpr SpecifierRule specifierRules[] = {
    {{0x1005, 0x1006, Subs::All}, "_SYNC"_L1},
    {{0x1019, 0x1019, Subs::All}, "_SYNC"_L1},
    {{0x1003, 0x1003, Subs::All}, "_EMCY"_L1},
    {{0x1014, 0x1015, Subs::All}, "_EMCY"_L1},
    {{0x1032, 0x1032, Subs::All}, "_EMCY"_L1},
    {{0x1028, 0x1028, Subs::NotZero}, "_EMCY"_L1},
    {{0x1016, 0x1016, Subs::NotZero}, "_ERRCTRL"_L1},
    {{0x100C, 0x100D, Subs::All}, "_ERRCTRL"_L1},
    {{0x1017, 0x1017, Subs::All}, "_ERRCTRL"_L1},
    {{0x1029, 0x1029, Subs::One}, "_ERRCTRL"_L1},
    {{0x1010, 0x1011, Subs::NotZero}, "_STORE"_L1},
    {{0x1012, 0x1012, Subs::All}, "_TIME"_L1},
    {{0x102A, 0x102A, Subs::All}, "_NMT"_L1},
    {{0x1F80, 0x1F82, Subs::All}, "_NMT"_L1},
    {{0x1200, 0x127F, Subs::NotZero}, "_SDO_SERVER"_L1},
    {{0x1280, 0x12FF, Subs::NotZero}, "_SDO_CLIENT"_L1},
    {{0x1300, 0x1300, Subs::All}, "_GFC"_L1},
    {{0x1301, 0x13F0, Subs::NotZero}, "_SRDO"_L1},
    {{0x13FE, 0x13FF, Subs::All}, "_SRDO"_L1},
    {{0x1400, 0x15FF, Subs::NotZero}, "_RPDO"_L1},
    {{0x1600, 0x17FF, Subs::All}, "_RMAP"_L1},
    {{0x1800, 0x19FF, Subs::NotZero}, "_TPDO"_L1},
    {{0x1A00, 0x1BFF, Subs::All}, "_TMAP"_L1},
    {{0x1F10, 0x1F11, Subs::All}, "_SRD"_L1},
    {{0x1F2C, 0x1F2C, Subs::NotZero}, "_NETWORK"_L1},
    {{0x1F90, 0x1F90, Subs::All}, "_FLYMA"_L1},
};

/// What the value column has for the objects of a service: the index less the base, which is 0 where the index itself
/// is asked for, and else makes a service number from 1.
struct ValueRule
{
    Objects objects;
    quint16 base;
};

constexpr ValueRule valueRules[] = {
    {{0x1003, 0x1003, Subs::All}, 0},          {{0x1005, 0x1006, Subs::All}, 0},
    {{0x100C, 0x100D, Subs::All}, 0},          {{0x102A, 0x102A, Subs::All}, 0},
    {{0x1014, 0x1015, Subs::All}, 0},          {{0x1017, 0x1017, Subs::All}, 0},
    {{0x1019, 0x1019, Subs::All}, 0},          {{0x1032, 0x1032, Subs::All}, 0},
    {{0x1301, 0x13F0, Subs::NotZero}, 0},      {{0x13FE, 0x13FF, Subs::All}, 0},
    {{0x1F80, 0x1F82, Subs::All}, 0},          {{0x1010, 0x1011, Subs::NotZero}, 0},
    {{0x1016, 0x1016, Subs::NotZero}, 0},      {{0x1028, 0x1028, Subs::NotZero}, 0},
    {{0x1F2C, 0x1F2C, Subs::NotZero}, 0},      {{0x1F90, 0x1F90, Subs::NotZero}, 0},
    {{0x1029, 0x1029, Subs::One}, 0},          {{0x1200, 0x127F, Subs::NotZero}, 0x11FF},
    {{0x1280, 0x12FF, Subs::NotZero}, 0x127F}, {{0x1400, 0x15FF, Subs::NotZero}, 0x13FF},
    {{0x1600, 0x17FF, Subs::All}, 0x15FF},     {{0x1800, 0x19FF, Subs::NotZero}, 0x17FF},
    {{0x1A00, 0x1BFF, Subs::All}, 0x19FF},
};

/// What an access type lets the stack do, and a PDO.
struct AccessRow
{
    QLatin1StringView access;
    QLatin1StringView attributes;
    bool mapTransmit;
    bool mapReceive;
};

constexpr auto readWrite = "CO_ATTR_READ | CO_ATTR_WRITE"_L1;
constexpr AccessRow accessRows[] = {
    {"const"_L1, "CO_ATTR_READ"_L1, true, false}, {"ro"_L1, "CO_ATTR_READ"_L1, true, false},
    {"wo"_L1, "CO_ATTR_WRITE"_L1, false, true},   {"rw"_L1, readWrite, true, true},
    {"rwr"_L1, readWrite, true, false},           {"rww"_L1, readWrite, false, true},
};
constexpr AccessRow unknownAccess{""_L1, readWrite, false, false};

QString descriptionAttributes(const StoreRecords::SubIndexData &data, bool compact)
{
    struct Flag
    {
        bool set;
        QLatin1StringView attribute;
    };
    QString attributes = DictionaryCollect::accessAttributes(data);
    for (const Flag &flag : {Flag{data.defaultineds, "CO_ATTR_DEFVAL"_L1},
                             Flag{DictionaryCollect::declaredLimits(data).has_value(), "CO_ATTR_LIMIT"_L1},
                             Flag{data.nvstorage, "CO_ATTR_STORE"_L1}, Flag{compact, "CO_ATTR_COMPACT"_L1}}) {
        if (flag.set)
            attributes += " | "_L1 + flag.attribute;
    }
    return attributes;
}

quint16 valueColumn(const DictionaryTables &tables, quint32 key, quint16 index, const DictionarySub &sub)
{
    if (sub.data.implementation == ManagedConst)
        return tables.defaultIndexMap.value(key);
    if (const auto value = DictionaryCollect::serviceValue(index, sub.subindex))
        return *value;
    if (tables.staticSrdoObjects.contains(key))
        return index;
    return tables.variableIndexMap.value(sub.data.sharedlines ? subKey(0, index, sub.subindex) : key);
}

DescriptionRow descriptionRow(const DictionaryTables &tables, quint8 line, const DictionaryObject &object,
                              const DictionarySub &sub)
{
    const quint32 key = subKey(line, object.index, sub.subindex);
    const bool compact = object.compactLimit != notCompact && sub.subindex == object.compactLimit;
    return {
        .line = line,
        .index = object.index,
        .subindex = sub.subindex,
        .dataType = sub.data.datatype,
        .specifier = DictionaryCollect::specifier(sub, object.index, tables.staticSrdoObjects.contains(key)),
        .value = valueColumn(tables, key, object.index, sub),
        .attributes = descriptionAttributes(sub.data, compact),
        .defaultPosition = tables.defaultIndexMap.value(key),
        .lowerPosition = tables.lowerLimitIndexMap.value(key),
        .upperPosition = tables.upperLimitIndexMap.value(key),
    };
}

void describeObject(DictionaryTables &tables, quint8 line, const DictionaryObject &object)
{
    // Without a subindex 0 the object begins with the first that it has.
    tables.descriptionStartMap.insert(objectKey(line, object.index), static_cast<quint16>(tables.description.size()));
    for (const DictionarySub &sub : object.subs) {
        if (sub.subindex > object.compactLimit)
            break;
        if (sub.data.implementation == VirtualObject)
            continue;
        ++tables.descriptionCount;
        if (line == 0 || !sub.data.sharedlines)
            tables.description.push_back(descriptionRow(tables, line, object, sub));
    }
}

AssignRow assignRow(const DictionaryTables &tables, quint8 line, const DictionaryObject &object)
{
    const DictionarySub *first = object.sub(0);
    const quint8 owner = first && first->data.sharedlines ? quint8{0} : line;
    const auto counts = [&](const DictionarySub &sub) {
        return tables.options.compactDescription ? sub.subindex <= object.compactLimit
                                                 : sub.data.implementation != VirtualObject;
    };
    return {
        .index = object.index,
        .subs = static_cast<quint32>(std::ranges::count_if(object.subs, counts)),
        .highest = object.subs.empty() ? quint8{0} : object.subs.back().subindex,
        .objectType = DictionaryCollect::objectTypeWord(object.objectType),
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

QLatin1StringView DictionaryCollect::specifier(const DictionarySub &sub, quint16 index, bool staticSrdo)
{
    if (sub.data.implementation == ManagedConst)
        return "_CONST"_L1;
    const auto rule = std::ranges::find_if(
        specifierRules, [&](const SpecifierRule &each) { return each.objects.hold(index, sub.subindex); });
    if (rule != std::end(specifierRules))
        return rule->suffix;
    if (staticSrdo)
        return "_SRDO"_L1;
    return sub.data.implementation == ManagedVariable ? "_VAR"_L1 : "_PTR"_L1;
}

QString DictionaryCollect::accessAttributes(const StoreRecords::SubIndexData &data)
{
    const auto known = std::ranges::find(accessRows, data.accesstype, &AccessRow::access);
    const AccessRow &row = known == std::end(accessRows) ? unknownAccess : *known;
    QString attributes;
    if (data.datatype < CAN::VisibleString || data.datatype == CAN::Unsigned24)
        attributes += "CO_ATTR_NUM | "_L1;
    attributes += row.attributes;
    if (data.pdomapping != PDOMapping::Forbidden && row.mapTransmit)
        attributes += " | CO_ATTR_MAP_TR"_L1;
    if (data.pdomapping != PDOMapping::Forbidden && row.mapReceive)
        attributes += " | CO_ATTR_MAP_REC"_L1;
    return attributes;
}

std::optional<quint16> DictionaryCollect::serviceValue(quint16 index, quint8 subindex)
{
    const auto rule =
        std::ranges::find_if(valueRules, [&](const ValueRule &each) { return each.objects.hold(index, subindex); });
    return rule == std::end(valueRules) ? std::nullopt : std::optional(static_cast<quint16>(index - rule->base));
}

void DictionaryCollect::rows(DictionaryTables &tables)
{
    for (DictionaryLine &line : tables.lines) {
        for (const DictionaryObject &object : line.objects)
            describeObject(tables, line.number, object);
        line.descriptionCount = static_cast<quint32>(tables.description.size());
    }
    for (DictionaryLine &line : tables.lines) {
        line.assignStart = static_cast<quint32>(tables.assign.size());
        for (const DictionaryObject &object : line.objects) {
            if (!object.isVirtual())
                tables.assign.push_back(assignRow(tables, line.number, object));
        }
        line.assignCount = static_cast<quint32>(tables.assign.size()) - line.assignStart;
    }
    tables.assignCount = static_cast<quint32>(tables.assign.size());
}
