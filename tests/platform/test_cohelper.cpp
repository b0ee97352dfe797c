#include "nodedict/access.h"
#include "nodedict/canopendatatype.h"
#include "nodedict/cohelper.h"
#include "nodedict/pdomapping.h"

#include <gtest/gtest.h>

#include <QRegularExpression>
#include <QStringList>

using namespace Qt::StringLiterals;

namespace {

struct TypeCase
{
    quint32 code;
    QString name;
    QString shortName;
    quint32 bits;
    QString low = {};
    QString high = {};
};

const TypeCase typeCases[] = {
    {1, u"BOOLEAN"_s, u"B"_s, 1, u"0"_s, u"1"_s},
    {2, u"INTEGER8"_s, u"I8"_s, 8, u"-128"_s, u"127"_s},
    {7, u"UNSIGNED32"_s, u"U32"_s, 32, u"0"_s, u"4294967295"_s},
    {8, u"REAL32"_s, u"R32"_s, 32},
    {9, u"VISIBLE_STRING"_s, u"VS"_s, 0},
    {12, u"TIME_OF_DAY"_s, u"TOD"_s, 48},
    {15, u"DOMAIN"_s, u"D"_s, 0},
    {16, u"INTEGER24"_s, u"I24"_s, 24, u"-8388608"_s, u"8388607"_s},
    {21, u"INTEGER64"_s, u"I64"_s, 64, u"-9223372036854775808"_s, u"9223372036854775807"_s},
    {27, u"UNSIGNED64"_s, u"U64"_s, 64, u"0"_s, u"18446744073709551615"_s},
    {100, u"UNSIGNED2"_s, u"U2"_s, 2, u"0"_s, u"3"_s},
    {109, u"UNSIGNED12"_s, u"U12"_s, 12, u"0"_s, u"4095"_s},
    {121, u"STRING_ASTERISK"_s, u"SA"_s, 0},
    {124, u"UTF8_STRING"_s, u"UTF8"_s, 0},
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
        for (const QString &text : {row.name, row.name.toLower(), u' ' + row.shortName.toLower(),
                                    QString::number(row.code), u"0x%1"_s.arg(row.code, 4, 16, QLatin1Char('0'))})
            EXPECT_EQ(COHelper::mapDataTypeString(text), row.code) << text.toStdString();
    }
    // A number's name tells its width, and no two types share a name or a short name.
    static const QRegularExpression sized(u"^(UNSIGNED|INTEGER|REAL)(\\d+)$"_s);
    QStringList names;
    for (quint32 code = 0; code < 200; ++code) {
        const QString name = COHelper::index2DataTypeString(code);
        if (const auto match = sized.match(name); match.hasMatch()) {
            EXPECT_EQ(COHelper::getDataLengthBits(code), match.captured(2).toUInt()) << name.toStdString();
        }
        if (!name.startsWith("0x"_L1))
            names << name << COHelper::index2DataTypeShortString(code);
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
    for (const QString &row :
         u"visible string=9|Octet-String=10|uint8_t=5|float=8|VS(8)=9|u8s=5|word=6|\tu16 =6|0x40=64|"
         "010=8|09=9|0=0|=0|nonsense=0|VS[8]=9|65535=65535|65536=0|-5=0"_s.split(u'|'))
        EXPECT_EQ(COHelper::mapDataTypeString(row.section(u'=', 0, 0)), row.section(u'=', 1).toUInt())
            << row.toStdString();
}

TEST(COHelper, DeclaredLimits)
{
    const QString real = u"3.4028234663852886e+38"_s;
    const std::tuple<quint32, QString, QString, QString> rows[] = {
        {CAN::Integer8, u" "_s, u""_s, u"none"_s},          {CAN::Integer8, u"-1"_s, u""_s, u"-1..127"_s},
        {CAN::Integer8, u""_s, u"x"_s, u"-128..x"_s},       {CAN::Real32, u""_s, u"1"_s, u"-%1..1"_s.arg(real)},
        {CAN::Real32, u"1"_s, u""_s, u"1..%1"_s.arg(real)}, {CAN::Real64, u"1"_s, u""_s, u"1.."_s},
    };
    for (const auto &[type, low, high, expected] : rows) {
        const auto limits = COHelper::declaredLimits(type, low, high);
        EXPECT_EQ(limits ? limits->low + ".."_L1 + limits->high : u"none"_s, expected);
    }
}

TEST(COHelper, ObjectCodesAccessTypesCategories)
{
    for (const quint32 type : {CAN::VisibleString, CAN::Domain, CAN::StringAsterisk, CAN::Utf8String, CAN::TimeOfDay})
        EXPECT_EQ(COHelper::isTextType(type), type != CAN::TimeOfDay);
    EXPECT_EQ(COHelper::string2objectCode(u"rec"_s), CANopen::Record);
    for (const quint32 code : {2U, 5U, 6U, 7U, 8U, 9U, 77U})
        EXPECT_EQ(COHelper::string2objectCode(COHelper::objectCode2String(code)), code);
    EXPECT_EQ(COHelper::objectCode2String(7), u"VARIABLE"_s);
    EXPECT_EQ(COHelper::string2objectCode(u" Var "_s), 7U);
    EXPECT_EQ(COHelper::string2objectCode(u"0x9"_s), 9U);
    EXPECT_EQ(COHelper::string2objectCode(u"unknown"_s), 7U);

    for (const QString &row :
         u"const=const|constant=const|RO=ro|read only=ro| Rw =rw|r/w=rw|wo=wo|Write-Only=wo|RWW=rww|"
         "rwr=rwr|wo (remark)=wo|=ro|nonsense=ro"_s.split(u'|'))
        EXPECT_EQ(COHelper::normalizeAccessType(row.section(u'=', 0, 0)), row.section(u'=', 1)) << row.toStdString();

    EXPECT_EQ(COHelper::convertCategory(u" Mandatory"_s), CANopen::Mandatory);
    EXPECT_EQ(COHelper::convertCategory(u"conditional"_s), CANopen::Conditional);
    EXPECT_EQ(COHelper::convertCategory(u"optional"_s), CANopen::Optional);
    EXPECT_EQ(COHelper::convertCategory(u"?"_s), CANopen::Optional);
}

TEST(Access, WhatWordsAllow)
{
    using namespace CANopen;
    for (const QString &row :
         u"const=t|ro=t|wo=wr|rw=wbrt|rwr=wbt|rww=wbr|wx=w|rwx=wb|RW=|ow=w|read=|="_s.split(u'|')) {
        const QString word = row.section(u'=', 0, 0);
        QString allowed;
        allowed += isWritable(word) ? u"w"_s : QString();
        allowed += isReadWrite(word) ? u"b"_s : QString();
        allowed += fitsReceivePdo(word) ? u"r"_s : QString();
        allowed += fitsTransmitPdo(word) ? u"t"_s : QString();
        EXPECT_EQ(allowed, row.section(u'=', 1)) << row.toStdString();
        if (const auto access = accessOf(word)) {
            EXPECT_TRUE(word == *access && textOf(*access) == word);
        }
    }
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
