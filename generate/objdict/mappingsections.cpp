#include "generate/base/codewriter.h"
#include "generate/base/dialect.h"
#include "generate/model/dictionarytables.h"
#include "generate/objdict/objdictsections.h"

using namespace Qt::StringLiterals;
using Code::dec;
using Code::hex;

namespace {

QString commaList(const std::vector<quint32> &numbers)
{
    QStringList parts;
    for (const quint32 number : numbers)
        parts.append(dec(number));
    return parts.join(u',');
}

/// One kind of mapping table.
struct TableForm
{
    PdoDirection direction;
    QLatin1StringView type;
    bool routing; ///< rows have a list of TPDOs
};

void writeTable(CodeWriter &out, const DictionaryTables &tables, const Dialect &dialect, const TableForm &form,
                const PdoMapping &pdo, const QString &suffix)
{
    out(u"static ${CORE}CONST ${TYPE} ${CORE}CONST_STORAGE_CLASS\t${NAME} = {",
        {{"CORE", dialect.core}, {"TYPE", form.type}, {"NAME", mapTableName(form.direction, suffix, *pdo.table)}});
    out(u"\t(UNSIGNED8)${COUNT}u,\n\t{", {{"COUNT", dec(pdo.count)}});
    const bool inBits = tables.bitwiseMapping && tables.mapRows != 0;
    for (const PdoMapEntry &entry : pdo.entries)
        out(u"\t\t{${POINTER}, ${LENGTH}u, ${TYPE}, 0x${VALUE}UL${ROUTING} },",
            {{"POINTER", entry.pointer},
             {"LENGTH", dec(inBits ? entry.bits() : entry.bits() / 8U)},
             {"TYPE", DescriptionWords::mappedType(dialect, entry.dataType)},
             {"VALUE", hex(entry.value, 8)},
             {"ROUTING", form.routing ? u", {%1}"_s.arg(commaList(entry.routing)) : QString()}});
    const QString noRouting =
        form.routing ? u",{%1}"_s.arg(commaList(std::vector<quint32>(tables.lineList.size()))) : QString();
    for (std::size_t row = pdo.entries.size(); row < tables.mapRows; ++row)
        out(u"\t\t{NULL, (UNSIGNED8)0u, ${TYPE}, 0ul${ROUTING}}${END}",
            {{"TYPE", dialect.unmapped},
             {"ROUTING", noRouting},
             {"END", row + 1 < tables.mapRows ? u","_s : QString()}});
    out(u"\t}\n};");
}

void writeOwnTables(CodeWriter &out, const DictionaryTables &tables, const Dialect &dialect, const TableForm &form,
                    const std::vector<PdoMapping> &pdos, const QString &suffix)
{
    for (const PdoMapping &pdo : pdos) {
        if (!pdo.fixed)
            continue;
        out(u"/* Mapping table ${PDO} ${NUMBER} */",
            {{"PDO", form.direction == PdoDirection::Transmit ? u"TPDO"_s : u"RPDO"_s}, {"NUMBER", dec(pdo.number)}});
        if (pdo.table)
            writeTable(out, tables, dialect, form, pdo, suffix);
    }
}

constexpr TableForm transmitForm{PdoDirection::Transmit, "PDO_TR_MAP_TABLE_T"_L1, false};
constexpr TableForm receiveForm{PdoDirection::Receive, "PDO_REC_MAP_TABLE_T"_L1, false};
constexpr TableForm routingForm{PdoDirection::Receive, "PDO_REC_MAP_TABLE_T"_L1, true};

} // namespace

void ObjDictSections::mappingTables(CodeWriter &out, const DictionaryTables &tables, const Dialect &dialect)
{
    out(u"");
    out(u"/* static PDO mapping tables */");
    for (const DictionaryLine &line : tables.lines) {
        const QString suffix = tables.lineSuffix(line.number);
        writeOwnTables(out, tables, dialect, transmitForm, line.pdos.tpdos, suffix);
        if (tables.pdoRouting) {
            writeOwnTables(out, tables, dialect, routingForm, line.pdos.rpdos, suffix);
            continue;
        }
        for (const std::size_t position : line.pdos.uniqueRpdoTables) {
            out(u"/* unique rpdo defintion */");
            writeTable(out, tables, dialect, receiveForm, line.pdos.rpdos[position], suffix);
        }
    }
    out(u"");
}
