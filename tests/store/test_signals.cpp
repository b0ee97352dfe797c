// J1939 messages, raw CAN messages and UDS services in the store, and the repairs that old files get.

#include "store/storetest.h"

using namespace Qt::StringLiterals;

namespace {

using PGN = ObjectDataBase::PGN;
using SPN = ObjectDataBase::SPN;
using CANID = ObjectDataBase::CANID;

constexpr quint8 transmit = ObjectDataBase::transmit;
constexpr quint8 receive = ObjectDataBase::receive;
constexpr quint32 requestPgn = 59904;
constexpr quint32 proprietaryPgn = 61184;

class Signals : public StoreTest
{
protected:
    Signals()
    {
        QObject::connect(&store, &ObjectDataBase::updateNotify, [this](const ObjectDataBase::ChangeSet &change) {
            changes.append(u"%1: line %2 pgn %3 spn %4 canid %5 number %6 direction %7"_s.arg(
                QString::number(change.type), QString::number(change.line), QString::number(change.pgn),
                QString::number(change.spn), QString::number(change.canid), QString::number(change.number),
                QString::number(change.direction)));
        });
    }

    void addPGN(quint32 number, quint8 direction, bool safe = false)
    {
        ASSERT_TRUE(store.addPGN(0, number, {.direction = direction, .issafe = safe}));
    }

    void addSPN(quint32 pgn, quint8 direction, quint32 number, quint32 pos = 0, quint32 datatype = 5)
    {
        ASSERT_TRUE(store.addSPN(0, pgn, direction, number,
                                 {.pos = pos, .name = u"SPN %1"_s.arg(number), .datatype = datatype}));
    }

    QStringList changes;
};

TEST_F(Signals, MessagesComeBackAsTheyWent)
{
    const PGN pgn = {u"it's"_s, u"text"_s, proprietaryPgn, 3,  6,         65535, 7, 2, transmit, 8, true, 9,
                     10,        11,        true,           12, 0xffffffff};
    ASSERT_TRUE(store.addPGN(0, proprietaryPgn, pgn) && store.addPGN(0, proprietaryPgn, pgn));
    const auto id = [this](const QString &text) { return store.getStringId(text); };
    EXPECT_EQ(
        rows(u"select * from PGNs0"_s),
        QStringList{u"61184|3|6|65535|7|2|85|%1|%2|1|8|9|10|11|1|12|4294967295"_s.arg(id(pgn.name)).arg(id(pgn.desc))});
    PGN pgnBack;
    ASSERT_TRUE(store.getPGN(0, proprietaryPgn, transmit, pgnBack));
    EXPECT_EQ(pgnBack, pgn);
    EXPECT_FALSE(store.getPGN(0, proprietaryPgn, receive, pgnBack));

    const CANID canid = {u"ID"_s, u"d"_s, 0x98fedca0, 1, 2, 3, receive};
    ASSERT_TRUE(store.addCANID(0, canid.id, canid));
    CANID canidBack;
    ASSERT_TRUE(store.getCANID(0, canid.id, receive, canidBack));
    EXPECT_EQ(canidBack, canid);
    EXPECT_EQ(rows(u"select cycletime_ms, inhibittime_ms, mappingcount from CANIDs0"_s), QStringList{u"1|2|3"_s});
    EXPECT_EQ(store.getCANIDName(0, canid.id, receive), u"ID"_s);
    EXPECT_EQ(store.getPGNName(0, proprietaryPgn, transmit), u"it's"_s);
    EXPECT_EQ(store.getPGNMappingCount(0, proprietaryPgn, transmit), 2);
}

TEST_F(Signals, UpdateOfADataElementKeepsItsPlaceAndOfAnSPNDoesNot)
{
    SPN data = {1, u"n"_s, u"d"_s, u"7"_s, 10, requestPgn, receive, 100, 1, u"v"_s, 24, 3, 8};
    SPN spn;
    SPN element;
    for (int round = 0; round < 2; ++round) {
        ASSERT_TRUE(store.addSPN(0, requestPgn, receive, 100, data));
        ASSERT_TRUE(store.addDataElement(0, 0x123, receive, 100, data));
        ASSERT_TRUE(store.getSPN(0, requestPgn, receive, 100, spn));
        ASSERT_TRUE(store.getDataElement(0, 0x123, receive, 100, element));
        EXPECT_EQ(spn, data);
        data.pos = 2;
        data.bitsize = 32;
        data.bitposition = 16;
        data.name = u"new"_s;
    }
    EXPECT_EQ(
        rows(
            u"select datatype, implementation, varname, defaultvalue, pos, bitsize, slot_df, bitposition from SPNs0"_s),
        QStringList{u"10|1|v|7|2|32|3|16"_s});
    EXPECT_EQ(element, (SPN{1, u"new"_s, u"d"_s, u"7"_s, 10, 0, receive, 100, 1, u"v"_s, 24, 0, 16}));
    EXPECT_EQ(store.getSPNName(0, requestPgn, receive, 100), u"new"_s);
    EXPECT_EQ(store.getSPNDataType(0, requestPgn, receive, 100), 10u);
    EXPECT_EQ(store.getDataElementName(0, 0x123, receive, 100), u"new"_s);
}

TEST_F(Signals, DirectionsOfAMessageAreTwoMessages)
{
    for (const quint8 direction : {transmit, receive}) {
        addPGN(proprietaryPgn, direction);
        addSPN(proprietaryPgn, direction, 1);
        ASSERT_TRUE(store.addCANID(0, 0x10, {.direction = direction}));
        ASSERT_TRUE(store.addDataElement(0, 0x10, direction, 1, {}));
    }
    EXPECT_EQ(store.getPGNList(0, 0), (QList<quint32>{proprietaryPgn, proprietaryPgn}));
    EXPECT_EQ(store.getCANIDList(0, 0).size(), 2);
    ASSERT_TRUE(store.removePGN(0, proprietaryPgn, transmit));
    ASSERT_TRUE(store.removeCANID(0, 0x10, transmit));
    EXPECT_FALSE(store.pgnExists(0, proprietaryPgn, transmit));
    EXPECT_FALSE(store.spnExists(0, proprietaryPgn, transmit, 1));
    EXPECT_FALSE(store.canidExists(0, 0x10, transmit) || store.dataElementExists(0, 0x10, transmit, 1));
    EXPECT_TRUE(store.pgnExists(0, proprietaryPgn, receive) && store.spnExists(0, proprietaryPgn, receive, 1));
    EXPECT_TRUE(store.canidExists(0, 0x10, receive) && store.dataElementExists(0, 0x10, receive, 1));
}

TEST_F(Signals, ListsAreSortedAndLeaveOutSafePGNsOnDemand)
{
    addPGN(300, transmit);
    addPGN(100, receive);
    addPGN(200, transmit, true);
    addPGN(400, transmit);
    ASSERT_TRUE(exec(u"update PGNs0 set issafe = NULL where number = 400"_s));
    EXPECT_EQ(store.getPGNList(0, 0), (QList<quint32>{100, 200, 300, 400}));
    EXPECT_EQ(store.getPGNList(0, 0, true), (QList<quint32>{100, 300, 400}));
    EXPECT_EQ(store.getPGNList(0, transmit, true), (QList<quint32>{300, 400}));
    EXPECT_EQ(store.getPGNList(0, receive), (QList<quint32>{100}));
    EXPECT_TRUE(store.anySafePGN(0));
    store.removePGN(0, 200, transmit);
    EXPECT_FALSE(store.anySafePGN(0));

    for (const quint32 number : {9u, 3u, 5u}) {
        addSPN(300, transmit, number, 10 - number);
        ASSERT_TRUE(store.addDataElement(0, 1, receive, number, {}));
    }
    EXPECT_EQ(store.getSPNList(0, 300, transmit), (QList<quint32>{9, 5, 3}));
    EXPECT_EQ(store.getDataElementList(0, 1, receive), (QList<quint32>{3, 5, 9}));
    EXPECT_TRUE(store.getSPNList(0, 300, receive).isEmpty() && store.getDataElementList(0, 1, transmit).isEmpty());
}

TEST_F(Signals, CacheAnswersUntilItIsCleared)
{
    addSPN(300, transmit, 2, 1);
    addSPN(300, transmit, 1, 2);
    addSPN(300, receive, 7);
    ASSERT_TRUE(store.cacheSPNs(0));
    ASSERT_TRUE(exec(u"update SPNs0 set bitsize = 99, pos = 0"_s));
    addSPN(301, receive, 8);
    SPN spn;
    ASSERT_TRUE(store.getSPN(0, 300, transmit, 1, spn));
    EXPECT_EQ(spn.bitsize, 0);
    EXPECT_EQ(spn.pgnnumber, 300u);
    EXPECT_EQ(spn.name, u"SPN 1"_s);
    EXPECT_EQ(store.getSPNList(0, 300, transmit), (QList<quint32>{2, 1}));
    EXPECT_EQ(store.getSPNList(0, 301, receive), QList<quint32>{8}) << "what the cache lacks comes from the database";
    EXPECT_TRUE(store.getSPN(0, 301, receive, 8, spn));
    store.clearSPNCache();
    ASSERT_TRUE(store.getSPN(0, 300, transmit, 1, spn));
    EXPECT_EQ(spn.bitsize, 99);
    EXPECT_FALSE(store.cacheSPNs(77)) << "no such line";
}

TEST_F(Signals, EachWriteTellsWhatChanged)
{
    addPGN(1, transmit);
    addSPN(1, transmit, 2);
    store.addCANID(0, 3, {.direction = receive});
    store.addDataElement(0, 3, receive, 4, {});
    store.removeSPN(0, 1, 2, transmit);
    store.removeDataElement(0, 3, 4, receive);
    store.removePGN(0, 1, transmit);
    store.removeCANID(0, 3, receive);
    EXPECT_TRUE(store.removePGN(0, 99, transmit)) << "what does not exist is removed all the same";
    EXPECT_EQ(changes, (QStringList{u"15: line 0 pgn 1 spn 0 canid 0 number 0 direction 85"_s,
                                    u"19: line 0 pgn 1 spn 2 canid 0 number 0 direction 0"_s,
                                    u"17: line 0 pgn 0 spn 0 canid 3 number 0 direction 119"_s,
                                    u"21: line 0 pgn 0 spn 0 canid 3 number 4 direction 0"_s,
                                    u"20: line 0 pgn 1 spn 2 canid 0 number 0 direction 85"_s,
                                    u"20: line 0 pgn 0 spn 0 canid 3 number 4 direction 119"_s,
                                    u"16: line 0 pgn 1 spn 0 canid 0 number 0 direction 85"_s,
                                    u"18: line 0 pgn 0 spn 0 canid 3 number 0 direction 119"_s,
                                    u"16: line 0 pgn 99 spn 0 canid 0 number 0 direction 85"_s}));
}

TEST_F(Signals, FailuresAreReportedAndTellNobody)
{
    EXPECT_FALSE(store.addPGN(77, 1, {})) << "no such line";
    EXPECT_FALSE(store.addSPN(0, 1, transmit, 1, {.varname = u"it's"_s})) << "text of a signal goes in as it stands";
    store.setBlocked(true);
    EXPECT_FALSE(store.addPGN(0, 1, {}) || store.addSPN(0, 1, transmit, 1, {}) || store.addCANID(0, 1, {}) ||
                 store.addDataElement(0, 1, transmit, 1, {}) || store.removePGN(0, 1, transmit) ||
                 store.removeSPN(0, 1, 1, transmit) || store.removeCANID(0, 1, transmit) ||
                 store.removeDataElement(0, 1, 1, transmit));
    store.setUDSServiceSessions(0, 0x31, u"1"_s);
    store.setBlocked(false);
    EXPECT_EQ(store.getUDSServiceSessions(0, 0x31), QString());
    EXPECT_TRUE(changes.isEmpty());
}

TEST_F(Signals, TableOfAnOldLineGetsItsColumnsWithTheFirstPGN)
{
    ASSERT_TRUE(exec(u"create table PGNs9 (number integer not null, edp_dp_key integer, priority integer, cycletime_ms "
                     "integer, inhibittime_ms integer, mappingcount integer, direction integer, name integer, desc "
                     "integer)"_s));
    ASSERT_TRUE(store.addPGN(9, 5, {.name = u"n"_s, .direction = transmit, .srvt_ms = 4, .FD_DataID = 6}));
    PGN pgn;
    ASSERT_TRUE(store.getPGN(9, 5, transmit, pgn));
    EXPECT_EQ(pgn.srvt_ms, 4);
    EXPECT_EQ(pgn.FD_DataID, 6u);
}

TEST_F(Signals, ServicesKeepTheirOtherColumns)
{
    store.setUDSServiceSessions(0, 0x31, u"2,3"_s);
    EXPECT_EQ(rows(u"select * from UDSSettings0 where sid = 49"_s), QStringList{u"49|0|2,3||"_s});
    store.setUDSServiceActive(0, 0x31, true);
    store.setUDSServiceUserLevels(0, 0x31, u"1"_s);
    store.setUDSServiceAuthentication(0, 0x31, u"5"_s);
    EXPECT_EQ(rows(u"select * from UDSSettings0 where sid = 49"_s), QStringList{u"49|1|2,3|1|5"_s});
    EXPECT_TRUE(store.getUDSServiceActive(0, 0x31) && !store.getUDSServiceActive(0, 0x99));
    EXPECT_EQ(store.getUDSServiceSessions(0, 0x31) + store.getUDSServiceUserLevels(0, 0x31) +
                  store.getUDSServiceAuthentication(0, 0x31),
              u"2,315"_s);
    QStringList services;
    for (const auto &service : store.getUDSServices(0))
        services.append(QString::number(service.sid, 16) + (service.active ? u"+"_s : u"-"_s));
    services.sort();
    EXPECT_EQ(services, (QStringList{u"10+"_s, u"11+"_s, u"22+"_s, u"2e+"_s, u"31+"_s, u"3e+"_s}));
}

TEST_F(Signals, StaleMappingCountsAreCorrectedSilentlyAtOpen)
{
    for (const quint8 direction : {transmit, receive, quint8{1}})
        addPGN(10, direction);
    addPGN(11, transmit);
    for (const quint32 spn : {1u, 2u})
        addSPN(10, transmit, spn);
    addSPN(10, receive, 1);
    changes.clear();
    ASSERT_TRUE(reopenAfter({u"update PGNs0 set mappingcount = 7"_s}));
    EXPECT_EQ(rows(u"select number, direction, mappingcount from PGNs0 order by number, direction"_s),
              (QStringList{u"10|1|7"_s, u"10|85|2"_s, u"10|119|1"_s, u"11|85|0"_s}));
    EXPECT_EQ(changes.filter(u"15:"_s), QStringList());
}

TEST_F(Signals, BitPositionsOfOldFilesAreRecomputed)
{
    const auto addElements = [this](quint32 id, quint16 secondPosition) {
        store.addCANID(0, id, {.direction = transmit});
        store.addDataElement(0, id, transmit, 3, {.datatype = 7});
        store.addDataElement(0, id, transmit, 1, {.datatype = 120, .bitsize = 40});
        store.addDataElement(0, id, transmit, 2, {.datatype = 6, .bitsize = 99, .bitposition = secondPosition});
    };
    addElements(1, 0);
    addElements(2, 5);
    store.addCANID(0, 3, {.direction = receive});
    store.addDataElement(0, 3, receive, 1, {.datatype = 7});
    addPGN(10, receive);
    addSPN(10, receive, 8, 3, 7);
    addSPN(10, receive, 9, 1, 5);
    addSPN(10, receive, 7, 2, 6);

    ASSERT_TRUE(reopenAfter({versionStatement(104), u"update SPNs0 set bitposition = 77"_s}));
    EXPECT_EQ(rows(u"select canid, number, bitpos from DataElements0 order by canid, number"_s),
              (QStringList{u"1|1|0"_s, u"1|2|40"_s, u"1|3|56"_s, u"2|1|0"_s, u"2|2|5"_s, u"2|3|0"_s, u"3|1|0"_s}));
    EXPECT_EQ(rows(u"select spnnumber, bitposition from SPNs0 order by pos"_s),
              (QStringList{u"9|0"_s, u"7|8"_s, u"8|24"_s}));
    EXPECT_EQ(rows(u"select name from sqlite_master where type='index' and name like 'repair%'"_s), QStringList());

    ASSERT_TRUE(reopenAfter({versionStatement(105), u"update SPNs0 set bitposition = 77"_s}));
    EXPECT_EQ(rows(u"select distinct bitposition from SPNs0"_s), QStringList{u"77"_s});
}

} // namespace
