#pragma once

#include "generate/base/utf8sink.h"
#include "generate/model/dictionarytables.h"

#include <optional>
#include <vector>

class CodeWriter;
struct Dialect;

/// The sections of the tables of an object dictionary, as gen_objdict.c and gen_mp.c have them.
namespace ObjDictSections {

/// CO_OD_ASSIGN_CNT and CO_OBJ_DESC_CNT.
void objectCounts(CodeWriter &out, const DictionaryTables &tables);
/// od_u8 and so on.
void managedVariables(CodeWriter &out, const DictionaryTables &tables, const Dialect &dialect);
/// od_const_u8 and so on.
void constants(CodeWriter &out, const DictionaryTables &tables, const Dialect &dialect);
/// stringDefaultValues; nothing where no string variable has a default.
void stringDefaults(CodeWriter &out, const DictionaryTables &tables, const Dialect &dialect);
/// od_ptr_u8 and so on, strings and domains.
void applicationVariables(CodeWriter &out, const DictionaryTables &tables, const Dialect &dialect);
void description(CodeWriter &out, const DictionaryTables &tables, const Dialect &dialect);
/// od_assign; nothing where no line has objects.
void assign(CodeWriter &out, const DictionaryTables &tables, const Dialect &dialect);
void assignRows(CodeWriter &out, const std::vector<AssignRow> &rows);
/// mapTableTPDO... and mapTableRPDO...
void mappingTables(CodeWriter &out, const DictionaryTables &tables, const Dialect &dialect);
/// od_data_variables.
void dataVariables(CodeWriter &out, const DictionaryTables &tables, const Dialect &dialect);

} // namespace ObjDictSections

/// Words of the columns that description rows share with those of virtual objects.
namespace DescriptionWords {

/// The columns of data type and specifier, `suffix` its end: "CORE_DTYPE_U8, CO_DSPEC_VAR", or the one word that the
/// classic form has for both, padded.
QString typeColumns(const Dialect &dialect, quint16 dataType, QLatin1StringView suffix);
/// The data type of a mapping row, or whether it is a number; `unmapped` without a data type.
QString mappedType(const Dialect &dialect, std::optional<quint16> dataType);
/// "CO_ATTR_NUM | CO_ATTR_READ"
QString attributes(Attributes attributes);
/// "0x2000", with several lines "1-0x2000".
PrintedValue place(bool multiLine, quint8 line, quint16 index);

} // namespace DescriptionWords
