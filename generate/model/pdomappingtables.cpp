#include "generate/model/pdomappingtables.h"

#include "generate/base/codewriter.h"
#include "generate/model/dictionarycollect.h"
#include "generate/model/dictionarytables.h"
#include "nodedict/access.h"

#include <QHash>

#include <algorithm>
#include <array>
#include <utility>

using namespace Qt::StringLiterals;
namespace Index = CANopen::Index;
using CANopen::Implementation;
using CANopen::IndexRange;
using Entry = StoreRecords::SubEntry;

namespace {

constexpr quint8 maxEntries = 64; ///< CiA 301; larger counts mark multiplexed PDOs

/// The mapping objects of a range of communication objects.
constexpr IndexRange mappingsOf(IndexRange pdos)
{
    return {static_cast<quint16>(pdos.first + Index::pdoMappingOffset),
            static_cast<quint16>(pdos.last + Index::pdoMappingOffset)};
}

std::size_t largestMapping(const DictionaryTables &tables)
{
    std::size_t rows = 0;
    for (const DictionaryLine &line : tables.lines) {
        if (!line.isDevice())
            continue;
        for (const IndexRange pdos : {Index::rpdos, Index::tpdos}) {
            for (const LineObject &object : line.range(mappingsOf(pdos)))
                rows = std::max(rows, object.subs.empty() ? 0 : object.subs.size() - 1);
        }
    }
    return rows;
}

bool routesPdos(const DictionaryLine &line)
{
    const LineObject *object = line.object(Index::networkRouting);
    return object && object->highestSubindex() > 0;
}

QString elementAddress(QLatin1StringView prefix, ValueType type, const Positions &positions, quint32 key)
{
    const auto position = positions.constFind(key);
    return position == positions.constEnd()
               ? u"NULL"_s
               : u"&%1%2[%3]"_s.arg(prefix, valueTypeName(type), QString::number(*position));
}

/// The address of a mapped subindex's data; "NULL" where it has none in this file.
QString dataPointer(const DictionaryTables &tables, const Entry &sub)
{
    const auto type = valueTypeOf(sub.data.datatype);
    const quint8 implementation = sub.data.implementation;
    if (implementation == Implementation::ManagedVariable)
        return type ? elementAddress("od_"_L1, *type, tables.variableIndexMap,
                                     sub.data.sharedlines ? subKey(0, sub.index, sub.subindex) : subKey(sub))
                    : u"NULL"_s;
    if (implementation == Implementation::ManagedConst)
        return type ? elementAddress("od_const_"_L1, *type, tables.defaultIndexMap, subKey(sub)) : u"NULL"_s;
    if (implementation == Implementation::Variable)
        return DictionaryCollect::variableAddress(filledText(sub.data.varname, sub));
    return u"0"_s;
}

PdoMapEntry mapEntry(const DictionaryTables &tables, const DictionaryLine &line, quint32 value)
{
    const auto index = static_cast<quint16>(value >> 16);
    const Entry *sub = line.sub(index, static_cast<quint8>(value >> 8));
    if (!sub)
        return {.pointer = u"NULL"_s, .value = value};
    return {.pointer = dataPointer(tables, *sub), .dataType = sub->data.datatype, .value = value};
}

/// How many entries a count stands for.
quint8 entryCount(quint8 count)
{
    return count > maxEntries ? 1 : count;
}

std::vector<PdoMapping> readPdos(const DictionaryTables &tables, const DictionaryLine &line, IndexRange pdos)
{
    std::vector<PdoMapping> result;
    for (const LineObject &object : line.range(pdos)) {
        PdoMapping pdo{.index = object.index, .number = static_cast<quint16>(object.index - pdos.first + 1)};
        const LineObject *mapping = line.object(object.index + Index::pdoMappingOffset);
        const Entry *count = mapping ? mapping->sub(0) : nullptr;
        pdo.fixed = !count || count->data.accesstype != CANopen::Access::ReadWrite;
        if (pdo.fixed && count) {
            pdo.count = static_cast<quint8>(defaultNumber(count));
            for (quint8 i = 1; i <= entryCount(pdo.count); ++i)
                pdo.entries.push_back(mapEntry(tables, line, defaultNumber(mapping->sub(i))));
        }
        if (pdo.fixed && pdo.count != 0)
            pdo.table = pdo.number;
        result.push_back(std::move(pdo));
    }
    return result;
}

/// All that makes the table of a mapping, so that equal mappings have equal texts.
QString tableContents(const PdoMapping &pdo)
{
    QString contents = QString::number(pdo.count);
    for (const PdoMapEntry &entry : pdo.entries)
        contents += u"\n%1 %2"_s.arg(QString::number(entry.value), entry.pointer);
    return contents;
}

void shareTables(LinePdoTables &pdos)
{
    QHash<QString, quint16> known;
    for (std::size_t i = 0; i < pdos.rpdos.size(); ++i) {
        PdoMapping &pdo = pdos.rpdos[i];
        if (!pdo.fixed)
            continue;
        const QString contents = tableContents(pdo);
        if (!known.contains(contents)) {
            known.insert(contents, static_cast<quint16>(pdos.uniqueRpdoTables.size()));
            pdos.uniqueRpdoTables.push_back(i);
        }
        pdo.table = known.value(contents);
    }
}

/// The first TPDO of a line that sends a mapped value, by that value.
using Senders = QHash<quint32, quint32>;

Senders sendersOf(const DictionaryLine &line)
{
    Senders senders;
    for (const LineObject &object : line.range(Index::tpdos)) {
        const LineObject *mapping = line.object(object.index + Index::pdoMappingOffset);
        const Entry *count = mapping ? mapping->sub(0) : nullptr;
        if (!count)
            continue;
        const quint8 entries = entryCount(static_cast<quint8>(defaultNumber(count)));
        for (quint8 i = 1; i <= entries; ++i) {
            const quint32 value = defaultNumber(mapping->sub(i));
            if (!senders.contains(value))
                senders.insert(value, quint32{object.index} - Index::tpdos.first + 1);
        }
    }
    return senders;
}

/// Received data goes on with the TPDOs of the lines that share the object.
void routeReceivedData(DictionaryTables &tables)
{
    QHash<quint8, Senders> senders;
    for (const DictionaryLine &line : tables.lines)
        senders.insert(line.number, sendersOf(line));
    for (DictionaryLine &line : tables.lines) {
        for (PdoMapping &pdo : line.pdos.rpdos) {
            for (PdoMapEntry &entry : pdo.entries) {
                for (const quint8 target : tables.lineList) {
                    const Entry *sub = tables.sub(target, static_cast<quint16>(entry.value >> 16),
                                                  static_cast<quint8>(entry.value >> 8));
                    const bool shared = sub && sub->data.sharedlines;
                    entry.routing.push_back(shared ? senders.value(target).value(entry.value) : 0);
                }
            }
        }
    }
}

} // namespace

QString mapTableName(PdoDirection direction, const QString &lineSuffix, quint16 number)
{
    const auto pdo = direction == PdoDirection::Transmit ? "TPDO"_L1 : "RPDO"_L1;
    return u"mapTable%1%2%3"_s.arg(pdo, lineSuffix, QString::number(number));
}

QStringList mappingWarnings(const DictionaryTables &tables)
{
    QStringList warnings;
    const auto tell = [&](const DictionaryLine &line, QLatin1StringView kind, const std::vector<PdoMapping> &pdos) {
        for (const PdoMapping &pdo : pdos) {
            for (const PdoMapEntry &entry : pdo.entries) {
                if (entry.hasNoData())
                    warnings.append(u"<b>Warning: %1 %2 of line %3 maps object 0x%4-0x%5, which has no data that a "
                                    "PDO could carry.</b>"_s.arg(kind, Code::dec(pdo.number), Code::dec(line.number),
                                                                 Code::hex(entry.value >> 16, 4),
                                                                 Code::hex(entry.value >> 8 & 0xFF, 2)));
            }
        }
    };
    for (const DictionaryLine &line : tables.lines) {
        tell(line, "TPDO"_L1, line.pdos.tpdos);
        tell(line, "RPDO"_L1, line.pdos.rpdos);
    }
    return warnings;
}

void collectPdoTables(DictionaryTables &tables)
{
    tables.mapRows = largestMapping(tables);
    tables.pdoRouting = std::ranges::any_of(tables.lines, routesPdos);
    for (DictionaryLine &line : tables.lines) {
        if (!line.isDevice())
            continue;
        line.pdos.tpdos = readPdos(tables, line, Index::tpdos);
        line.pdos.rpdos = readPdos(tables, line, Index::rpdos);
        if (!tables.pdoRouting)
            shareTables(line.pdos);
    }
    if (tables.pdoRouting)
        routeReceivedData(tables);
}
