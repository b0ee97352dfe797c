#include "nodedict/canopendatatype.h"
#include "nodedict/cohelper.h"
#include "nodedict/pdomapping.h"

#include <gtest/gtest.h>

#include <QStringList>

using namespace Qt::StringLiterals;

namespace {

struct TypeCase
{
    quint32 code;
    QString name;
    QString shortName;
    quint32 bits;
    QString low;
    QString high;
};

const TypeCase typeCases[] = {
    {1, u"BOOLEAN"_s, u"B"_s, 1, u"0"_s, u"1"_s},
    {2, u"INTEGER8"_s, u"I8"_s, 8, u"-128"_s, u"127"_s},
    {4, u"INTEGER32"_s, u"I32"_s, 32, u"-2147483648"_s, u"2147483647"_s},
    {5, u"UNSIGNED8"_s, u"U8"_s, 8, u"0"_s, u"255"_s},
    {7, u"UNSIGNED32"_s, u"U32"_s, 32, u"0"_s, u"4294967295"_s},
    {8, u"REAL32"_s, u"R32"_s, 32, {}, {}},
    {9, u"VISIBLE_STRING"_s, u"VS"_s, 0, {}, {}},
    {10, u"OCTET_STRING"_s, u"OS"_s, 0, {}, {}},
    {12, u"TIME_OF_DAY"_s, u"TOD"_s, 48, {}, {}},
    {15, u"DOMAIN"_s, u"D"_s, 0, {}, {}},
    {16, u"INTEGER24"_s, u"I24"_s, 24, u"-8388608"_s, u"8388607"_s},
    {21, u"INTEGER64"_s, u"I64"_s, 64, u"-9223372036854775808"_s, u"9223372036854775807"_s},
    {22, u"UNSIGNED24"_s, u"U24"_s, 24, u"0"_s, u"16777215"_s},
    {25, u"UNSIGNED48"_s, u"U48"_s, 48, u"0"_s, u"281474976710655"_s},
    {27, u"UNSIGNED64"_s, u"U64"_s, 64, u"0"_s, u"18446744073709551615"_s},
    {100, u"UNSIGNED2"_s, u"U2"_s, 2, u"0"_s, u"3"_s},
    {105, u"UNSIGNED7"_s, u"U7"_s, 7, u"0"_s, u"127"_s},
    {109, u"UNSIGNED12"_s, u"U12"_s, 12, u"0"_s, u"4095"_s},
    {119, u"UNSIGNED23"_s, u"U23"_s, 23, u"0"_s, u"8388607"_s},
    {121, u"STRING_ASTERISK"_s, u"SA"_s, 0, {}, {}},
    {124, u"UTF8_STRING"_s, u"UTF8"_s, 0, {}, {}},
};

} // namespace

TEST(COHelper, DataTypes)
{
    for (const TypeCase &row : typeCases) {
        SCOPED_TRACE(row.name.toStdString());
        EXPECT_EQ(COHelper::index2DataTypeString(row.code), row.name);
        EXPECT_EQ(COHelper::index2DataTypeShortString(row.code), row.shortName);
        EXPECT_EQ(COHelper::getDataLengthBits(row.code), row.bits);
        EXPECT_EQ(COHelper::getDefaultLimits(row.code).low, row.low);
        EXPECT_EQ(COHelper::getDefaultLimits(row.code).high, row.high);
        for (const QString &text : {row.name, row.shortName, row.name.toLower(), u' ' + row.shortName.toLower(),
                                    QString::number(row.code), u"0x%1"_s.arg(row.code, 4, 16, QLatin1Char('0'))})
            EXPECT_EQ(COHelper::mapDataTypeString(text), row.code) << text.toStdString();
    }
    // No two types share a name or a short name, and none is without.
    QStringList names;
    for (quint32 code = 0; code < 200; ++code) {
        if (const QString name = COHelper::index2DataTypeShortString(code); !name.isEmpty())
            names << name << COHelper::index2DataTypeString(code);
    }
    EXPECT_EQ(names.size(), 2 * 48);
    EXPECT_EQ(names.removeDuplicates(), 0);
}

TEST(COHelper, DataTypesOutsideTheTable)
{
    EXPECT_EQ(COHelper::index2DataTypeString(0x40), u"0x0040"_s);
    EXPECT_EQ(COHelper::index2DataTypeShortString(0x40), QString());
    EXPECT_EQ(COHelper::getDataLengthBits(0x17), 0U);
    EXPECT_EQ(COHelper::getDefaultLimits(0).high, QString());
    const std::pair<QString, quint32> words[] = {
        {u"visible string"_s, 9},
        {u"Octet-String"_s, 10},
        {u"uint8_t"_s, 5},
        {u"float"_s, 8},
        {u"bool"_s, 1},
        {u"u8s"_s, 5},
        {u"0x40"_s, 0x40},
        {u"010"_s, 8},
        {u"09"_s, 9},
        {u""_s, 0},
        {u"nonsense"_s, 0},
        {u"65536"_s, 0},
        {u"-5"_s, 0},
        {u"\tu16 "_s, 6},
    };
    for (const auto &[text, code] : words)
        EXPECT_EQ(COHelper::mapDataTypeString(text), code) << text.toStdString();
}

TEST(COHelper, ObjectCodesAccessTypesCategories)
{
    for (const quint32 code : {2U, 5U, 6U, 7U, 8U, 9U, 77U})
        EXPECT_EQ(COHelper::string2objectCode(COHelper::objectCode2String(code)), code);
    EXPECT_EQ(COHelper::objectCode2String(7), u"VARIABLE"_s);
    EXPECT_EQ(COHelper::string2objectCode(u" Var "_s), 7U);
    EXPECT_EQ(COHelper::string2objectCode(u"array"_s), 8U);
    EXPECT_EQ(COHelper::string2objectCode(u"0x9"_s), 9U);
    EXPECT_EQ(COHelper::string2objectCode(u"unknown"_s), 7U);

    const std::pair<QString, QString> accesses[] = {
        {u"const"_s, u"const"_s},    {u"RO"_s, u"ro"_s},          {u" Rw "_s, u"rw"_s}, {u"wo"_s, u"wo"_s},
        {u"RWW"_s, u"rww"_s},        {u"rwr"_s, u"rwr"_s},        {u"r/w"_s, u"rw"_s},  {u"read only"_s, u"ro"_s},
        {u"Write-Only"_s, u"wo"_s},  {u"constant"_s, u"const"_s}, {u""_s, u"ro"_s},     {u"nonsense"_s, u"ro"_s},
        {u"wo (remark)"_s, u"wo"_s},
    };
    for (const auto &[text, access] : accesses)
        EXPECT_EQ(COHelper::normalizeAccessType(text), access) << text.toStdString();

    EXPECT_EQ(COHelper::convertCategory(u" Mandatory"_s), CANopen::Mandatory);
    EXPECT_EQ(COHelper::convertCategory(u"conditional"_s), CANopen::Conditional);
    EXPECT_EQ(COHelper::convertCategory(u"optional"_s), CANopen::Optional);
    EXPECT_EQ(COHelper::convertCategory(u"?"_s), CANopen::Optional);
}

TEST(PDOMapping, WordsAndNumbers)
{
    const QStringList csv = {u"forbidden"_s, u"allowed"_s, u"default"_s, u"rpdo"_s, u"tpdo"_s};
    const QStringList xdd = {u"no"_s, u"optional"_s, u"default"_s, u"RPDO"_s, u"TPDO"_s};
    for (uint number = 0; number < 5; ++number) {
        const PDOMapping mapping(number);
        EXPECT_EQ(mapping.toUInt(), number);
        EXPECT_EQ(mapping.toBinary(), number == 0 ? 0U : 1U);
        EXPECT_EQ(mapping.getCSVStringValue(), csv[number]);
        EXPECT_EQ(mapping.getXDDStringValue(), xdd[number]);
        EXPECT_EQ(PDOMapping::fromCSVString(u' ' + csv[number].toUpper()), mapping);
    }
    EXPECT_EQ(PDOMapping(17U).toUInt(), 17U) << "a number of a later version survives";
    EXPECT_EQ(PDOMapping(17U).getCSVStringValue(), u"forbidden"_s);
    EXPECT_EQ(PDOMapping::fromCSVString(u"yes"_s), PDOMapping::Forbidden);
}
