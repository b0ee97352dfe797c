#include "generate/base/codewriter.h"
#include "generate/base/dialect.h"
#include "generate/objdict/objdictsections.h"
#include "nodedict/canopendatatype.h"
#include "nodedict/cohelper.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

struct Rename
{
    QLatin1StringView from;
    QLatin1StringView to;
};

// Where the stack's word for a type is not the short name.
constexpr Rename stackWords[] = {
    {"D"_L1, "DOMAIN"_L1}, {"B"_L1, "BOOL"_L1}, {"U2"_L1, "U8"_L1}, {"U3"_L1, "U8"_L1},
    {"U4"_L1, "U8"_L1},    {"U5"_L1, "U8"_L1},  {"U6"_L1, "U8"_L1}, {"U7"_L1, "U8"_L1},
};
constexpr Rename splitWords[] = {{"OS"_L1, "OCTET_STRING"_L1}, {"VS"_L1, "STRING_NULL"_L1}, {""_L1, "NON_NUMERIC"_L1}};

template <std::size_t Size>
QString renamed(const Rename (&renames)[Size], const QString &word)
{
    const auto row = std::ranges::find_if(renames, [&](const Rename &each) { return word == each.from; });
    return row == std::end(renames) ? word : QString(row->to);
}

QString stackWord(quint16 dataType)
{
    // The time of day is stored like a number of 48 bits.
    const quint16 stored = dataType == CAN::TimeOfDay ? quint16{CAN::Unsigned48} : dataType;
    return renamed(stackWords, COHelper::index2DataTypeShortString(stored).toUpper());
}

QString typeWord(const Dialect &dialect, quint16 dataType)
{
    return dialect.dataType + renamed(splitWords, stackWord(dataType));
}

QString joinedColumn(const Dialect &dialect, quint16 dataType, QLatin1StringView suffix)
{
    constexpr int width = 18;
    QString word = stackWord(dataType);
    if (word.isEmpty())
        word = u"DOMAIN"_s;
    if (word == "OS"_L1 && suffix == "_CONST"_L1)
        word = u"VS"_s;
    if (word != "DOMAIN"_L1)
        word += suffix;
    return (dialect.dataType + word).leftJustified(width);
}

struct AttributeWord
{
    Attribute attribute;
    QLatin1StringView word;
};

// In the order in which a row has them.
constexpr AttributeWord attributeWords[] = {
    {Attribute::Numeric, "CO_ATTR_NUM"_L1},      {Attribute::Readable, "CO_ATTR_READ"_L1},
    {Attribute::Writable, "CO_ATTR_WRITE"_L1},   {Attribute::Transmitted, "CO_ATTR_MAP_TR"_L1},
    {Attribute::Received, "CO_ATTR_MAP_REC"_L1}, {Attribute::HasDefault, "CO_ATTR_DEFVAL"_L1},
    {Attribute::HasLimits, "CO_ATTR_LIMIT"_L1},  {Attribute::Stored, "CO_ATTR_STORE"_L1},
    {Attribute::Dynamic, "CO_ATTR_DYNOD"_L1},    {Attribute::Compact, "CO_ATTR_COMPACT"_L1},
};

} // namespace

QString DescriptionWords::typeColumns(const Dialect &dialect, quint16 dataType, QLatin1StringView suffix)
{
    if (!dialect.has(Point::SplitTypeColumns))
        return joinedColumn(dialect, dataType, suffix);
    return u"%1, CO_DSPEC%2"_s.arg(typeWord(dialect, dataType), suffix);
}

QString DescriptionWords::mappedType(const Dialect &dialect, std::optional<quint16> dataType)
{
    if (!dataType)
        return dialect.unmapped;
    if (dialect.has(Point::MappedTypeColumn))
        return typeWord(dialect, *dataType);
    return *dataType < CAN::VisibleString || *dataType == CAN::Integer24 ? u"CO_TRUE"_s : u"CO_FALSE"_s;
}

QString DescriptionWords::attributes(Attributes attributes)
{
    QStringList words;
    for (const AttributeWord &row : attributeWords) {
        if (attributes.testFlag(row.attribute))
            words.append(row.word);
    }
    return words.join(" | "_L1);
}

PrintedValue DescriptionWords::place(bool multiLine, quint8 line, quint16 index)
{
    if (!multiLine)
        return Code::hex0x(index, 4);
    return u"%1-%2"_s.arg(Code::dec(line), Code::hex0x(index, 4));
}
