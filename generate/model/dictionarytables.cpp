#include "generate/model/dictionarytables.h"

#include "generate/model/dictionarycollect.h"
#include "store/objectdatabase.h"
#include "store/settings.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

/// The first object whose equal subindices may share a row: what lies below is small and fixed by CiA 301.
constexpr quint16 firstCompactIndex = 0x1200;
constexpr std::size_t positionLimit = 0x10000;

bool equalForStack(const StoreRecords::SubIndexData &a, const StoreRecords::SubIndexData &b)
{
    const auto columns = [](const StoreRecords::SubIndexData &data) {
        return std::tie(data.datatype, data.accesstype, data.lowlimit, data.uplimit, data.size, data.defaultineds,
                        data.limitineds, data.implementation, data.nvstorage, data.defaultvalue,
                        data.writedefaulttoeds);
    };
    return columns(a) == columns(b) && a.pdomapping == b.pdomapping && a.varname.simplified() == b.varname.simplified();
}

/// Walks from the last subindex down, as long as the subindices are equal. A gap met on the way means that the stack
/// cannot count on the tail.
quint8 compactLimit(const DictionaryObject &object)
{
    if (object.index < firstCompactIndex || object.subs.size() < 3)
        return notCompact;
    quint8 limit = notCompact;
    const DictionarySub &last = object.subs.back();
    for (std::size_t i = object.subs.size() - 1; i > 0 && object.subs[i - 1].subindex > 0; --i) {
        const DictionarySub &previous = object.subs[i - 1];
        if (previous.subindex + 1 != object.subs[i].subindex)
            return notCompact;
        if (!equalForStack(previous.data, last.data))
            break;
        limit = previous.subindex;
    }
    return limit;
}

void readSettings(DictionaryTables &tables, ObjectDataBase &store)
{
    const Settings settings(store);
    tables.canFd = settings.isOn(u"canfd_supported"_s);
    tables.limitCheck = settings.isOn(u"limit_check"_s);
    tables.stringDefaults = settings.isOn(u"generate_string_defaults"_s);
    tables.initStaticVariables = settings.isOn(u"init_static_variables"_s);
    tables.memorySpecifier = settings.text(u"static_memory_specifier"_s);
    tables.bitwiseMapping = settings.isOn(u"bitwise_mapping"_s);
}

std::vector<DictionaryObject> readObjects(ObjectDataBase &store, quint8 line, bool compact)
{
    std::vector<DictionaryObject> objects;
    const QMap<quint16, quint32> types = store.getObjectTypes(line, firstDictionaryIndex, 0xFFFF);
    for (auto type = types.begin(); type != types.end(); ++type)
        objects.push_back({.index = type.key(), .objectType = type.value()});
    auto object = objects.begin();
    for (const ObjectDataBase::SubKey &key : store.getSubKeys(line)) {
        while (object != objects.end() && object->index < key.index)
            ++object;
        if (object == objects.end())
            break;
        DictionarySub sub{.subindex = key.subindex};
        if (object->index == key.index && store.getSubIndex(line, key.index, key.subindex, sub.data))
            object->subs.push_back(std::move(sub));
    }
    if (compact)
        std::ranges::for_each(objects, [](DictionaryObject &each) { each.compactLimit = compactLimit(each); });
    return objects;
}

void readLines(DictionaryTables &tables, ObjectDataBase &store)
{
    QList<quint8> numbers = store.getNodeList();
    std::ranges::sort(numbers);
    for (const quint8 number : numbers) {
        if (number >= dictionaryLineLimit)
            break;
        DictionaryLine line{.number = number, .objects = readObjects(store, number, tables.options.compactDescription)};
        if (line.isDevice())
            tables.lineList.push_back(number);
        if (!line.objects.empty())
            tables.lines.push_back(std::move(line));
    }
    if (tables.lineList.empty())
        tables.lineList.push_back(0);
    tables.multiLine = tables.options.multiLine || tables.line(1) || store.getMiscSetting(u"generateML"_s) == "true"_L1;
}

/// The objects that the mapping of SRDOs names: 0xIIIISSLL in each subindex of a mapping object.
void readStaticSrdoObjects(DictionaryTables &tables)
{
    constexpr quint16 firstMapping = 0x1380;
    constexpr quint16 lastMapping = 0x13B0;
    for (const DictionaryLine &line : tables.lines) {
        for (const DictionaryObject &object : line.range(firstMapping, lastMapping)) {
            for (const DictionarySub &sub : object.subs) {
                const quint32 mapped = parseNumber(sub.data.defaultvalue);
                if (sub.subindex > 0)
                    tables.staticSrdoObjects.insert(
                        subKey(line.number, static_cast<quint16>(mapped >> 16), static_cast<quint8>(mapped >> 8)));
            }
        }
    }
}

bool exceedsPositions(const DictionaryTables &tables)
{
    for (std::size_t i = 0; i < valueTypeCount; ++i) {
        if (tables.managed[i].values.size() > positionLimit || tables.pointers[i].names.size() > positionLimit ||
            tables.constants.array(static_cast<ValueType>(i)).values.size() > positionLimit)
            return true;
    }
    const auto isLarge = [](const VariableArray &table) { return table.names.size() > positionLimit; };
    return std::ranges::any_of(tables.textVariables, isLarge) || tables.visibleStrings.texts.size() > positionLimit ||
           tables.utf8Strings.texts.size() > positionLimit || tables.description.size() > positionLimit;
}

} // namespace

const DictionarySub *DictionaryObject::sub(quint8 subindex) const
{
    const auto it = std::ranges::lower_bound(subs, subindex, {}, &DictionarySub::subindex);
    return it == subs.end() || it->subindex != subindex ? nullptr : &*it;
}

bool DictionaryObject::isVirtual() const
{
    const DictionarySub *first = sub(0);
    return first && first->data.implementation == VirtualObject;
}

const DictionaryObject *DictionaryLine::object(quint16 index) const
{
    const auto it = std::ranges::lower_bound(objects, index, {}, &DictionaryObject::index);
    return it == objects.end() || it->index != index ? nullptr : &*it;
}

const DictionarySub *DictionaryLine::sub(quint16 index, quint8 subindex) const
{
    const DictionaryObject *owner = object(index);
    return owner ? owner->sub(subindex) : nullptr;
}

std::span<const DictionaryObject> DictionaryLine::range(quint16 first, quint16 last) const
{
    return {std::ranges::lower_bound(objects, first, {}, &DictionaryObject::index),
            std::ranges::upper_bound(objects, last, {}, &DictionaryObject::index)};
}

std::size_t DictionaryLine::subCount(quint16 index) const
{
    const DictionaryObject *owner = object(index);
    return owner ? owner->subs.size() : 0;
}

const DictionaryLine *DictionaryTables::line(quint8 number) const
{
    const auto it = std::ranges::lower_bound(lines, number, {}, &DictionaryLine::number);
    return it == lines.end() || it->number != number ? nullptr : &*it;
}

const DictionarySub *DictionaryTables::sub(quint8 number, quint16 index, quint8 subindex) const
{
    const DictionaryLine *owner = line(number);
    return owner ? owner->sub(index, subindex) : nullptr;
}

QString DictionaryTables::lineSuffix(quint8 number) const
{
    if (!multiLine)
        return {};
    constexpr quint8 firstCapitalLine = 26;
    // The letters of the capital lines begin with "B": the names are part of what applications refer to.
    return QChar(number < firstCapitalLine ? u'a' + number : number + 40);
}

DictionaryTables collectDictionaryTables(ObjectDataBase &store, const DictionaryOptions &options)
{
    DictionaryTables tables;
    tables.options = options;
    readSettings(tables, store);
    readLines(tables, store);
    if (Settings(store).isOn(u"static_srdo_data"_s))
        readStaticSrdoObjects(tables);
    DictionaryCollect::managedVariables(tables);
    DictionaryCollect::constants(tables);
    if (tables.stringDefaults)
        DictionaryCollect::stringDefaults(tables);
    DictionaryCollect::applicationVariables(tables);
    DictionaryCollect::rows(tables);
    if (!options.serverMode)
        collectPdoTables(tables);
    if (exceedsPositions(tables))
        tables.error = u"The object dictionary needs more than 65536 places in one table."_s;
    return tables;
}
