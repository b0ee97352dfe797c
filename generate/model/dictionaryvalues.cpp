#include "generate/model/dictionarycollect.h"

#include "generate/model/serviceobjects.h"
#include "nodedict/access.h"
#include "nodedict/canopendatatype.h"
#include "texttools/helper.h"

#include <algorithm>

using namespace Qt::StringLiterals;
using CANopen::Implementation;
using Entry = StoreRecords::SubEntry;

namespace {

/// Every subindex of all lines by line, index and subindex.
template <typename Visit>
void forEachSub(const DictionaryTables &tables, const Visit &visit)
{
    for (const DictionaryLine &line : tables.lines) {
        for (const LineObject &object : line.objects)
            std::ranges::for_each(object.subs, visit);
    }
}

bool isSharedElsewhere(const Entry &sub)
{
    return sub.data.sharedlines && sub.line != 0;
}

bool isWritable(const StoreRecords::SubIndexData &data)
{
    return CANopen::isWritable(data.accesstype) && CANopen::accessOf(data.accesstype);
}

/// What the stack knows of the limits of a type: wide numbers have none.
bool hasLimits(ValueType type)
{
    switch (type) {
    case ValueType::U24:
    case ValueType::U40:
    case ValueType::U48:
    case ValueType::U64:
        return false;
    default:
        return true;
    }
}

/// Limits of signed numbers are decimal; those of unsigned ones may have a prefix.
bool hasDecimalLimits(ValueType type)
{
    return type == ValueType::I8 || type == ValueType::I16 || type == ValueType::I24 || type == ValueType::I32;
}

void appendText(TextArray &array, Positions &positions, quint32 key, const QString &text, quint32 size)
{
    positions.insert(key, static_cast<quint16>(array.texts.size()));
    array.texts.push_back(text);
    array.sizes.push_back(size);
}

std::optional<TextTable> textTableOf(quint16 dataType)
{
    switch (dataType) {
    case CAN::VisibleString:
        return TextTable::VisibleString;
    case CAN::Utf8String:
        return TextTable::Utf8String;
    case CAN::OctetString:
        return TextTable::OctetString;
    case CAN::Domain:
        return TextTable::Domain;
    default:
        return std::nullopt;
    }
}

QByteArray defaultBytes(const QString &text)
{
    return text.startsWith("|x"_L1) ? Helper::hexPairs(QStringView(text).sliced(2)) : text.toUtf8();
}

} // namespace

void DictionaryCollect::managedVariables(DictionaryTables &tables)
{
    forEachSub(tables, [&](const Entry &sub) {
        const auto type = valueTypeOf(sub.data.datatype);
        if (sub.data.implementation != Implementation::ManagedVariable || !type ||
            ServiceObjects::keepsValue(sub.index, sub.subindex) || isSharedElsewhere(sub))
            return;
        ValueArray &array = tables.managed[valueTypePlace(*type)];
        const quint32 key = subKey(sub);
        tables.variableIndexMap.insert(key, static_cast<quint16>(array.values.size()));
        array.values.push_back(parseValue(*type, sub.data.defaultvalue));
        array.keys.push_back(key);
    });
}

void DictionaryCollect::constants(DictionaryTables &tables)
{
    forEachSub(tables, [&](const Entry &sub) {
        const StoreRecords::SubIndexData &data = sub.data;
        const quint32 key = subKey(sub);
        // The node-id is added at run time; the constant is what it is added to.
        QString text = data.defaultvalue;
        text.remove("$nodeid+"_L1, Qt::CaseInsensitive);
        if (const auto type = valueTypeOf(data.datatype)) {
            tables.defaultIndexMap.insert(key, tables.constants.add(parseValue(*type, text)));
            if (!tables.limitCheck || !isWritable(data) || !hasLimits(*type))
                return;
            const auto limits = declaredLimits(data);
            if (!limits)
                return;
            const int base = hasDecimalLimits(*type) ? 10 : 0;
            tables.lowerLimitIndexMap.insert(key, tables.constants.add(parseValue(*type, limits->low, base)));
            tables.upperLimitIndexMap.insert(key, tables.constants.add(parseValue(*type, limits->high, base)));
        } else if (data.implementation == Implementation::ManagedConst) {
            if (data.datatype == CAN::VisibleString || data.datatype == CAN::OctetString)
                appendText(tables.visibleStrings, tables.defaultIndexMap, key, text, data.size);
            else if (data.datatype == CAN::Utf8String)
                appendText(tables.utf8Strings, tables.defaultIndexMap, key, text, data.size);
        }
    });
}

void DictionaryCollect::stringDefaults(DictionaryTables &tables)
{
    quint32 offset = 0;
    forEachSub(tables, [&](const Entry &sub) {
        const bool isString = sub.data.datatype == CAN::VisibleString || sub.data.datatype == CAN::OctetString;
        if (sub.data.implementation != Implementation::Variable || !isString || !tables.line(sub.line)->isDevice())
            return;
        const quint32 key = subKey(sub);
        tables.stringSizeMap.insert(key, sub.data.size);
        tables.stringOffsetMap.insert(key, offset);
        tables.stringDefaultMap.insert(key, {sub.data.defaultvalue, defaultBytes(sub.data.defaultvalue)});
        offset += sub.data.size;
    });
}

std::optional<COHelper::Limits> DictionaryCollect::declaredLimits(const StoreRecords::SubIndexData &data)
{
    return data.limitineds ? COHelper::declaredLimits(data.datatype, data.lowlimit, data.uplimit) : std::nullopt;
}

QString DictionaryCollect::variableAddress(const QString &name)
{
    if (name.isEmpty())
        return u"NULL"_s;
    return name.contains(u'(') ? name : u"&(%1)"_s.arg(name);
}

void DictionaryCollect::applicationVariables(DictionaryTables &tables)
{
    forEachSub(tables, [&](const Entry &sub) {
        const quint32 key = subKey(sub);
        if (sub.data.implementation != Implementation::Variable || tables.staticSrdoObjects.contains(key))
            return;
        VariableArray *array = nullptr;
        if (const auto type = valueTypeOf(sub.data.datatype))
            array = &tables.pointers[valueTypePlace(*type)];
        else if (const auto table = textTableOf(sub.data.datatype))
            array = &tables.textVariables[static_cast<std::size_t>(*table)];
        else
            return;
        tables.variableIndexMap.insert(key, static_cast<quint16>(array->names.size()));
        array->names.push_back(filledText(sub.data.varname, sub));
        array->sizes.push_back(sub.data.size);
        array->keys.push_back(key);
    });
}
