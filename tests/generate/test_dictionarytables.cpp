#include "generate/model/dictionarytables.h"
#include "generate/names/indexdefines.h"
#include "support/projectbuilder.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using TestSupport::ProjectBuilder;

namespace {

TEST(ValuePools, ReadAndPrintNumbers)
{
    struct Case
    {
        ValueType type;
        QString text;
        QString initialiser;
    };
    using enum ValueType;
    for (const Case &c : {
             Case{U8, u"16"_s, u"(UNSIGNED8)16u"_s},
             Case{U8, u"0x1FF"_s, u"(UNSIGNED8)255u"_s},
             Case{U8, u"-1"_s, u"(UNSIGNED8)0u"_s},
             Case{U8, u"12 apples"_s, u"(UNSIGNED8)0u"_s},
             Case{U16, u"010"_s, u"(UNSIGNED16)8u"_s},
             Case{U32, u"0xFFFFFFFF"_s, u"(UNSIGNED32)4294967295UL"_s},
             Case{U32, u"0x100000000"_s, u"(UNSIGNED32)0UL"_s},
             Case{U24, u"0x1234567"_s, u"U24_SET(0x23,0x45,0x67)"_s},
             Case{U40, u"0x1122334455"_s, u"U40_SET(0x11,0x22,0x33,0x44,0x55)"_s},
             Case{U48, u"1"_s, u"U48_SET(0x00,0x00,0x00,0x00,0x00,0x01)"_s},
             Case{U64, u"0xFFEEDDCCBBAA9988"_s, u"U64_SET(0xff,0xee,0xdd,0xcc,0xbb,0xaa,0x99,0x88)"_s},
             Case{I8, u"-128"_s, u"(INTEGER8)-128"_s},
             Case{I8, u"0xFF"_s, u"(INTEGER8)-1"_s},
             Case{I16, u"-300"_s, u"(INTEGER16)-300"_s},
             Case{I24, u"-2"_s, u"I24_SET(0xff,0xff,0xfe)"_s},
             Case{I32, u"-2147483648"_s, u"(INTEGER32)-2147483648L"_s},
             Case{I32, u"0x80000000"_s, u"(INTEGER32)-2147483648L"_s},
             Case{I32, u"0x180000000"_s, u"(INTEGER32)0L"_s},
             Case{R32, u"0.5"_s, u"(REAL32)0.5f"_s},
             Case{R32, u"-3"_s, u"(REAL32)-3.0f"_s},
             Case{R32, u"1e20"_s, u"(REAL32)1e+20f"_s},
             Case{R32, u"1e99"_s, u"(REAL32)0.0f"_s},
             Case{R32, u"nan"_s, u"(REAL32)0.0f"_s},
             Case{R32, u"1,5"_s, u"(REAL32)0.0f"_s},
         })
        EXPECT_EQ(parseValue(c.type, c.text).initialiser(), c.initialiser) << qPrintable(c.text);
    EXPECT_EQ(parseValue(I16, u"0x10"_s, 10).initialiser(), u"(INTEGER16)0"_s);
}

TEST(ValuePools, HoldEachConstantOnce)
{
    ConstantPool pool;
    for (const auto &[text, position] : std::vector<std::pair<QString, quint16>>{
             {u"0x1000001"_s, 0}, {u"2"_s, 1}, {u"1"_s, 0}, {u"3"_s, 2}, {u"0x2"_s, 1}})
        EXPECT_EQ(pool.add(parseValue(ValueType::U24, text)), position) << qPrintable(text);
    EXPECT_EQ(pool.add(parseValue(ValueType::R32, u"0.1"_s)), 0);
    EXPECT_EQ(pool.add(parseValue(ValueType::R32, u"-0.0"_s)), 1);
    EXPECT_EQ(pool.add(parseValue(ValueType::R32, u"0"_s)), 1);
    EXPECT_EQ(pool.array(ValueType::U24).values.size(), 3U);
}

TEST(DictionaryTables, GiveTheLinesOfADeviceLetters)
{
    ProjectBuilder project;
    EXPECT_EQ(collectDictionaryTables(*project.store(), {}).lineSuffix(0), QString());
    const DictionaryTables always = collectDictionaryTables(*project.misc(u"generateML"_s, u"true"_s).store(), {});
    for (const auto &[line, suffix] : {std::pair(0, u"a"_s), {25, u"z"_s}, {26, u"B"_s}})
        EXPECT_EQ(always.lineSuffix(static_cast<quint8>(line)), suffix);
}

/// The names of a project of two lines, up to the moment when the job is cancelled.
TEST(IndexDefines, StopTheObjectsOfOneLineWhenCancelled)
{
    ProjectBuilder project;
    project.line(0, 6).object(0x1000, u"A"_s).object(0x1001, u"B"_s).canId(1, ObjectDataBase::receive, u"C"_s);
    project.line(1, 1).object(0x1000, u"A"_s);
    int calls = 0;
    QStringList names;
    collectIndexDefines(
        *project.store(), {0, 1}, true, [&] { return ++calls == 2; },
        [&](const IndexDefines &item) { names.append(item.prefix + item.defines.first().name); });
    EXPECT_EQ(names, (QStringList{u"L0_I_A"_s, u"L0_ID_C"_s, u"L1_I_A"_s}));
}

} // namespace
