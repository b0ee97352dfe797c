#include "generate/objdict/vobjdictgenerator.h"

#include "generate/base/codewriter.h"
#include "generate/base/dialect.h"
#include "generate/base/fileheader.h"
#include "generate/common/sourceopening.h"
#include "generate/objdict/objdictsections.h"
#include "generate/objdict/virtualtables.h"
#include "store/objectdatabase.h"
#include "store/settings.h"

using namespace Qt::StringLiterals;
using Code::dec;
using Code::hex;

namespace {

QString valueColumn(const VirtualDescriptionRow &row)
{
    return row.valueIsIndex ? u"0x%1"_s.arg(hex(row.value, 4)) : dec(row.value);
}

QString limitColumns(bool limitCheck, const VirtualDescriptionRow &row)
{
    if (!limitCheck)
        return {};
    return u"u, (UNSIGNED16)%1u, (UNSIGNED16)%2"_s.arg(dec(row.lowerPosition), dec(row.upperPosition));
}

/// The first row stands behind the brace of the table.
void writeDescription(CodeWriter &out, const VirtualTables &tables, bool limitCheck, const Dialect &dialect)
{
    QString head =
        u"%1CONST CO_OBJECT_DESC_T %1CONST_STORAGE_CLASS vod_description[CO_VOBJ_DESC_CNT] = {"_s.arg(dialect.core);
    out(u"");
    out(u"/* description of the objects */");
    if (tables.description.empty())
        out(u"${HEAD}", {{"HEAD", head}});
    for (const VirtualDescriptionRow &row : tables.description) {
        out(u"${HEAD}\t{ (UNSIGNED8)${SUB}u, ${TYPE}, (UNSIGNED16)${VALUE}u, ${ATTRIBUTES},  "
            "(UNSIGNED16)${DEFAULT}${LIMITS}u},/* ${INDEX}-0x${SUBHEX} ${NAME}*/ ",
            {{"HEAD", head},
             {"SUB", dec(row.subindex)},
             {"TYPE", DescriptionWords::typeColumns(dialect, row.dataType, "_PTR"_L1)},
             {"VALUE", valueColumn(row)},
             {"ATTRIBUTES", DescriptionWords::attributes(row.attributes)},
             {"DEFAULT", dec(row.defaultPosition)},
             {"LIMITS", limitColumns(limitCheck, row)},
             {"INDEX", hex(row.index, 4)},
             {"SUBHEX", hex(row.subindex, 2)},
             {"NAME", row.dataName()}});
        head.clear();
    }
    out(u"};");
}

void writeAssign(CodeWriter &out, const VirtualTables &tables, const Dialect &dialect)
{
    out(uR"(

        /* object dictionary assignment */
        ${CORE}CONST CO_OD_ASSIGN_T ${CORE}CONST_STORAGE_CLASS vod_assign[CO_VOD_ASSIGN_CNT] = {
        )",
        {{"CORE", dialect.core}});
    ObjDictSections::assignRows(out, tables.assign);
    out(u"};");
}

} // namespace

VobjDictGenerator::VobjDictGenerator(bool compactDescription, QObject *parent)
    : VobjDictGenerator(Dialect::classic(), compactDescription, parent)
{
}

VobjDictGenerator::VobjDictGenerator(const Dialect &dialect, bool compactDescription, QObject *parent)
    : FileGenerator(parent)
    , dialect_(dialect)
    , compactDescription_(compactDescription)
{
}

VobjDictGeneratorV4::VobjDictGeneratorV4(bool compactDescription, QObject *parent)
    : VobjDictGenerator(Dialect::v4(), compactDescription, parent)
{
}

QString VobjDictGenerator::fileName() const
{
    return u"gen_vobjdict.c"_s;
}

void VobjDictGenerator::write(Utf8Sink &sink)
{
    const DictionaryTables dictionary =
        collectDictionaryTables(*database(), {.compactDescription = compactDescription_});
    if (!dictionary.error.isEmpty()) {
        fail(OutputError, dictionary.error);
        return;
    }
    const bool dynamic = Settings(*database()).isOn(u"dynod"_s);
    const VirtualTables tables = collectVirtualTables(dictionary, dynamic);

    CodeWriter out(sink);
    writeFileHeader(out, SourceFile::GenVobjdict, dialect_.form, baseName());
    out(uR"(
        #include <stdlib.h>

        #include <gen_define.h>
        #include <co_canopen.h>
        )");
    SourceSections::applicationIncludes(out, SourceOpening::of(*database(), outputFolder()));
    if (dialect_.has(Point::VirtualGuards))
        SourceSections::specifierGuards(out, dialect_);
    writeDescription(out, tables, dictionary.limitCheck, dialect_);
    writeAssign(out, tables, dialect_);
}
