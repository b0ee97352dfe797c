#include "generate/model/dictionarytables.h"

#include "generate/base/runcontext.h"
#include "generate/model/dictionarycollect.h"
#include "generate/model/linesettings.h"
#include "store/objectdatabase.h"
#include "store/settings.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

using Entry = StoreRecords::SubEntry;

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
quint8 compactLimit(const LineObject &object)
{
    if (object.index < firstCompactIndex || object.subs.size() < 3)
        return notCompact;
    quint8 limit = notCompact;
    const Entry &last = object.subs.back();
    for (std::size_t i = object.subs.size() - 1; i > 0 && object.subs[i - 1].subindex > 0; --i) {
        const Entry &previous = object.subs[i - 1];
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

void readLines(DictionaryTables &tables, ObjectDataBase &store)
{
    for (const quint8 number : LineSettings::stackLines(store)) {
        DictionaryLine line{{store, number}};
        if (tables.options.compactDescription)
            std::ranges::for_each(line.objects, [](LineObject &each) { each.compactLimit = compactLimit(each); });
        if (line.isDevice())
            tables.lineList.push_back(number);
        if (!line.objects.empty())
            tables.lines.push_back(std::move(line));
    }
    if (tables.lineList.empty())
        tables.lineList.push_back(0);
    tables.multiLine = tables.options.serverMode ? tables.line(1) || RunContext::generatesMultiLine(store)
                                                 : LineSettings::severalLines(store);
}

/// The objects that the mapping of SRDOs names: 0xIIIISSLL in each subindex of a mapping object.
void readStaticSrdoObjects(DictionaryTables &tables)
{
    for (const DictionaryLine &line : tables.lines) {
        for (const LineObject &object : line.range(CANopen::Index::staticSrdoMappings)) {
            for (const Entry &sub : object.subs) {
                const quint32 mapped = defaultNumber(&sub);
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

const DictionaryLine *DictionaryTables::line(quint8 number) const
{
    const auto it = std::ranges::lower_bound(lines, number, {}, &DictionaryLine::number);
    return it == lines.end() || it->number != number ? nullptr : &*it;
}

const Entry *DictionaryTables::sub(quint8 number, quint16 index, quint8 subindex) const
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
