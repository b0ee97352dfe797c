#include "nodedict/cohelper.h"

#include "nodedict/access.h"
#include "nodedict/canopendatatype.h"
#include "texttools/numbertext.h"

#include <QHash>

#include <algorithm>
#include <array>
#include <optional>

using namespace Qt::StringLiterals;

namespace {

using CANopen::Access;

enum class Kind : quint8
{
    Unsigned,
    Signed,
    Plain,
    Text
};

struct TypeRow
{
    quint16 code;
    QLatin1StringView name;
    QLatin1StringView shortName;
    quint8 bits; ///< 0 where the type alone does not tell
    Kind kind;
};

constexpr std::array types = {
    TypeRow{CAN::Boolean, "BOOLEAN"_L1, "B"_L1, 1, Kind::Unsigned},
    TypeRow{CAN::Integer8, "INTEGER8"_L1, "I8"_L1, 8, Kind::Signed},
    TypeRow{CAN::Integer16, "INTEGER16"_L1, "I16"_L1, 16, Kind::Signed},
    TypeRow{CAN::Integer32, "INTEGER32"_L1, "I32"_L1, 32, Kind::Signed},
    TypeRow{CAN::Unsigned8, "UNSIGNED8"_L1, "U8"_L1, 8, Kind::Unsigned},
    TypeRow{CAN::Unsigned16, "UNSIGNED16"_L1, "U16"_L1, 16, Kind::Unsigned},
    TypeRow{CAN::Unsigned32, "UNSIGNED32"_L1, "U32"_L1, 32, Kind::Unsigned},
    TypeRow{CAN::Real32, "REAL32"_L1, "R32"_L1, 32, Kind::Plain},
    TypeRow{CAN::VisibleString, "VISIBLE_STRING"_L1, "VS"_L1, 0, Kind::Text},
    TypeRow{CAN::OctetString, "OCTET_STRING"_L1, "OS"_L1, 0, Kind::Text},
    TypeRow{CAN::UnicodeString, "UNICODE_STRING"_L1, "US"_L1, 0, Kind::Text},
    TypeRow{CAN::TimeOfDay, "TIME_OF_DAY"_L1, "TOD"_L1, 48, Kind::Plain},
    TypeRow{CAN::TimeDifference, "TIME_DIFFERENCE"_L1, "TD"_L1, 48, Kind::Plain},
    TypeRow{CAN::Domain, "DOMAIN"_L1, "D"_L1, 0, Kind::Text},
    TypeRow{CAN::Integer24, "INTEGER24"_L1, "I24"_L1, 24, Kind::Signed},
    TypeRow{CAN::Real64, "REAL64"_L1, "R64"_L1, 64, Kind::Plain},
    TypeRow{CAN::Integer40, "INTEGER40"_L1, "I40"_L1, 40, Kind::Signed},
    TypeRow{CAN::Integer48, "INTEGER48"_L1, "I48"_L1, 48, Kind::Signed},
    TypeRow{CAN::Integer56, "INTEGER56"_L1, "I56"_L1, 56, Kind::Signed},
    TypeRow{CAN::Integer64, "INTEGER64"_L1, "I64"_L1, 64, Kind::Signed},
    TypeRow{CAN::Unsigned24, "UNSIGNED24"_L1, "U24"_L1, 24, Kind::Unsigned},
    TypeRow{CAN::Unsigned40, "UNSIGNED40"_L1, "U40"_L1, 40, Kind::Unsigned},
    TypeRow{CAN::Unsigned48, "UNSIGNED48"_L1, "U48"_L1, 48, Kind::Unsigned},
    TypeRow{CAN::Unsigned56, "UNSIGNED56"_L1, "U56"_L1, 56, Kind::Unsigned},
    TypeRow{CAN::Unsigned64, "UNSIGNED64"_L1, "U64"_L1, 64, Kind::Unsigned},
    TypeRow{CAN::Unsigned2, "UNSIGNED2"_L1, "U2"_L1, 2, Kind::Unsigned},
    TypeRow{CAN::Unsigned3, "UNSIGNED3"_L1, "U3"_L1, 3, Kind::Unsigned},
    TypeRow{CAN::Unsigned4, "UNSIGNED4"_L1, "U4"_L1, 4, Kind::Unsigned},
    TypeRow{CAN::Unsigned5, "UNSIGNED5"_L1, "U5"_L1, 5, Kind::Unsigned},
    TypeRow{CAN::Unsigned6, "UNSIGNED6"_L1, "U6"_L1, 6, Kind::Unsigned},
    TypeRow{CAN::Unsigned7, "UNSIGNED7"_L1, "U7"_L1, 7, Kind::Unsigned},
    TypeRow{CAN::Unsigned9, "UNSIGNED9"_L1, "U9"_L1, 9, Kind::Unsigned},
    TypeRow{CAN::Unsigned10, "UNSIGNED10"_L1, "U10"_L1, 10, Kind::Unsigned},
    TypeRow{CAN::Unsigned11, "UNSIGNED11"_L1, "U11"_L1, 11, Kind::Unsigned},
    TypeRow{CAN::Unsigned12, "UNSIGNED12"_L1, "U12"_L1, 12, Kind::Unsigned},
    TypeRow{CAN::Unsigned13, "UNSIGNED13"_L1, "U13"_L1, 13, Kind::Unsigned},
    TypeRow{CAN::Unsigned14, "UNSIGNED14"_L1, "U14"_L1, 14, Kind::Unsigned},
    TypeRow{CAN::Unsigned15, "UNSIGNED15"_L1, "U15"_L1, 15, Kind::Unsigned},
    TypeRow{CAN::Unsigned17, "UNSIGNED17"_L1, "U17"_L1, 17, Kind::Unsigned},
    TypeRow{CAN::Unsigned18, "UNSIGNED18"_L1, "U18"_L1, 18, Kind::Unsigned},
    TypeRow{CAN::Unsigned19, "UNSIGNED19"_L1, "U19"_L1, 19, Kind::Unsigned},
    TypeRow{CAN::Unsigned20, "UNSIGNED20"_L1, "U20"_L1, 20, Kind::Unsigned},
    TypeRow{CAN::Unsigned21, "UNSIGNED21"_L1, "U21"_L1, 21, Kind::Unsigned},
    TypeRow{CAN::Unsigned22, "UNSIGNED22"_L1, "U22"_L1, 22, Kind::Unsigned},
    TypeRow{CAN::Unsigned23, "UNSIGNED23"_L1, "U23"_L1, 23, Kind::Unsigned},
    TypeRow{CAN::StringNull, "STRING_NULL"_L1, "SN"_L1, 0, Kind::Text},
    TypeRow{CAN::StringAsterisk, "STRING_ASTERISK"_L1, "SA"_L1, 0, Kind::Text},
    TypeRow{CAN::Utf8String, "UTF8_STRING"_L1, "UTF8"_L1, 0, Kind::Text},
};

/// A word that stands for a code; `word` is in the form that `comparable` gives.
struct Word
{
    QLatin1StringView word;
    quint16 code;
};

constexpr Word typeAliases[] = {
    {"bool"_L1, CAN::Boolean},
    {"int8"_L1, CAN::Integer8},
    {"int8t"_L1, CAN::Integer8},
    {"sint"_L1, CAN::Integer8},
    {"int16"_L1, CAN::Integer16},
    {"int16t"_L1, CAN::Integer16},
    {"int"_L1, CAN::Integer16},
    {"int24"_L1, CAN::Integer24},
    {"int32"_L1, CAN::Integer32},
    {"int32t"_L1, CAN::Integer32},
    {"dint"_L1, CAN::Integer32},
    {"int64"_L1, CAN::Integer64},
    {"int64t"_L1, CAN::Integer64},
    {"lint"_L1, CAN::Integer64},
    {"uint8"_L1, CAN::Unsigned8},
    {"uint8t"_L1, CAN::Unsigned8},
    {"usint"_L1, CAN::Unsigned8},
    {"byte"_L1, CAN::Unsigned8},
    {"u8s"_L1, CAN::Unsigned8},
    {"word"_L1, CAN::Unsigned16},
    {"dword"_L1, CAN::Unsigned32},
    {"lword"_L1, CAN::Unsigned64},
    {"uint16"_L1, CAN::Unsigned16},
    {"uint16t"_L1, CAN::Unsigned16},
    {"uint"_L1, CAN::Unsigned16},
    {"uint24"_L1, CAN::Unsigned24},
    {"uint32"_L1, CAN::Unsigned32},
    {"uint32t"_L1, CAN::Unsigned32},
    {"udint"_L1, CAN::Unsigned32},
    {"uint64"_L1, CAN::Unsigned64},
    {"uint64t"_L1, CAN::Unsigned64},
    {"ulint"_L1, CAN::Unsigned64},
    {"real"_L1, CAN::Real32},
    {"float"_L1, CAN::Real32},
    {"float32"_L1, CAN::Real32},
    {"lreal"_L1, CAN::Real64},
    {"double"_L1, CAN::Real64},
    {"float64"_L1, CAN::Real64},
    {"string"_L1, CAN::VisibleString},
    {"visstring"_L1, CAN::VisibleString},
    {"octets"_L1, CAN::OctetString},
    {"unicode"_L1, CAN::UnicodeString},
    {"time"_L1, CAN::TimeOfDay},
    {"timediff"_L1, CAN::TimeDifference},
    {"stringasteriks"_L1, CAN::StringAsterisk},
};

constexpr Word objectCodes[] = {
    {"DOMAIN"_L1, CANopen::Domain}, {"DEFTYPE"_L1, CANopen::DefType}, {"DEFSTRUCT"_L1, CANopen::DefStruct},
    {"VARIABLE"_L1, CANopen::Var},  {"ARRAY"_L1, CANopen::Array},     {"RECORD"_L1, CANopen::Record},
    {"REC"_L1, CANopen::Record},    {"STRUCT"_L1, CANopen::Record},
};

struct AccessSpelling
{
    QLatin1StringView word;
    Access access;
};

constexpr AccessSpelling accessSpellings[] = {
    {"const"_L1, Access::Const},          {"constant"_L1, Access::Const},      {"c"_L1, Access::Const},
    {"ro"_L1, Access::ReadOnly},          {"r"_L1, Access::ReadOnly},          {"read"_L1, Access::ReadOnly},
    {"readonly"_L1, Access::ReadOnly},    {"wo"_L1, Access::WriteOnly},        {"w"_L1, Access::WriteOnly},
    {"write"_L1, Access::WriteOnly},      {"writeonly"_L1, Access::WriteOnly}, {"rw"_L1, Access::ReadWrite},
    {"wr"_L1, Access::ReadWrite},         {"r/w"_L1, Access::ReadWrite},       {"readwrite"_L1, Access::ReadWrite},
    {"read/write"_L1, Access::ReadWrite}, {"rww"_L1, Access::ReadWriteOutput}, {"rwr"_L1, Access::ReadWriteInput},
};

/// The form in which words are compared: lower case, without blanks, "_" and "-".
QString comparable(const QString &text)
{
    QString result;
    result.reserve(text.size());
    for (const QChar c : text) {
        if (!c.isSpace() && c != u'_' && c != u'-')
            result.append(c.toLower());
    }
    return result;
}

const TypeRow *findType(quint32 code)
{
    const auto row = std::ranges::find(types, code, &TypeRow::code);
    return row == types.end() ? nullptr : &*row;
}

COHelper::Limits rangeOf(const TypeRow &row)
{
    if (row.kind == Kind::Unsigned)
        return {u"0"_s, QString::number(~quint64{0} >> (64 - row.bits))};
    if (row.kind != Kind::Signed)
        return {};
    const auto high = static_cast<qint64>(~quint64{0} >> (65 - row.bits));
    return {QString::number(-high - 1), QString::number(high)};
}

} // namespace

QString COHelper::index2DataTypeString(quint32 dataType)
{
    const TypeRow *row = findType(dataType);
    return row ? QString(row->name) : u"0x%1"_s.arg(dataType, 4, 16, QLatin1Char('0'));
}

QString COHelper::index2DataTypeShortString(quint32 dataType)
{
    const TypeRow *row = findType(dataType);
    return row ? QString(row->shortName) : QString();
}

quint32 COHelper::mapDataTypeString(const QString &text)
{
    static const QHash<QString, quint32> words = [] {
        QHash<QString, quint32> map;
        for (const TypeRow &row : types) {
            map.insert(comparable(row.name), row.code);
            map.insert(comparable(row.shortName), row.code);
        }
        for (const Word &alias : typeAliases)
            map.insert(alias.word, alias.code);
        return map;
    }();
    if (const auto code = NumberText::ofDescription<quint32>(text))
        return *code <= 0xffff ? *code : quint32{CAN::NoType};
    // A length behind the name, "VISIBLE_STRING(8)", is no part of it.
    const auto length = std::ranges::find_if(text, [](QChar c) { return c == u'(' || c == u'['; });
    return words.value(comparable(text.first(length - text.begin())), CAN::NoType);
}

quint32 COHelper::getDataLengthBits(quint32 dataType)
{
    const TypeRow *row = findType(dataType);
    return row ? row->bits : 0;
}

bool COHelper::isSigned(quint32 dataType)
{
    const TypeRow *row = findType(dataType);
    return row && row->kind == Kind::Signed;
}

COHelper::Limits COHelper::getDefaultLimits(quint32 dataType)
{
    // Every sub-object without limits of its own has these: they share their texts.
    static const QHash<quint32, Limits> known = [] {
        QHash<quint32, Limits> limits;
        for (const TypeRow &row : types)
            limits.insert(row.code, rangeOf(row));
        return limits;
    }();
    return known.value(dataType);
}

std::optional<COHelper::Limits> COHelper::declaredLimits(quint32 dataType, const QString &low, const QString &high)
{
    const bool hasLow = !low.trimmed().isEmpty();
    const bool hasHigh = !high.trimmed().isEmpty();
    if (!hasLow && !hasHigh)
        return {};
    const Limits own = dataType == CAN::Real32 ? Limits{u"-3.4028234663852886e+38"_s, u"3.4028234663852886e+38"_s}
                                               : getDefaultLimits(dataType);
    return Limits{hasLow ? low : own.low, hasHigh ? high : own.high};
}

bool COHelper::isTextType(quint32 dataType)
{
    const TypeRow *row = findType(dataType);
    return row && row->kind == Kind::Text;
}

QString COHelper::objectCode2String(quint32 objectCode)
{
    const auto row = std::ranges::find(objectCodes, objectCode, &Word::code);
    return row == std::end(objectCodes) ? QString::number(objectCode) : QString(row->word);
}

quint32 COHelper::string2objectCode(const QString &text)
{
    if (const auto code = NumberText::ofDescription<quint32>(text))
        return *code;
    const QString word = comparable(text).toUpper();
    const auto row = std::ranges::find(objectCodes, word, &Word::word);
    return row == std::end(objectCodes) ? quint32{CANopen::Var} : row->code;
}

QString COHelper::normalizeAccessType(const QString &text)
{
    QString word = comparable(text);
    auto row = std::ranges::find(accessSpellings, word, &AccessSpelling::word);
    if (row == std::end(accessSpellings)) {
        const QString trimmed = text.trimmed();
        const auto end = std::ranges::find_if(trimmed, [](QChar c) { return c.isSpace(); });
        word = comparable(trimmed.first(end - trimmed.begin()));
        row = std::ranges::find(accessSpellings, word, &AccessSpelling::word);
    }
    return row == std::end(accessSpellings) ? textOf(CANopen::Access::ReadOnly) : textOf(row->access);
}

CANopen::ObjectCategory COHelper::convertCategory(const QString &text)
{
    const QString word = comparable(text);
    if (word == "mandatory"_L1)
        return CANopen::Mandatory;
    return word == "conditional"_L1 ? CANopen::Conditional : CANopen::Optional;
}
