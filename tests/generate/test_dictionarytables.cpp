#include "generate/dictionarytest.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace DictionaryTest;

namespace {

QStringList constants(const DictionaryTables &tables, ValueType type)
{
    QStringList result;
    for (const PoolValue &value : tables.constants.array(type).values)
        result.append(value.initialiser());
    return result;
}

QStringList managed(const DictionaryTables &tables, ValueType type)
{
    QStringList result;
    for (const PoolValue &value : tables.managed[static_cast<std::size_t>(type)].values)
        result.append(value.initialiser());
    return result;
}

const DescriptionRow *rowOf(const DictionaryTables &tables, quint8 line, quint16 index, quint8 subindex)
{
    const auto row = std::ranges::find_if(tables.description, [&](const DescriptionRow &each) {
        return each.line == line && each.index == index && each.subindex == subindex;
    });
    return row == tables.description.end() ? nullptr : &*row;
}

/// The rows of od_assign as "index subs highest start".
QStringList assignRows(const DictionaryTables &tables)
{
    QStringList rows;
    for (const AssignRow &row : tables.assign)
        rows.append(u"%1 %2 %3 %4"_s.arg(QString::number(row.index, 16)).arg(row.subs).arg(row.highest).arg(row.start));
    return rows;
}

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

TEST(DictionaryTables, PoolDefaultsOfEveryImplementationAndKeepManagedValuesApart)
{
    ProjectBuilder project;
    project.object(0x2000, u"any"_s);
    add(project, 0, CAN::Unsigned8, ManagedVariable, u"0x10"_s);
    add(project, 1, CAN::Unsigned8, ManagedVariable, u"16"_s);
    add(project, 2, CAN::Unsigned32, ManagedVariable, u"$NodeId+0x200"_s);
    add(project, 3, CAN::Boolean, VirtualObject, u"1"_s);
    add(project, 4, CAN::Unsigned7, Variable, u"7"_s, u"v"_s);
    add(project, 5, CAN::TimeOfDay, ManagedConst, u"5"_s);
    add(project, 6, CAN::VisibleString, ManagedConst, u"text"_s, {}, [](Sub &sub) { sub.size = 4; });
    add(project, 7, CAN::OctetString, ManagedConst, u"text"_s, {}, [](Sub &sub) { sub.size = 9; });
    add(project, 8, CAN::Utf8String, ManagedConst, u"ü"_s);
    add(project, 9, CAN::VisibleString, Variable, u"no constant"_s, u"s"_s);
    add(project, 10, CAN::Real64, ManagedConst, u"1"_s);
    add(project, 11, CAN::NoType, ManagedConst, u"1"_s);
    const DictionaryTables tables = collected(project);

    EXPECT_EQ(constants(tables, ValueType::U8),
              (QStringList{u"(UNSIGNED8)16u"_s, u"(UNSIGNED8)1u"_s, u"(UNSIGNED8)7u"_s}));
    EXPECT_EQ(constants(tables, ValueType::U32), QStringList{u"(UNSIGNED32)512UL"_s});
    EXPECT_EQ(constants(tables, ValueType::U48).size(), 1);
    EXPECT_EQ(managed(tables, ValueType::U8), (QStringList{u"(UNSIGNED8)16u"_s, u"(UNSIGNED8)16u"_s}));
    EXPECT_EQ(managed(tables, ValueType::U32), QStringList{u"(UNSIGNED32)0UL"_s});
    EXPECT_EQ(tables.visibleStrings.texts, (std::vector<QString>{u"text"_s, u"text"_s}));
    EXPECT_EQ(tables.visibleStrings.sizes, (std::vector<quint32>{4, 9}));
    EXPECT_EQ(tables.utf8Strings.texts, std::vector<QString>{u"ü"_s});
    EXPECT_EQ(tables.defaultPosition(0, 0x2000, 4), 2);
    EXPECT_EQ(tables.defaultPosition(0, 0x2000, 7), 1);
    EXPECT_FALSE(tables.defaultIndexMap.contains(subKey(0, 0x2000, 9)));
    EXPECT_FALSE(tables.defaultIndexMap.contains(subKey(0, 0x2000, 10)));
    EXPECT_FALSE(tables.defaultIndexMap.contains(subKey(0, 0x2000, 11)));
}

TEST(DictionaryTables, LeaveToTheStackWhatItServes)
{
    struct Case
    {
        quint16 index;
        quint8 subindex;
        bool kept;
    };
    for (const Case &c : {
             Case{0x1003, 0, true},  Case{0x1005, 0, false}, Case{0x1006, 0, false}, Case{0x100C, 0, false},
             Case{0x100D, 0, false}, Case{0x1010, 0, true},  Case{0x1010, 1, false}, Case{0x1011, 1, false},
             Case{0x1012, 0, false}, Case{0x1013, 0, true},  Case{0x1014, 0, true},  Case{0x1016, 0, false},
             Case{0x1016, 1, false}, Case{0x1017, 0, false}, Case{0x1018, 1, true},  Case{0x1019, 0, false},
             Case{0x1028, 0, true},  Case{0x1028, 1, false}, Case{0x1029, 1, false}, Case{0x1029, 2, true},
             Case{0x102A, 0, false}, Case{0x1200, 0, true},  Case{0x12FF, 1, false}, Case{0x1300, 0, false},
             Case{0x1301, 0, true},  Case{0x13FF, 1, false}, Case{0x1400, 0, true},  Case{0x1400, 1, false},
             Case{0x1BFF, 1, false}, Case{0x1C00, 1, true},  Case{0x1F10, 0, false}, Case{0x1F11, 1, false},
             Case{0x1F80, 1, true},  Case{0x1F81, 0, true},  Case{0x1F81, 1, false}, Case{0x1F82, 1, false},
         }) {
        ProjectBuilder project;
        project.object(c.index, u"any"_s);
        add(project, c.subindex, CAN::Unsigned8, ManagedVariable);
        EXPECT_EQ(managed(collected(project), ValueType::U8).size(), c.kept ? 1 : 0)
            << std::hex << c.index << ":" << int{c.subindex};
    }
}

TEST(DictionaryTables, TakeLimitsOfWritableNumbers)
{
    struct Case
    {
        quint16 dataType;
        QString access;
        bool inEds;
        std::optional<std::pair<QString, QString>> limits;
    };
    const auto project = [](const Case &c) {
        ProjectBuilder result;
        result.general(u"limit_check"_s, u"1"_s).object(0x2000, u"any"_s);
        add(result, 0, c.dataType, ManagedVariable, {}, {}, [&](Sub &sub) {
            sub.accesstype = c.access;
            sub.limitineds = c.inEds;
            sub.lowlimit = u"3"_s;
            sub.uplimit = u"0x20"_s;
        });
        return collected(result);
    };
    using Limits = std::pair<QString, QString>;
    for (const Case &c : {
             Case{CAN::Unsigned16, u"rw"_s, true, Limits{u"(UNSIGNED16)3u"_s, u"(UNSIGNED16)32u"_s}},
             Case{CAN::Unsigned16, u"wo"_s, true, Limits{u"(UNSIGNED16)3u"_s, u"(UNSIGNED16)32u"_s}},
             Case{CAN::Integer16, u"rwr"_s, true, Limits{u"(INTEGER16)3"_s, u"(INTEGER16)0"_s}},
             Case{CAN::Integer24, u"rww"_s, true, Limits{u"I24_SET(0x00,0x00,0x03)"_s, u"I24_SET(0x00,0x00,0x00)"_s}},
             Case{CAN::Real32, u"rw"_s, true, Limits{u"(REAL32)3.0f"_s, u"(REAL32)0.0f"_s}},
             Case{CAN::Unsigned7, u"rw"_s, true, Limits{u"(UNSIGNED8)3u"_s, u"(UNSIGNED8)32u"_s}},
             Case{CAN::Unsigned16, u"ro"_s, true, {}},
             Case{CAN::Unsigned16, u"rw"_s, false, {}},
             Case{CAN::Unsigned24, u"rw"_s, true, {}},
             Case{CAN::Unsigned64, u"rw"_s, true, {}},
         }) {
        const DictionaryTables tables = project(c);
        const quint32 key = subKey(0, 0x2000, 0);
        ASSERT_EQ(tables.lowerLimitIndexMap.contains(key), c.limits.has_value()) << c.dataType;
        if (!c.limits)
            continue;
        const QStringList pool = constants(tables, *valueTypeOf(c.dataType));
        EXPECT_EQ(pool.at(tables.lowerLimitIndexMap.value(key)), c.limits->first);
        EXPECT_EQ(pool.at(tables.upperLimitIndexMap.value(key)), c.limits->second);
        EXPECT_EQ(rowOf(tables, 0, 0x2000, 0)->lowerPosition, tables.lowerLimitIndexMap.value(key));
    }
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

TEST(DictionaryTables, NameTheServiceOfASubindex)
{
    struct Case
    {
        quint16 index;
        quint8 subindex;
        const char *specifier;
        int value;
    };
    for (const Case &c : {
             Case{0x1003, 0, "_EMCY", 0x1003},    Case{0x1005, 0, "_SYNC", 0x1005},
             Case{0x1006, 0, "_SYNC", 0x1006},    Case{0x100C, 0, "_ERRCTRL", 0x100C},
             Case{0x1010, 0, "_VAR", 0},          Case{0x1010, 1, "_STORE", 0x1010},
             Case{0x1012, 0, "_TIME", 0},         Case{0x1014, 0, "_EMCY", 0x1014},
             Case{0x1016, 0, "_VAR", 0},          Case{0x1016, 3, "_ERRCTRL", 0x1016},
             Case{0x1017, 0, "_ERRCTRL", 0x1017}, Case{0x1018, 1, "_VAR", 0},
             Case{0x1019, 0, "_SYNC", 0x1019},    Case{0x1028, 1, "_EMCY", 0x1028},
             Case{0x1029, 1, "_ERRCTRL", 0x1029}, Case{0x1029, 2, "_VAR", 0},
             Case{0x102A, 0, "_NMT", 0x102A},     Case{0x1032, 1, "_EMCY", 0x1032},
             Case{0x1200, 1, "_SDO_SERVER", 1},   Case{0x127F, 2, "_SDO_SERVER", 0x80},
             Case{0x1280, 1, "_SDO_CLIENT", 1},   Case{0x12FF, 3, "_SDO_CLIENT", 0x80},
             Case{0x1300, 0, "_GFC", 0},          Case{0x1301, 0, "_VAR", 0x1301},
             Case{0x1301, 1, "_SRDO", 0x1301},    Case{0x13F1, 1, "_VAR", 0x13F1},
             Case{0x13FE, 0, "_SRDO", 0x13FE},    Case{0x1400, 0, "_VAR", 0},
             Case{0x1400, 1, "_RPDO", 1},         Case{0x15FF, 2, "_RPDO", 0x200},
             Case{0x1600, 0, "_RMAP", 1},         Case{0x17FF, 1, "_RMAP", 0x200},
             Case{0x1801, 5, "_TPDO", 2},         Case{0x1A01, 0, "_TMAP", 2},
             Case{0x1F10, 1, "_SRD", 0},          Case{0x1F2C, 0, "_VAR", 0},
             Case{0x1F2C, 1, "_NETWORK", 0x1F2C}, Case{0x1F80, 0, "_NMT", 0x1F80},
             Case{0x1F82, 1, "_NMT", 0x1F82},     Case{0x1F90, 0, "_FLYMA", 0},
             Case{0x1F90, 1, "_FLYMA", 0x1F90},   Case{0x6000, 1, "_VAR", 0},
         }) {
        ProjectBuilder project;
        project.object(c.index, u"any"_s);
        add(project, c.subindex, CAN::Unsigned8, ManagedVariable);
        const DictionaryTables tables = collected(project);
        EXPECT_EQ(tables.description.front().specifier, QLatin1StringView(c.specifier)) << std::hex << c.index;
        EXPECT_EQ(tables.description.front().value, c.value) << std::hex << c.index << ":" << int{c.subindex};

        add(project, c.subindex, CAN::Unsigned8, ManagedConst);
        EXPECT_EQ(collected(project).description.front().specifier, "_CONST"_L1);
        EXPECT_EQ(collected(project).description.front().value, 0);
    }
}

TEST(DictionaryTables, TellAccessAndUse)
{
    struct Case
    {
        quint16 dataType;
        const char *access;
        const char *attributes;
    };
    for (const Case &c : {
             Case{CAN::Real32, "const", "CO_ATTR_NUM | CO_ATTR_READ | CO_ATTR_MAP_TR"},
             Case{CAN::Unsigned24, "ro", "CO_ATTR_NUM | CO_ATTR_READ | CO_ATTR_MAP_TR"},
             Case{CAN::VisibleString, "wo", "CO_ATTR_WRITE | CO_ATTR_MAP_REC"},
             Case{CAN::Unsigned40, "rw", "CO_ATTR_READ | CO_ATTR_WRITE | CO_ATTR_MAP_TR | CO_ATTR_MAP_REC"},
             Case{CAN::Integer24, "rwr", "CO_ATTR_READ | CO_ATTR_WRITE | CO_ATTR_MAP_TR"},
             Case{CAN::Domain, "rww", "CO_ATTR_READ | CO_ATTR_WRITE | CO_ATTR_MAP_REC"},
             Case{CAN::Domain, "odd", "CO_ATTR_READ | CO_ATTR_WRITE"},
         }) {
        ProjectBuilder project;
        project.object(0x2000, u"any"_s);
        add(project, 0, c.dataType, ManagedVariable, {}, {}, [&](Sub &sub) {
            sub.accesstype = QString::fromLatin1(c.access);
            sub.pdomapping = PDOMapping::Allowed;
            sub.defaultineds = false;
        });
        add(project, 1, CAN::Unsigned32, ManagedVariable, {}, {}, [](Sub &sub) {
            sub.limitineds = true;
            sub.nvstorage = true;
        });
        const DictionaryTables tables = collected(project);
        EXPECT_EQ(tables.description.at(0).attributes, QLatin1StringView(c.attributes));
        EXPECT_EQ(tables.description.at(1).attributes,
                  u"CO_ATTR_NUM | CO_ATTR_READ | CO_ATTR_DEFVAL | CO_ATTR_LIMIT | CO_ATTR_STORE"_s);
    }
}

TEST(DictionaryTables, GiveEachApplicationVariableItsPlace)
{
    ProjectBuilder project;
    project.object(0x2000, u"any"_s);
    add(project, 0, CAN::Unsigned8, Variable, {}, u"count"_s);
    add(project, 1, CAN::Unsigned5, Variable, {}, u"tab[${subindex}]"_s);
    add(project, 2, CAN::VisibleString, Variable, {}, u"first"_s, [](Sub &sub) { sub.size = 8; });
    add(project, 3, CAN::VisibleString, Variable, {}, u"second"_s);
    add(project, 4, CAN::Utf8String, Variable, {}, u"third"_s);
    add(project, 5, CAN::OctetString, Variable, {}, u"fourth"_s);
    add(project, 6, CAN::Domain, Variable, {}, u"fifth"_s);
    add(project, 7, CAN::Domain, Variable, {}, u"sixth"_s);
    add(project, 8, CAN::Real64, Variable, {}, u"nowhere"_s);
    const DictionaryTables tables = collected(project);
    EXPECT_EQ(tables.pointers[0].names, (std::vector<QString>{u"count"_s, u"tab[1]"_s}));
    EXPECT_EQ(tables.textVariables[0].sizes, (std::vector<quint32>{8, 0}));
    QStringList values;
    for (const DescriptionRow &row : tables.description)
        values.append(row.specifier + QString::number(row.value));
    EXPECT_EQ(values, (QStringList{u"_PTR0"_s, u"_PTR1"_s, u"_PTR0"_s, u"_PTR1"_s, u"_PTR0"_s, u"_PTR0"_s, u"_PTR0"_s,
                                   u"_PTR1"_s, u"_PTR0"_s}));
}

TEST(DictionaryTables, LeaveTheDataOfSrdosToTheirTables)
{
    ProjectBuilder project;
    project.general(u"static_srdo_data"_s, u"1"_s).object(0x1381, u"any"_s);
    add(project, 0, CAN::Unsigned8, ManagedConst, u"1"_s);
    add(project, 1, CAN::Unsigned32, ManagedVariable, u"0x20000208"_s);
    project.object(0x2000, u"any"_s);
    add(project, 1, CAN::Unsigned8, Variable, {}, u"one"_s);
    add(project, 2, CAN::Unsigned8, Variable, {}, u"two"_s);
    const DictionaryTables tables = collected(project);
    EXPECT_EQ(tables.staticSrdoObjects, QSet<quint32>{subKey(0, 0x2000, 2)});
    EXPECT_EQ(tables.pointers[0].names, std::vector<QString>{u"one"_s});
    EXPECT_EQ(rowOf(tables, 0, 0x2000, 2)->specifier, "_SRDO"_L1);
    EXPECT_EQ(rowOf(tables, 0, 0x2000, 2)->value, 0x2000);
}

TEST(DictionaryTables, KeepSharedObjectsOnLineZero)
{
    ProjectBuilder project;
    const auto share = [](Sub &sub) { sub.sharedlines = true; };
    project.object(0x1000, u"any"_s);
    add(project, 0, CAN::Unsigned8, ManagedVariable);
    project.object(0x2000, u"any"_s);
    add(project, 0, CAN::Unsigned8, ManagedVariable, u"5"_s, {}, share);
    add(project, 1, CAN::Unsigned8, ManagedVariable, u"6"_s, {}, share);
    project.line(1, 1).object(0x1000, u"any"_s);
    add(project, 0, CAN::Unsigned8, ManagedVariable);
    project.object(0x2000, u"any"_s);
    add(project, 0, CAN::Unsigned8, ManagedVariable, u"5"_s, {}, share);
    add(project, 1, CAN::Unsigned8, ManagedVariable, u"6"_s, {}, share);
    project.object(0x2001, u"any"_s);
    add(project, 0, CAN::Unsigned8, ManagedVariable);
    const DictionaryTables tables = collected(project);

    EXPECT_EQ(assignRows(tables),
              (QStringList{u"1000 1 0 0"_s, u"2000 2 1 1"_s, u"1000 1 0 3"_s, u"2000 2 1 1"_s, u"2001 1 0 4"_s}));
    EXPECT_EQ(tables.assignCount, 5U);
    EXPECT_EQ(tables.descriptionCount, 7U);
    ASSERT_EQ(tables.description.size(), 5U);
    EXPECT_EQ(managed(tables, ValueType::U8).size(), 5);
    EXPECT_EQ(rowOf(tables, 0, 0x2000, 1)->value, 2);
    const DictionaryLine &second = *tables.line(1);
    EXPECT_EQ(second.assignStart, 2U);
    EXPECT_EQ(second.assignCount, 3U);
    EXPECT_EQ(second.descriptionStart, 3U);
    EXPECT_EQ(second.descriptionCount, 2U);
}

TEST(DictionaryTables, FindTheLinesOfTheDevice)
{
    const auto withObjects = [](const std::vector<std::pair<quint8, int>> &lines, bool always = false) {
        ProjectBuilder project;
        for (const auto &[line, count] : lines) {
            project.line(line, 1);
            project.store()->addIndex(line, 0x0FFF, {});
            for (int i = 0; i < count; ++i)
                project.object(static_cast<quint16>(0x2000 + i), u"any"_s);
        }
        if (always)
            project.misc(u"generateML"_s, u"true"_s);
        return collected(project);
    };
    using Lines = std::vector<quint8>;
    EXPECT_EQ(withObjects({{0, 2}}).lineList, Lines{0});
    EXPECT_FALSE(withObjects({{0, 2}}).multiLine);
    EXPECT_EQ(withObjects({{0, 1}}).lineList, Lines{0});
    EXPECT_EQ(withObjects({}).lineList, Lines{0});

    const DictionaryTables two = withObjects({{0, 2}, {1, 1}, {2, 2}, {33, 2}});
    EXPECT_TRUE(two.multiLine);
    EXPECT_EQ(two.lineList, (Lines{0, 2}));
    EXPECT_EQ(two.lines.size(), 3U);
    EXPECT_FALSE(withObjects({{0, 2}, {2, 2}}).multiLine);

    const DictionaryTables always = withObjects({{0, 2}}, true);
    EXPECT_TRUE(always.multiLine);
    EXPECT_EQ(always.lineList, Lines{0});
    EXPECT_EQ(always.lineSuffix(0), u"a"_s);
    EXPECT_EQ(always.lineSuffix(25), u"z"_s);
    EXPECT_EQ(always.lineSuffix(26), u"B"_s);
    EXPECT_EQ(withObjects({{0, 2}}).lineSuffix(0), QString());
}

TEST(DictionaryTables, PlaceStringDefaultsBySize)
{
    ProjectBuilder project;
    project.object(0x2000, u"any"_s).object(0x2001, u"any"_s);
    add(project, 1, CAN::VisibleString, Variable, u"Grün"_s, u"a"_s, [](Sub &sub) { sub.size = 10; });
    add(project, 2, CAN::OctetString, Variable, u"|x0aFf1"_s, u"b"_s, [](Sub &sub) { sub.size = 3; });
    add(project, 3, CAN::Utf8String, Variable, u"none"_s, u"c"_s);
    add(project, 4, CAN::VisibleString, ManagedConst, u"none"_s);
    add(project, 5, CAN::VisibleString, Variable, {}, u"d"_s, [](Sub &sub) { sub.size = 4; });
    EXPECT_TRUE(collected(project).stringOffsetMap.isEmpty());
    project.general(u"generate_string_defaults"_s, u"2"_s);
    const DictionaryTables tables = collected(project);
    EXPECT_EQ(tables.stringOffsetMap.values(), (QList<quint32>{0, 10, 13}));
    EXPECT_EQ(tables.stringSizeMap.values(), (QList<quint32>{10, 3, 4}));
    const auto bytes = [&](quint8 subindex) { return tables.stringDefaultMap[subKey(0, 0x2001, subindex)].bytes; };
    EXPECT_EQ(bytes(1), QByteArray("Gr\xc3\xbcn"));
    EXPECT_EQ(bytes(2), QByteArray::fromHex("0aff01"));
}

TEST(DictionaryTables, TakeDamagedObjectsAsTheyAre)
{
    ProjectBuilder project;
    project.object(0x2000, u"no subindex"_s).object(0x2001, u"no subindex 0"_s);
    add(project, 3, CAN::Unsigned8, ManagedVariable, u"1"_s);
    add(project, 9, CAN::Unsigned8, ManagedVariable, u"1"_s);
    project.object(0x2002, u"virtual"_s);
    add(project, 0, CAN::Unsigned8, VirtualObject, u"77"_s);
    project.store()->addSubIndex(0, 0x3000, 1, {});
    project.object(0xFFFF, u"all subindices"_s);
    for (int i = 0; i <= 255; ++i)
        add(project, static_cast<quint8>(i), CAN::Unsigned8, ManagedVariable);
    const DictionaryTables tables = collected(project, {.compactDescription = true});
    EXPECT_EQ(assignRows(tables), (QStringList{u"2000 0 0 0"_s, u"2001 2 9 0"_s, u"ffff 2 255 2"_s}));
    EXPECT_EQ(tables.assignCount, 3U);
    EXPECT_EQ(tables.description.size(), 4U);
    EXPECT_EQ(managed(tables, ValueType::U8).size(), 258);
    EXPECT_EQ(collected(project).description.size(), 258U);
    EXPECT_FALSE(collected(project).description.back().attributes.contains(u"COMPACT"_s));
}

} // namespace
