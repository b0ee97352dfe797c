#include "generate/dictionarytest.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace DictionaryTest;

namespace {

QStringList managed(const DictionaryTables &tables, ValueType type)
{
    QStringList result;
    for (const PoolValue &value : tables.managed[static_cast<std::size_t>(type)].values)
        result.append(value.initialiser());
    return result;
}

/// The rows of od_assign as "index subs highest start".
QStringList assignRows(const DictionaryTables &tables)
{
    QStringList rows;
    for (const AssignRow &row : tables.assign)
        rows.append(u"%1 %2 %3 %4"_s.arg(QString::number(row.index, 16)).arg(row.subs).arg(row.highest).arg(row.start));
    return rows;
}

/// An address as "1018:2", and a hexadecimal value behind it as "=2F".
struct Place
{
    quint16 index;
    quint8 subindex;
    int value;
};

QList<Place> places(const char *list)
{
    QList<Place> result;
    for (const QString &text : QString::fromLatin1(list).split(u' ')) {
        const QString address = text.section(u'=', 0, 0);
        result.append({address.section(u':', 0, 0).toUShort(nullptr, 16),
                       static_cast<quint8>(address.section(u':', 1).toUShort()),
                       text.section(u'=', 1).toInt(nullptr, 16)});
    }
    return result;
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

TEST(DictionaryTables, LeaveToTheStackWhatItServes)
{
    const auto isKept = [](const Place &place) {
        ProjectBuilder project;
        project.object(place.index, u"any"_s);
        add(project, place.subindex, CAN::Unsigned8, ManagedVariable);
        return managed(collected(project), ValueType::U8).size() == 1;
    };
    for (const Place &place :
         places("1003:0 1010:0 1013:0 1014:0 1018:1 1028:0 1029:2 1200:0 1301:0 1400:0 1C00:1 1F80:1 1F81:0"))
        EXPECT_TRUE(isKept(place)) << std::hex << place.index;
    for (const Place &place :
         places("1005:0 1006:0 100C:0 100D:0 1010:1 1011:1 1012:0 1016:0 1016:1 1017:0 1019:0 1028:1 1029:1 "
                "102A:0 12FF:1 1300:0 13FF:1 1400:1 1BFF:1 1F10:0 1F11:1 1F81:1 1F82:1"))
        EXPECT_FALSE(isKept(place)) << std::hex << place.index;
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
    for (const auto &[specifier, list] : {
             std::pair("_EMCY", "1003:0=1003 1014:0=1014 1028:1=1028 1032:1=1032"),
             {"_SYNC", "1005:0=1005 1006:0=1006 1019:0=1019"},
             {"_ERRCTRL", "100C:0=100C 1016:3=1016 1017:0=1017 1029:1=1029"},
             {"_VAR", "1010:0=0 1016:0=0 1018:1=0 1029:2=0 1301:0=1301 13F1:1=13F1 1400:0=0 1F2C:0=0 6000:1=0"},
             {"_STORE", "1010:1=1010"},
             {"_TIME", "1012:0=0"},
             {"_NMT", "102A:0=102A 1F80:0=1F80 1F82:1=1F82"},
             {"_SDO_SERVER", "1200:1=1 127F:2=80"},
             {"_SDO_CLIENT", "1280:1=1 12FF:3=80"},
             {"_GFC", "1300:0=0"},
             {"_SRDO", "1301:1=1301 13FE:0=13FE"},
             {"_RPDO", "1400:1=1 15FF:2=200"},
             {"_RMAP", "1600:0=1 17FF:1=200"},
             {"_TPDO", "1801:5=2"},
             {"_TMAP", "1A01:0=2"},
             {"_SRD", "1F10:1=0"},
             {"_NETWORK", "1F2C:1=1F2C"},
             {"_FLYMA", "1F90:0=0 1F90:1=1F90"},
         }) {
        for (const Place &place : places(list)) {
            SCOPED_TRACE(testing::Message() << std::hex << place.index << ':' << int{place.subindex});
            ProjectBuilder project;
            project.object(place.index, u"any"_s);
            add(project, place.subindex, CAN::Unsigned8, ManagedVariable);
            const DictionaryTables tables = collected(project);
            EXPECT_EQ(tables.description.front().specifier, QLatin1StringView(specifier));
            EXPECT_EQ(tables.description.front().value, place.value);
            add(project, place.subindex, CAN::Unsigned8, ManagedConst);
            EXPECT_EQ(collected(project).description.front().specifier, "_CONST"_L1);
            EXPECT_EQ(collected(project).description.front().value, 0);
        }
    }
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
