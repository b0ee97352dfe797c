#include "generate/base/codewriter.h"
#include "generate/base/dialect.h"
#include "generate/model/dictionarytables.h"
#include "generate/objdict/objdictsections.h"

using namespace Qt::StringLiterals;

namespace {

// Whether an array stands in the file.

template <ValueType type>
bool constant(const DictionaryTables &tables)
{
    return !tables.constants.array(type).values.empty();
}

template <ValueType type>
bool managed(const DictionaryTables &tables)
{
    return !tables.managed[valueTypePlace(type)].values.empty();
}

template <ValueType type>
bool pointer(const DictionaryTables &tables)
{
    return !tables.pointers[valueTypePlace(type)].names.empty();
}

template <TextTable table>
bool text(const DictionaryTables &tables)
{
    return !tables.textVariables[static_cast<std::size_t>(table)].names.empty();
}

bool visibleConstant(const DictionaryTables &tables)
{
    return !tables.visibleStrings.texts.empty();
}

bool utf8Constant(const DictionaryTables &tables)
{
    return !tables.utf8Strings.texts.empty();
}

/// A member of the structure, or with a guard a group of members that not each stack has.
struct Member
{
    QLatin1StringView array;
    bool (*written)(const DictionaryTables &);
};

struct Group
{
    QLatin1StringView guard; ///< empty for members that are always there
    QLatin1StringView end;
    std::initializer_list<Member> members;
};

using enum ValueType;
constexpr auto extended = "CO_EXTENDED_DATA_TYPES"_L1;
constexpr auto extendedEnd = "#endif /* CO_EXTENDED_DATA_TYPES */"_L1;

constexpr Group groups[] = {
    {{},
     {},
     {{"od_const_u8"_L1, constant<U8>},
      {"od_const_u16"_L1, constant<U16>},
      {"od_const_u32"_L1, constant<U32>},
      {"od_const_r32"_L1, constant<R32>}}},
    {extended,
     extendedEnd,
     {{"od_const_u24"_L1, constant<U24>},
      {"od_const_u40"_L1, constant<U40>},
      {"od_const_u48"_L1, constant<U48>},
      {"od_const_u64"_L1, constant<U64>}}},
    {{},
     {},
     {{"od_u8"_L1, managed<U8>},
      {"od_u16"_L1, managed<U16>},
      {"od_u32"_L1, managed<U32>},
      {"od_r32"_L1, managed<R32>}}},
    {extended,
     extendedEnd,
     {{"od_u24"_L1, managed<U24>},
      {"od_u40"_L1, managed<U40>},
      {"od_u48"_L1, managed<U48>},
      {"od_u64"_L1, managed<U64>}}},
    {{},
     {},
     {{"od_const_i8"_L1, constant<I8>},
      {"od_const_i16"_L1, constant<I16>},
      {"od_const_i32"_L1, constant<I32>},
      {"od_i8"_L1, managed<I8>},
      {"od_i16"_L1, managed<I16>},
      {"od_i32"_L1, managed<I32>},
      {"od_ptr_u8"_L1, pointer<U8>},
      {"od_ptr_u16"_L1, pointer<U16>},
      {"od_ptr_u32"_L1, pointer<U32>}}},
    {extended,
     extendedEnd,
     {{"od_ptr_u24"_L1, pointer<U24>},
      {"od_ptr_u40"_L1, pointer<U40>},
      {"od_ptr_u48"_L1, pointer<U48>},
      {"od_ptr_u64"_L1, pointer<U64>}}},
    {{},
     {},
     {{"od_ptr_i8"_L1, pointer<I8>},
      {"od_ptr_i16"_L1, pointer<I16>},
      {"od_ptr_i32"_L1, pointer<I32>},
      {"od_ptr_r32"_L1, pointer<R32>},
      {"od_const_vis_string"_L1, visibleConstant},
      {"od_const_vis_string_len"_L1, visibleConstant},
      {"od_vis_string"_L1, text<TextTable::VisibleString>},
      {"od_vis_string_len"_L1, text<TextTable::VisibleString>},
      {"od_vis_string_actLen"_L1, text<TextTable::VisibleString>}}},
    {"CO_UTF8_DATA_TYPE"_L1,
     "#endif"_L1,
     {{"od_const_utf8_string"_L1, utf8Constant},
      {"od_const_utf8_string_len"_L1, utf8Constant},
      {"od_utf8_string"_L1, text<TextTable::Utf8String>},
      {"od_utf8_string_len"_L1, text<TextTable::Utf8String>},
      {"od_utf8_string_actLen"_L1, text<TextTable::Utf8String>}}},
    {{},
     {},
     {{"od_octet_string"_L1, text<TextTable::OctetString>},
      {"od_octet_string_len"_L1, text<TextTable::OctetString>},
      {"od_octet_string_actLen"_L1, text<TextTable::OctetString>},
      {"od_domain"_L1, text<TextTable::Domain>},
      {"od_domain_len"_L1, text<TextTable::Domain>},
      {"od_domain_actLen"_L1, text<TextTable::Domain>}}},
};

} // namespace

void ObjDictSections::dataVariables(CodeWriter &out, const DictionaryTables &tables, const Dialect &dialect)
{
    out(uR"(

        /**********************************************************************/
        /* Structure for all OD variables */
        ${CORE}CONST CO_OD_DATA_VARIABLES_T od_data_variables = {
        )",
        {{"CORE", dialect.core}});
    QString separator = u"   "_s;
    for (const Group &group : groups) {
        if (!group.guard.isEmpty())
            out(u"#ifdef ${GUARD}", {{"GUARD", group.guard}});
        for (const Member &member : group.members) {
            out(u"${SEPARATOR}${ARRAY}",
                {{"SEPARATOR", separator},
                 {"ARRAY", member.written(tables) ? u"&%1[0]"_s.arg(member.array) : u"NULL"_s}});
            separator = u"    , "_s;
        }
        if (!group.guard.isEmpty())
            out(u"${END}", {{"END", group.end}});
    }
    out(u"};\n");
}
