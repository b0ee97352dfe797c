#include "generate/stack/indexdefines.h"
#include "support/projectbuilder.h"

#include <gtest/gtest.h>

#include <QRegularExpression>

using namespace Qt::StringLiterals;
using TestSupport::ProjectBuilder;

namespace {

constexpr quint8 tx = ObjectDataBase::transmit;
constexpr quint8 rx = ObjectDataBase::receive;

/// The defines as "name value comment" each, those of subindices with ">" in front, the blocks parted by "--".
QStringList collected(
    const ProjectBuilder &project, bool withPrefix = false,
    const std::function<bool()> &cancelled = [] { return false; })
{
    QStringList result;
    const IndexDefines defines =
        collectIndexDefines(*project.store(), project.store()->getNodeList(), withPrefix, cancelled);
    for (const auto &line : defines.lines) {
        for (const auto &block : line.blocks) {
            for (const auto &define : block)
                result.append(u"%1%2%3 %4%5"_s.arg(define.ofSubindex ? u">"_s : QString(), line.prefix, define.name,
                                                   define.value, define.comment));
            result.append(u"--"_s);
        }
    }
    return result;
}

TEST(IndexDefines, MakesIdentifiersOfNames)
{
    ProjectBuilder project;
    project.object(0x1000, u"Device type"_s)
        .object(0x2000, u"Sensor-1 (raw)"_s)
        .sub(0, u"Highest sub-index supported"_s)
        .sub(1, u"Größe ${subindex:x}"_s)
        .object(0x2001, u""_s)
        .object(0x2002, u"Sensor-1 (raw)"_s)
        .sub(0, u"Highest sub-index supported"_s)
        .object(0x2003, u"any"_s, {{u"objectdefine"_s, u"my Name"_s}})
        .sub(0xAB, u"any"_s, [](auto &sub) {
            sub.metadata = {{u"subdefine"_s, u"my Sub"_s}};
        });
    project.store()->addIndex(0, 0x0FFF, {});
    EXPECT_EQ(collected(project), (QStringList{
                                      u"I_DEVICE_TYPE 0x1000u"_s, u"--"_s,                //
                                      u"I_SENSOR_1_RAW 0x2000u"_s,                        //
                                      u">S_HIGHEST_SUB_INDEX_SUPPORTED 0x0u"_s,           //
                                      u">S_GR_SSE_01 0x1u"_s, u"--"_s,                    //
                                      u"I_UNNAMED_OBJECT 0x2001u"_s, u"--"_s,             //
                                      u"I_SENSOR_1_RAW1 0x2002u"_s,                       //
                                      u">S_HIGHEST_SUB_INDEX_SUPPORTED1 0x0u"_s, u"--"_s, //
                                      u"MY_NAME 0x2003u"_s, u">MY_SUB 0xabu"_s, u"--"_s,  //
                                  }));
}

TEST(IndexDefines, NeverDefineANameTwiceWithDifferentValues)
{
    ProjectBuilder project;
    project.object(0x2000, u"A1"_s).object(0x2001, u"A"_s).object(0x2002, u"A"_s).object(0x2003, u"A1"_s);
    project.sub(0, u"Number of entries"_s).sub(1, u"Number of entries"_s).object(0x2004, u"B"_s);
    project.sub(1, u"Number of entries"_s);
    EXPECT_EQ(collected(project).filter(QRegularExpression(u"^[^-]"_s)),
              (QStringList{u"I_A1 0x2000u"_s, u"I_A 0x2001u"_s, u"I_A2 0x2002u"_s, u"I_A11 0x2003u"_s,
                           u">S_NUMBER_OF_ENTRIES 0x0u"_s, u">S_NUMBER_OF_ENTRIES1 0x1u"_s, u"I_B 0x2004u"_s,
                           u">S_NUMBER_OF_ENTRIES2 0x1u"_s}));

    ProjectBuilder first;
    first.object(0x2000, u"A"_s).sub(1, u"Number of entries"_s);
    EXPECT_EQ(collected(first).at(1), u">S_NUMBER_OF_ENTRIES1 0x1u");
}

TEST(IndexDefines, GivesPdosOfNodesAShortName)
{
    ProjectBuilder project;
    project.object(0x1401, u"RPDO comm par 2 for node 5 Drive"_s)
        .object(0x1403, u"any"_s, {{u"objectdefine"_s, u"L0_I_RPDO_comm_par_2_for_node_5_Drive"_s}})
        .object(0x1600, u"RPDO comm par 3 for node 5 Drive"_s)
        .object(0x1801, u"RPDO comm par 4 for node 5 Drive"_s)
        .object(0x19FF, u"any"_s, {{u"objectdefine"_s, u"L7_I_TPDO_comm_par_2_for_node_5_Drive"_s}})
        .line(1, 1)
        .object(0x1402, u"RPDO comm par 2 for node 5 Drive"_s);
    EXPECT_EQ(collected(project, true).filter(u"_DRIVE_"_s),
              (QStringList{u"L0_RPDO_5_DRIVE_2 2u"_s, u"L0_TPDO_5_DRIVE_2 512u"_s, u"L1_RPDO_5_DRIVE_2 3u"_s}));
}

TEST(IndexDefines, CountsCanIdsPerDirectionReceiveFirst)
{
    ProjectBuilder project;
    project.line(0, 4)
        .canId(0x123, tx, u"Door"_s)
        .element(4, u"State"_s)
        .canId(0x12, rx, u"Door"_s)
        .element(0, u"State"_s)
        .canId(0x80001234, rx, u"Door"_s)
        .canId(0x123, rx, u"Lamp"_s);
    EXPECT_EQ(collected(project), (QStringList{u"ID_DOOR 1u"_s, u"ID_0012 1u"_s, u"S_STATE 1u"_s, u"--"_s, //
                                               u"ID_LAMP 2u"_s, u"ID_0123 2u"_s, u"--"_s,                  //
                                               u"ID_DOOR_80001234 3u"_s, u"ID_80001234 3u"_s, u"--"_s,     //
                                               u"ID_DOOR_0123 1u"_s, u"S_STATE_0123 5u"_s, u"--"_s}));
}

TEST(IndexDefines, NamesPgnsAndSpns)
{
    ProjectBuilder project;
    project.line(0, 7).pgn(61184, tx, u"Prop"_s).spn(7, u"Speed"_s).pgn(256, rx, u"Prop"_s);
    project.spn(9, u"Speed"_s).spn(3, u"Speed"_s).spn(4, u"Speed"_s);
    EXPECT_EQ(collected(project), (QStringList{u"PGN_PROP 256u /* 0x0100 */"_s, u"SPN_SPEED 9u"_s,
                                               u"SPN_SPEED_0100 3u"_s, u"SPN_SPEED_0100_4 4u"_s, u"--"_s,
                                               u"PGN_PROP1 61184u /* 0xef00 */"_s, u"SPN_SPEED_ef00 7u"_s, u"--"_s}));
}

TEST(IndexDefines, AddsTheAddressClaimOfAJ1939Line)
{
    ProjectBuilder project;
    project.line(0, 2).pgn(256, tx, u"Any"_s).spn(5, u"Function"_s);
    const QStringList names = collected(project);
    EXPECT_EQ(names.mid(3, 3),
              (QStringList{u"PGN_ADDRESS_CLAIM 60928u /* 0xee00 */"_s, u"SPN_NAME_OF_CONTROLLER_APPLICATION 2848u"_s,
                           u"SPN_IDENTITY_NUMBER 2837u"_s}));
    EXPECT_TRUE(names.contains(u"SPN_FUNCTION_ee00 2841u"_s)) << qPrintable(names.join(u'\n'));
    EXPECT_EQ(names.size(), 3 + 12);
    EXPECT_EQ(collected(project.line(0, 7)).size(), 3);
    EXPECT_EQ(collected(project.line(0, 5).pgn(60928, tx, u"Own"_s)).filter(u"CLAIM"_s).size(), 0);
}

TEST(IndexDefines, StopsTheObjectsOfOneLineWhenCancelled)
{
    ProjectBuilder project;
    project.line(0, 6).object(0x1000, u"A"_s).object(0x1001, u"B"_s).canId(1, rx, u"C"_s);
    project.line(1, 1).object(0x1000, u"A"_s);
    int calls = 0;
    EXPECT_EQ(collected(project, true, [&calls] { return ++calls == 2; }),
              (QStringList{u"L0_I_A 0x1000u"_s, u"--"_s, u"L0_ID_C 1u"_s, u"L0_ID_0001 1u"_s, u"--"_s,
                           u"L1_I_A 0x1000u"_s, u"--"_s}));
}

} // namespace
