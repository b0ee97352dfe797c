#include "generate/objdict/objdictsections.h"

#include "generate/base/codewriter.h"
#include "generate/base/dialect.h"
#include "generate/model/dictionarycollect.h"
#include "generate/model/dictionarytables.h"
#include "texttools/helper.h"

#include <QHash>
#include <QStringBuilder>

using namespace Qt::StringLiterals;
using Code::dec;
using Code::hex;

namespace {

// The orders in which the arrays stand in the file.
using enum ValueType;
constexpr ValueType managedOrder[] = {U8, U16, U24, U32, U40, U48, U64, I8, I16, I24, I32, R32};
constexpr ValueType constantOrder[] = {U8, U16, U32, U24, U40, U48, U64, I8, I16, I24, I32, R32};
constexpr ValueType pointerOrder[] = {U8, U16, U32, U24, U40, U64, I8, I16, I24, I32, R32, U48};

/// The elements of an array up to its closing brace: `element` gives the text of a position.
template <typename Element>
void writeElements(CodeWriter &out, std::size_t count, const Element &element)
{
    for (std::size_t i = 0; i < count; ++i)
        out(u"\t${ELEMENT}${END}", {{"ELEMENT", element(i)}, {"END", i + 1 < count ? ","_L1 : "};"_L1}});
}

/// The same for elements that belong to a subindex each, which is told in a comment behind them.
template <typename Element>
void writeKeyedElements(CodeWriter &out, const DictionaryTables &tables, const std::vector<quint32> &keys,
                        const Element &element, QLatin1StringView rowStart = {})
{
    for (std::size_t i = 0; i < keys.size(); ++i) {
        const auto line = static_cast<quint8>(keys[i] >> 24);
        const auto index = static_cast<quint16>(keys[i] >> 8);
        out(u"${START}\t${ELEMENT} /* ${PLACE}:${SUB} */${END}",
            {{"START", i == 0 ? ""_L1 : rowStart},
             {"ELEMENT", element(i)},
             {"PLACE", DescriptionWords::place(tables.multiLine, line, index)},
             {"SUB", dec(keys[i] & 0xFF)},
             {"END", i + 1 < keys.size() ? ","_L1 : "};"_L1}});
    }
}

void writeManagedArray(CodeWriter &out, const DictionaryTables &tables, const Dialect &dialect, ValueType type)
{
    const ValueArray &array = tables.managed[valueTypePlace(type)];
    const QString specifier = tables.memorySpecifier.isEmpty() ? QString() : u" %1 "_s.arg(tables.memorySpecifier);
    out(u"static ${TYPE} ${CORE}STORAGE_CLASS\tod_${NAME}[${COUNT}]${SPECIFIER}${END}",
        {{"TYPE", valueTypeCType(type)},
         {"CORE", dialect.core},
         {"NAME", valueTypeName(type)},
         {"COUNT", dec(array.values.size())},
         {"SPECIFIER", specifier},
         {"END", tables.initStaticVariables ? u"= {"_s : u";"_s}});
    if (!tables.initStaticVariables)
        return;
    writeKeyedElements(
        out, tables, array.keys, [&](std::size_t i) { return array.values[i].initialiser(); },
        type == I32 ? " "_L1 : ""_L1);
}

void openConstants(CodeWriter &out, const Dialect &dialect, QLatin1StringView type, QLatin1StringView name,
                   std::size_t count)
{
    out(u"static ${CORE}CONST ${TYPE} ${CORE}CONST_STORAGE_CLASS\tod_const_${NAME}[${COUNT}] = {",
        {{"CORE", dialect.core}, {"TYPE", type}, {"NAME", name}, {"COUNT", dec(count)}});
}

/// A visible string constant: what the project has stands between the quotes as it is.
QString stringLiteral(const QString &text)
{
    if (!text.startsWith("|x"_L1))
        return u"\"%1\""_s.arg(Code::literalText(text));
    QString literal;
    for (const char byte : Helper::hexPairs(QStringView(text).sliced(2)))
        literal += u"\\x%1"_s.arg(hex(static_cast<quint8>(byte), 2));
    return u"\"%1\""_s.arg(literal);
}

void writeTexts(CodeWriter &out, const Dialect &dialect, const TextArray &array, QLatin1StringView type,
                QLatin1StringView name, QLatin1StringView lengthName, QString (*literal)(const QString &))
{
    if (array.texts.empty())
        return;
    openConstants(out, dialect, type, name, array.texts.size());
    writeElements(out, array.texts.size(), [&](std::size_t i) { return literal(array.texts[i]); });
    openConstants(out, dialect, "UNSIGNED32"_L1, lengthName, array.sizes.size());
    writeElements(out, array.sizes.size(), [&](std::size_t i) { return dec(array.sizes[i]); });
}

/// A text that can stand in a comment.
QString commentText(QString text)
{
    return text.replace("*/"_L1, "* /"_L1).replace("/*"_L1, "/ *"_L1);
}

void writeStringDefault(CodeWriter &out, const StringDefault &value)
{
    constexpr int lineWidth = 72;
    constexpr int byteWidth = 6;
    QString rows;
    int width = 0;
    for (const char byte : value.bytes) {
        rows += u"0x%1, "_s.arg(hex(static_cast<quint8>(byte), 2));
        width += byteWidth;
        if (width > lineWidth) {
            rows += u'\n';
            width = 0;
        }
    }
    out(u"/* ${TEXT} */ ", {{"TEXT", commentText(value.text)}});
    out(u"${BYTES}", {{"BYTES", rows}});
}

void writePointers(CodeWriter &out, const DictionaryTables &tables, const Dialect &dialect, ValueType type)
{
    const VariableArray &array = tables.pointers[valueTypePlace(type)];
    if (array.names.empty())
        return;
    out(u"static ${TYPE}${GAP}${CORE}CONST_STORAGE_CLASS * ${CORE}CONST \tod_ptr_${NAME}[${COUNT}] = {",
        {{"TYPE", valueTypeCType(type)},
         {"GAP", type == I8 ? u"  "_s : u" "_s},
         {"CORE", dialect.core},
         {"NAME", valueTypeName(type)},
         {"COUNT", dec(array.names.size())}});
    writeKeyedElements(out, tables, array.keys, [&](std::size_t i) {
        const QString &name = array.names[i];
        // Of a number of three bytes even what looks like an expression is taken for a name.
        return type == U24 && !name.isEmpty() ? u"&(%1)"_s.arg(name) : DictionaryCollect::variableAddress(name);
    });
}

/// A table of variables that are no numbers, with the tables of their sizes.
struct TextTableForm
{
    TextTable table;
    QLatin1StringView pointerHead; ///< up to the name
    QLatin1StringView name;
    bool storageClass; ///< of the sizes
};

constexpr TextTableForm textTableForms[] = {
    {TextTable::VisibleString, "VIS_STRING\t"_L1, "od_vis_string"_L1, false},
    {TextTable::Utf8String, "VIS_STRING\t"_L1, "od_utf8_string"_L1, false},
    {TextTable::OctetString, "OCTET_STRING\t*"_L1, "od_octet_string"_L1, true},
    {TextTable::Domain, "CO_DOMAIN_PTR\t"_L1, "od_domain"_L1, true},
};

void writeTextVariables(CodeWriter &out, const DictionaryTables &tables, const Dialect &dialect,
                        const TextTableForm &form)
{
    const VariableArray &array = tables.textVariables[static_cast<std::size_t>(form.table)];
    const std::size_t count = array.names.size();
    if (count == 0)
        return;
    const bool isDomain = form.table == TextTable::Domain;
    out(u"static ${HEAD}${NAME}[${COUNT}] = {",
        {{"HEAD", form.pointerHead}, {"NAME", form.name}, {"COUNT", dec(count)}});
    writeElements(out, count, [&](std::size_t i) {
        const QString &name = array.names[i];
        return isDomain || name.isEmpty() ? u"NULL"_s : u"&(%1[0])"_s.arg(name);
    });
    for (const auto end : {"_len"_L1, "_actLen"_L1}) {
        out(u"static UNSIGNED32${CLASS}\t${NAME}${END}[${COUNT}] = {",
            {{"CLASS", form.storageClass ? u" %1STORAGE_CLASS"_s.arg(dialect.core) : QString()},
             {"NAME", form.name},
             {"END", end},
             {"COUNT", dec(count)}});
        writeElements(out, count,
                      [&](std::size_t i) { return isDomain ? u"0"_s : u"%1ul"_s.arg(dec(array.sizes[i])); });
    }
}

QString limitColumns(const DictionaryTables &tables, const DescriptionRow &row)
{
    if (!tables.limitCheck)
        return {};
    return "u, (UNSIGNED16)"_L1 % dec(row.lowerPosition).view() % "u, (UNSIGNED16)"_L1 % dec(row.upperPosition).view();
}

} // namespace

void ObjDictSections::objectCounts(CodeWriter &out, const DictionaryTables &tables)
{
    out(uR"(

        /* number of objects */
        #define CO_OD_ASSIGN_CNT ${ASSIGN}u
        #define CO_OBJ_DESC_CNT ${DESCRIPTION}u
        )",
        {{"ASSIGN", dec(tables.assignCount)}, {"DESCRIPTION", dec(tables.descriptionCount)}});
}

void ObjDictSections::managedVariables(CodeWriter &out, const DictionaryTables &tables, const Dialect &dialect)
{
    out(u"");
    out(u"/* definition of managed variables */");
    for (const ValueType type : managedOrder) {
        if (!tables.managed[valueTypePlace(type)].values.empty())
            writeManagedArray(out, tables, dialect, type);
    }
}

void ObjDictSections::constants(CodeWriter &out, const DictionaryTables &tables, const Dialect &dialect)
{
    out(u"");
    out(u"/* definition of constants */");
    for (const ValueType type : constantOrder) {
        const std::vector<PoolValue> &values = tables.constants.array(type).values;
        if (values.empty())
            continue;
        openConstants(out, dialect, valueTypeCType(type), valueTypeName(type), values.size());
        writeElements(out, values.size(), [&](std::size_t i) { return values[i].initialiser(); });
    }
    writeTexts(out, dialect, tables.visibleStrings, "VIS_STRING"_L1, "vis_string"_L1, "vis_string_len"_L1,
               stringLiteral);
    writeTexts(out, dialect, tables.utf8Strings, "UTF8_STRING"_L1, "utf8_string"_L1, "utf8_string_len"_L1,
               Helper::UTF8String2ArrayString);
}

void ObjDictSections::stringDefaults(CodeWriter &out, const DictionaryTables &tables, const Dialect &dialect)
{
    if (tables.stringDefaultMap.isEmpty())
        return;
    out(uR"(

        /* definition of string default values for variables */
        static ${CORE}CONST char stringDefaultValues[] = {
        )",
        {{"CORE", dialect.core}});
    for (const StringDefault &value : tables.stringDefaultMap)
        writeStringDefault(out, value);
    out(u"0x00}; \n");
}

void ObjDictSections::applicationVariables(CodeWriter &out, const DictionaryTables &tables, const Dialect &dialect)
{
    out(u"");
    out(u"/* definition of application variables */");
    for (const ValueType type : pointerOrder)
        writePointers(out, tables, dialect, type);
    for (const TextTableForm &form : textTableForms)
        writeTextVariables(out, tables, dialect, form);
}

void ObjDictSections::description(CodeWriter &out, const DictionaryTables &tables, const Dialect &dialect)
{
    out(uR"(

        /* description of the objects */
        ${CORE}CONST CO_OBJECT_DESC_T ${CORE}CONST_STORAGE_CLASS od_description[CO_OBJ_DESC_CNT] = {
        )",
        {{"CORE", dialect.core}});
    // Few for all rows.
    QHash<std::pair<quint16, QLatin1StringView>, QString> typeColumns;
    QHash<Attributes::Int, QString> attributes;
    for (const DescriptionRow &row : tables.description) {
        QString &type = typeColumns[{row.dataType, row.specifier}];
        if (type.isNull())
            type = DescriptionWords::typeColumns(dialect, row.dataType, row.specifier);
        QString &attribute = attributes[row.attributes];
        if (attribute.isNull())
            attribute = DescriptionWords::attributes(row.attributes);
        out(u"\t{ (UNSIGNED8)${SUB}u, ${TYPE}, (UNSIGNED16)${VALUE}u, ${ATTRIBUTES},  "
            u"(UNSIGNED16)${DEFAULT}${LIMITS}u},"
            "/* ${PLACE}:${SUB}*/ ",
            {{"SUB", dec(row.subindex)},
             {"TYPE", type},
             {"VALUE", dec(row.value)},
             {"ATTRIBUTES", attribute},
             {"DEFAULT", dec(row.defaultPosition)},
             {"LIMITS", limitColumns(tables, row)},
             {"PLACE", DescriptionWords::place(tables.multiLine, row.line, row.index)}});
    }
    out(u"};");
}

void ObjDictSections::assign(CodeWriter &out, const DictionaryTables &tables, const Dialect &dialect)
{
    if (tables.lines.empty())
        return;
    out(uR"(

        /* object dictionary assignment */
        ${CORE}CONST CO_OD_ASSIGN_T ${CORE}CONST_STORAGE_CLASS od_assign[CO_OD_ASSIGN_CNT] = {
        )",
        {{"CORE", dialect.core}});
    assignRows(out, tables.assign);
    out(u"};");
}

void ObjDictSections::assignRows(CodeWriter &out, const std::vector<AssignRow> &rows)
{
    for (const AssignRow &row : rows)
        out(u"\t{ 0x${INDEX}u, ${SUBS}u, ${HIGHEST}u, ${TYPE}, ${START}u },", {{"INDEX", hex(row.index, 4)},
                                                                               {"SUBS", dec(row.subs)},
                                                                               {"HIGHEST", dec(row.highest)},
                                                                               {"TYPE", row.objectType},
                                                                               {"START", dec(row.start)}});
}
