#include "generate/dictionarytest.h"
#include "generate/stack/indexdefines.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace DictionaryTest;

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

TEST(DictionaryTables, ShortenTailsOfEqualSubindices)
{
    struct Case
    {
        quint16 index;
        QString defaults; ///< one letter per subindex, from 0; a blank is a gap
        int limit;
    };
    for (const Case &c : {
             Case{0x2000, u"naaaa"_s, 1},
             Case{0x2000, u"nabbb"_s, 2},
             Case{0x2000, u"nabab"_s, notCompact},
             Case{0x2000, u"na"_s, notCompact},
             Case{0x2000, u"naa"_s, 1},
             Case{0x2000, u"na aa"_s, notCompact},
             Case{0x2000, u"nab bb"_s, notCompact},
             Case{0x2000, u"n abb"_s, 3},
             Case{0x2000, u" aaa"_s, 1},
             Case{0x1200, u"naaa"_s, 1},
             Case{0x11FF, u"naaa"_s, notCompact},
         }) {
        ProjectBuilder project;
        project.object(c.index, u"any"_s);
        for (int i = 0; i < c.defaults.size(); ++i) {
            if (c.defaults.at(i) != u' ')
                add(project, static_cast<quint8>(i), CAN::Unsigned8, Variable, QString(c.defaults.at(i)),
                    u"v[${subindex}]"_s);
        }
        const DictionaryTables tables = collected(project, {.compactDescription = true});
        EXPECT_EQ(tables.lines.front().objects.front().compactLimit, c.limit) << qPrintable(c.defaults);
        EXPECT_EQ(collected(project).lines.front().objects.front().compactLimit, notCompact);
        for (const DescriptionRow &row : tables.description)
            EXPECT_EQ(row.attributes.contains(u"CO_ATTR_COMPACT"_s), row.subindex == c.limit);
        // The rows up to the limit, while each subindex keeps its variable.
        const auto subs = static_cast<std::size_t>(c.defaults.count(QRegularExpression(u"\\S"_s)));
        const auto counted = std::ranges::count_if(tables.lines.front().objects.front().subs,
                                                   [&](const DictionarySub &sub) { return sub.subindex <= c.limit; });
        EXPECT_EQ(tables.description.size(), static_cast<std::size_t>(counted));
        EXPECT_EQ(tables.descriptionCount, static_cast<quint32>(counted));
        EXPECT_EQ(tables.assign.front().subs, static_cast<quint32>(counted));
        EXPECT_EQ(tables.pointers[0].names.size(), subs);
    }
}

TEST(DictionaryTables, CompareWhatTheStackSeesForCompaction)
{
    const std::vector<std::pair<const char *, std::function<void(Sub &)>>> changes{
        {"datatype", [](Sub &sub) { sub.datatype = CAN::Boolean; }},
        {"access", [](Sub &sub) { sub.accesstype = u"rw"_s; }},
        {"mapping", [](Sub &sub) { sub.pdomapping = PDOMapping::Allowed; }},
        {"low limit", [](Sub &sub) { sub.lowlimit = u"1"_s; }},
        {"up limit", [](Sub &sub) { sub.uplimit = u"1"_s; }},
        {"size", [](Sub &sub) { sub.size = 1; }},
        {"default in EDS", [](Sub &sub) { sub.defaultineds = false; }},
        {"limit in EDS", [](Sub &sub) { sub.limitineds = true; }},
        {"implementation", [](Sub &sub) { sub.implementation = ManagedConst; }},
        {"variable", [](Sub &sub) { sub.varname = u"a c"_s; }},
        {"storage", [](Sub &sub) { sub.nvstorage = true; }},
        {"EDS form", [](Sub &sub) { sub.writedefaulttoeds = 2; }},
    };
    const auto limitWith = [](const std::function<void(Sub &)> &change) {
        ProjectBuilder project;
        project.object(0x2000, u"any"_s);
        for (const quint8 subindex : std::initializer_list<quint8>{0, 1, 2})
            add(project, subindex, CAN::Unsigned8, Variable, u"0"_s, u"a b"_s,
                subindex == 1 ? change : std::function<void(Sub &)>());
        return collected(project, {.compactDescription = true}).lines.front().objects.front().compactLimit;
    };
    for (const auto &[name, change] : changes)
        EXPECT_EQ(limitWith(change), notCompact) << name;
    EXPECT_EQ(limitWith([](Sub &sub) {
                  sub.name = u"other"_s;
                  sub.varname = u" a  b "_s;
              }),
              1);
}

TEST(DictionaryTables, GiveTheLinesOfADeviceLetters)
{
    ProjectBuilder project;
    EXPECT_EQ(collected(project).lineSuffix(0), QString());
    const DictionaryTables always = collected(project.misc(u"generateML"_s, u"true"_s));
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
    for (const auto &line : collectIndexDefines(*project.store(), {0, 1}, true, [&] { return ++calls == 2; }).lines) {
        for (const auto &block : line.blocks)
            names.append(line.prefix + block.first().name);
    }
    EXPECT_EQ(names, (QStringList{u"L0_I_A"_s, u"L0_ID_C"_s, u"L1_I_A"_s}));
}

} // namespace
