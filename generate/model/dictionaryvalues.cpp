#include "generate/model/dictionarycollect.h"
#include "nodedict/canopendatatype.h"
#include "texttools/helper.h"

#include <algorithm>

using namespace Qt::StringLiterals;
using DictionaryCollect::Objects;
using DictionaryCollect::Subs;

namespace {

// What the stack keeps by itself, so that there is no array element for it.
constexpr Objects servedObjects[] = {
    {0x1005, 0x1006, Subs::All},     {0x100C, 0x100D, Subs::All}, {0x1010, 0x1011, Subs::NotZero},
    {0x1012, 0x1012, Subs::All},     {0x1016, 0x1017, Subs::All}, {0x1019, 0x1019, Subs::All},
    {0x1028, 0x1028, Subs::NotZero}, {0x1029, 0x1029, Subs::One}, {0x102A, 0x102A, Subs::All},
    {0x1200, 0x12FF, Subs::NotZero}, {0x1300, 0x1300, Subs::All}, {0x1301, 0x13FF, Subs::NotZero},
    {0x1400, 0x1BFF, Subs::NotZero}, {0x1F10, 0x1F11, Subs::All}, {0x1F81, 0x1F82, Subs::NotZero},
};

bool isServedByStack(quint16 index, quint8 subindex)
{
    return std::ranges::any_of(servedObjects, [&](const Objects &each) { return each.hold(index, subindex); });
}

/// Every subindex of all lines by line, index and subindex.
template <typename Visit>
void forEachSub(const DictionaryTables &tables, const Visit &visit)
{
    for (const DictionaryLine &line : tables.lines) {
        for (const DictionaryObject &object : line.objects) {
            for (const DictionarySub &sub : object.subs)
                visit(line, object, sub);
        }
    }
}

bool isSharedElsewhere(const DictionaryLine &line, const DictionarySub &sub)
{
    return sub.data.sharedlines && line.number != 0;
}

bool isWritable(const StoreRecords::SubIndexData &data)
{
    static const QStringList writable{u"rw"_s, u"rwr"_s, u"rww"_s, u"wo"_s};
    return writable.contains(data.accesstype);
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

void appendText(TextArray &array, QMap<quint32, quint16> &positions, quint32 key, const QString &text, quint32 size)
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
    forEachSub(tables, [&](const DictionaryLine &line, const DictionaryObject &object, const DictionarySub &sub) {
        const auto type = valueTypeOf(sub.data.datatype);
        if (sub.data.implementation != ManagedVariable || !type || isServedByStack(object.index, sub.subindex) ||
            isSharedElsewhere(line, sub))
            return;
        ValueArray &array = tables.managed[static_cast<std::size_t>(*type)];
        const quint32 key = subKey(line.number, object.index, sub.subindex);
        tables.variableIndexMap.insert(key, static_cast<quint16>(array.values.size()));
        array.values.push_back(parseValue(*type, sub.data.defaultvalue));
        array.keys.push_back(key);
    });
}

void DictionaryCollect::constants(DictionaryTables &tables)
{
    forEachSub(tables, [&](const DictionaryLine &line, const DictionaryObject &object, const DictionarySub &sub) {
        const StoreRecords::SubIndexData &data = sub.data;
        const quint32 key = subKey(line.number, object.index, sub.subindex);
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
        } else if (data.implementation == ManagedConst) {
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
    forEachSub(tables, [&](const DictionaryLine &line, const DictionaryObject &object, const DictionarySub &sub) {
        const bool isString = sub.data.datatype == CAN::VisibleString || sub.data.datatype == CAN::OctetString;
        if (!line.isDevice() || sub.data.implementation != Variable || !isString)
            return;
        const quint32 key = subKey(line.number, object.index, sub.subindex);
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

QString DictionaryCollect::variableName(const DictionarySub &sub, quint16 index, quint8 line)
{
    return Helper::substituteVariables(sub.data.varname, index, sub.subindex, line);
}

QString DictionaryCollect::variableAddress(const QString &name)
{
    if (name.isEmpty())
        return u"NULL"_s;
    return name.contains(u'(') ? name : u"&(%1)"_s.arg(name);
}

void DictionaryCollect::applicationVariables(DictionaryTables &tables)
{
    forEachSub(tables, [&](const DictionaryLine &line, const DictionaryObject &object, const DictionarySub &sub) {
        const quint32 key = subKey(line.number, object.index, sub.subindex);
        if (sub.data.implementation != Variable || tables.staticSrdoObjects.contains(key))
            return;
        VariableArray *array = nullptr;
        if (const auto type = valueTypeOf(sub.data.datatype))
            array = &tables.pointers[static_cast<std::size_t>(*type)];
        else if (const auto table = textTableOf(sub.data.datatype))
            array = &tables.textVariables[static_cast<std::size_t>(*table)];
        else
            return;
        tables.variableIndexMap.insert(key, static_cast<quint16>(array->names.size()));
        array->names.push_back(variableName(sub, object.index, line.number));
        array->sizes.push_back(sub.data.size);
        array->keys.push_back(key);
    });
}
