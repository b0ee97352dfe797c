#include "generate/dictionarytest.h"
#include "generate/stack/virtualtables.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace DictionaryTest;

namespace {

/// A project of PDOs: `mapping` names per communication object the access of its mapping and the mapped values.
struct Pdo
{
    quint16 index;
    QString access;
    QStringList values;
    QString count{};
};

void addPdos(ProjectBuilder &project, const std::vector<Pdo> &pdos)
{
    for (const Pdo &pdo : pdos) {
        project.object(pdo.index, u"any"_s);
        project.object(pdo.index + 0x200, u"any"_s);
        const QString count = pdo.count.isEmpty() ? QString::number(pdo.values.size()) : pdo.count;
        add(project, 0, CAN::Unsigned8, ManagedVariable, count, {}, [&](Sub &sub) { sub.accesstype = pdo.access; });
        quint8 subindex = 0;
        for (const QString &value : pdo.values)
            add(project, ++subindex, CAN::Unsigned32, ManagedVariable, value);
    }
}

TEST(PdoTables, AreMadeForFixedMappings)
{
    ProjectBuilder project;
    addPdos(project, {{0x1400, u"const"_s, {u"0x62000108"_s}},
                      {0x1401, u"const"_s, {u"0x62000208"_s}},
                      {0x1402, u"rw"_s, {u"0x62000108"_s}},
                      {0x1403, u"ro"_s, {u"0x62000108"_s}},
                      {0x1404, u"ro"_s, {u"0x62000108"_s}, u"0xFE"_s},
                      {0x1800, u"ro"_s, {}},
                      {0x1801, u"rw"_s, {u"1"_s, u"2"_s, u"3"_s}},
                      {0x19FF, u"const"_s, {u"0x60000108"_s, u"0x60000110"_s}, u"65"_s}});
    project.object(0x1802, u"without mapping object"_s);
    const DictionaryTables tables = collected(project);
    const LinePdoTables &pdos = tables.lines.front().pdos;

    EXPECT_EQ(tables.mapRows, 3U);
    EXPECT_EQ(pdos.uniqueRpdoTables, (std::vector<std::size_t>{0, 1, 4}));
    EXPECT_EQ(pdos.rpdo(0x1403)->table, std::optional<quint16>(0));
    EXPECT_EQ(pdos.rpdo(0x1404)->table, std::optional<quint16>(2));
    EXPECT_FALSE(pdos.rpdo(0x1402)->fixed);
    EXPECT_EQ(pdos.rpdo(0x1402)->table, std::nullopt);
    EXPECT_TRUE(pdos.tpdo(0x1800)->fixed);
    EXPECT_EQ(pdos.tpdo(0x1800)->table, std::nullopt);
    EXPECT_TRUE(pdos.tpdo(0x1802)->fixed);
    EXPECT_EQ(pdos.tpdo(0x1802)->table, std::nullopt);
    EXPECT_EQ(pdos.tpdo(0x19FF)->table, std::optional<quint16>(512));
    EXPECT_EQ(pdos.tpdo(0x19FF)->count, 65);
    EXPECT_EQ(pdos.tpdo(0x19FF)->entries.size(), 1U);
    EXPECT_EQ(pdos.rpdo(0x1405), nullptr);
    EXPECT_TRUE(collected(project, {.serverMode = true}).lines.front().pdos.tpdos.empty());
}

TEST(PdoTables, PointToTheData)
{
    ProjectBuilder project;
    project.object(0x2000, u"any"_s);
    add(project, 0, CAN::Unsigned8, ManagedConst, u"9"_s);
    add(project, 1, CAN::Unsigned8, ManagedVariable);
    add(project, 2, CAN::Unsigned6, ManagedVariable);
    add(project, 3, CAN::Unsigned8, ManagedConst, u"4"_s);
    add(project, 4, CAN::Integer16, Variable, {}, u"value${subindex}"_s);
    add(project, 5, CAN::Integer16, Variable, {}, u"at(1)"_s);
    add(project, 6, CAN::Integer16, Variable);
    add(project, 7, CAN::Integer16, VirtualObject);
    add(project, 8, CAN::TimeOfDay, ManagedVariable);
    add(project, 9, CAN::Real64, ManagedVariable);
    const QStringList expected{u"&od_const_u8[1]"_s, u"&od_u8[1]"_s, u"&od_u8[2]"_s, u"&od_const_u8[3]"_s,
                               u"&(value4)"_s,       u"at(1)"_s,     u"NULL"_s,      u"0"_s,
                               u"&od_u48[0]"_s,      u"NULL"_s,      u"NULL"_s};
    QStringList values;
    for (int i = 0; i < expected.size(); ++i)
        values.append(u"0x2000%1"_s.arg(i * 256 + 8, 4, 16, '0'_L1));
    addPdos(project, {{0x1800, u"const"_s, values}});
    const DictionaryTables tables = collected(project);
    QStringList pointers;
    for (const PdoMapEntry &entry : tables.lines.front().pdos.tpdo(0x1800)->entries)
        pointers.append(entry.pointer);
    EXPECT_EQ(pointers, expected);
}

TEST(PdoTables, RouteSharedDataToOtherLines)
{
    ProjectBuilder project;
    const auto addData = [&](bool shared) {
        project.object(0x2000, u"any"_s);
        for (const quint8 subindex : std::initializer_list<quint8>{1, 2})
            add(project, subindex, CAN::Unsigned8, ManagedVariable, {}, {},
                [&](Sub &sub) { sub.sharedlines = shared; });
    };
    addData(true);
    project.object(0x1F2C, u"PDO routing"_s);
    add(project, 0, CAN::Unsigned8, ManagedConst, u"1"_s);
    EXPECT_FALSE(collected(project).pdoRouting);
    add(project, 1, CAN::Unsigned32, ManagedVariable);
    addPdos(project, {{0x1400, u"const"_s, {u"0x20000108"_s, u"0x20000208"_s}},
                      {0x1402, u"const"_s, {u"0x20000108"_s, u"0x20000208"_s}}});
    project.line(1, 1);
    addData(true);
    addPdos(project, {{0x1800, u"const"_s, {u"0x20000308"_s}}, {0x1803, u"const"_s, {u"0x20000108"_s}}});
    project.line(2, 1);
    addData(false);
    addPdos(project, {{0x1800, u"const"_s, {u"0x20000108"_s}}});

    const DictionaryTables tables = collected(project);
    EXPECT_TRUE(tables.pdoRouting);
    const LinePdoTables &pdos = tables.lines.front().pdos;
    EXPECT_TRUE(pdos.uniqueRpdoTables.empty());
    EXPECT_EQ(pdos.rpdo(0x1402)->table, std::optional<quint16>(3));
    EXPECT_EQ(pdos.rpdo(0x1400)->entries.at(0).routing, (std::vector<quint32>{0, 4, 0}));
    EXPECT_EQ(pdos.rpdo(0x1400)->entries.at(1).routing, (std::vector<quint32>{0, 0, 0}));
    // A shared object's data is that of line 0.
    project.line(1, 1);
    EXPECT_EQ(tables.line(1)->pdos.tpdo(0x1803)->entries.front().pointer,
              tables.line(0)->pdos.rpdos.front().entries.front().pointer);
}

TEST(VirtualTables, NumberWhatIsStoredAlike)
{
    ProjectBuilder project;
    project.object(0x3000, u"any"_s);
    for (quint8 subindex = 0; subindex <= 3; ++subindex)
        add(project, subindex, CAN::Unsigned8, VirtualObject, subindex == 0 ? u"3"_s : u"7"_s);
    project.object(0x3001, u"any"_s);
    add(project, 0, CAN::Boolean, VirtualObject);

    const VirtualTables tables = collectVirtualTables(collected(project, {.compactDescription = true}), false);
    QStringList rows;
    for (const VirtualDescriptionRow &row : tables.description)
        rows.append(u"%1 %2"_s.arg(row.dataName()).arg(row.value));
    EXPECT_EQ(rows, (QStringList{u"V_3000_0 0"_s, u"V_3000_1 1"_s, u"V_3001_0 4"_s}));
}

} // namespace
