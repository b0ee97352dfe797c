// Lines and the settings tables.

#include "store/storetest.h"

using namespace Qt::StringLiterals;

namespace {

class Lines : public StoreTest
{
protected:
    Lines()
    {
        QObject::connect(&store, &ObjectDataBase::updateNotify,
                         [this](const ObjectDataBase::ChangeSet &change) { types.append(change.type); });
    }

    QList<quint32> types;
};

TEST_F(Lines, RecordComesBackAndFiveFieldsOutliveAnUpdate)
{
    using Node = ObjectDataBase::NODE_DATA_T;
    Node node;
    node.name = u"can1"_s;
    node.iconpath = u"i"_s;
    node.edspath = u"e"_s;
    node.dcfpath = u"d"_s;
    node.xddpath = u"x"_s;
    node.tpdocnt = 4;
    node.rpdocnt = 5;
    node.prefix = u"p_"_s;
    node.outputpath = u"out"_s;
    node.ismaster = node.issyncconsumer = node.isemergencyconsumer = node.iscanopengateway = true;
    node.excludegeneration = node.isconfigmanager = node.lssslave = true;
    node.generatedcf = false;
    node.multilinedata = -7;
    ASSERT_TRUE(store.addNode(3, node));
    Node back;
    ASSERT_TRUE(store.getNode(3, back));
    EXPECT_EQ(back, node);
    EXPECT_EQ(rows(u"select * from Nodes where nodeId = 3"_s),
              QStringList{u"3|can1|e|x|d|4|5|1|0|1|0|0|1|0|1|0|1|0|p_|out|i|0|1|0|-7|1"_s});
    EXPECT_FALSE(store.getNode(4, back));

    store.addIndex(3, 0x2000, {});
    store.setUDSServiceActive(3, 0x22, false);
    store.setUDSServiceSessions(3, 0x22, u"9"_s);
    types.clear();
    ASSERT_TRUE(store.addNode(3, {}));
    EXPECT_EQ(types.last(), 6U);
    ASSERT_TRUE(store.getNode(3, back));
    EXPECT_EQ(back, (Node{.isconfigmanager = true, .multilinedata = -7, .lssslave = true}));
    EXPECT_TRUE(store.indexExists(3, 0x2000));
    EXPECT_TRUE(store.getUDSServiceActive(3, 0x22));
    EXPECT_EQ(store.getUDSServiceSessions(3, 0x22), u"1"_s);

    store.setNodeSqlValue(u"3"_s, u"name"_s, u"  a   b "_s);
    store.setNodeSqlValue(u"3"_s, u"prefix"_s, u"  "_s);
    ASSERT_TRUE(store.getNode(3, back));
    EXPECT_EQ(back.name + back.prefix, u"a b_"_s);
}

TEST_F(Lines, CommaListConvention)
{
    const std::tuple<QString, quint8, QString> cases[] = {
        {u"a,b"_s, 1, u"b"_s}, {u"a,b"_s, 5, u"b"_s}, {u""_s, 3, u""_s}, {u"1,0,,1"_s, 2, u""_s}, {u",,"_s, 7, u""_s}};
    for (const auto &[value, line, part] : cases) {
        store.setGeneralSetting(u"k"_s, value);
        store.setJ1939Setting(u"k"_s, value);
        EXPECT_EQ(store.getGeneralSetting(u"k"_s, line), part);
        EXPECT_EQ(store.getJ1939Setting(u"k"_s, line), part);
    }
    EXPECT_EQ(store.getGeneralSetting(u"missing"_s, 4), u""_s);

    EXPECT_TRUE(store.setGeneralSetting(u"new"_s, u"v"_s, 2));
    EXPECT_EQ(store.getGeneralSetting(u"new"_s), u" , ,v"_s);
    EXPECT_TRUE(store.setGeneralSetting(u"new"_s, u"w"_s, 0));
    EXPECT_EQ(store.getGeneralSetting(u"new"_s), u"w, ,v"_s);
    EXPECT_TRUE(store.setGeneralSetting(u"first"_s, u"v"_s, 0));
    EXPECT_EQ(store.getGeneralSetting(u"first"_s), u"v"_s);
}

TEST_F(Lines, NewLineTakesTheValuesOfTheLineBefore)
{
    store.setGeneralSetting(u"co_node_id"_s, u"5"_s);
    store.setGeneralSetting(u"nmtmaster"_s, u"1,0"_s);
    store.setGeneralSetting(u"hw_defines"_s, u"x,y"_s);
    store.addNode(1, {});
    store.addNode(2, {});
    EXPECT_EQ(store.getGeneralSetting(u"co_node_id"_s), u"5,5,5"_s);
    EXPECT_EQ(store.getGeneralSetting(u"nmtmaster"_s), u"1,0,0"_s);
    EXPECT_EQ(store.getGeneralSetting(u"hw_defines"_s), u"x,y"_s);
    EXPECT_EQ(store.currentLine(), 2);
    EXPECT_EQ(store.getDescriptionSetting(u"BaudRate_125"_s), u"1"_s);
    store.addNode(254, {});
    EXPECT_EQ(store.getGeneralSetting(u"co_node_id"_s), u"5,5,5"_s);
    EXPECT_EQ(store.currentLine(), 2);
}

TEST_F(Lines, RemovedLineLeavesTheListsOfTheOthersShifted)
{
    store.addNode(1, {});
    store.addNode(2, {});
    store.addNode(11, {});
    store.setGeneralSetting(u"line1type"_s, u"2"_s);
    store.setGeneralSetting(u"line11type"_s, u"1"_s);
    store.setGeneralSetting(u"nmtmaster"_s, u"a,b,c"_s);
    store.setGeneralSetting(u"hw_defines"_s, u"int x, y;"_s);
    store.setJ1939Setting(u"startaddress"_s, u"7,8"_s);
    exec(u"insert into Connections values(1,1,1,0,1,1,0),(0,1,1,1,1,1,0),(0,1,1,2,1,1,0)"_s);
    types.clear();
    EXPECT_TRUE(store.removeNode(1));
    EXPECT_EQ(types.last(), 7U);
    EXPECT_EQ(store.getNodeList(), (QList<quint8>{0, 2, 11}));
    EXPECT_EQ(store.getGeneralSetting(u"nmtmaster"_s, 2), u"c"_s);
    EXPECT_EQ(store.getGeneralSetting(u"nmtmaster"_s), u"a,c"_s);
    EXPECT_EQ(store.getGeneralSetting(u"hw_defines"_s), u"int x"_s);
    EXPECT_EQ(store.getJ1939Setting(u"startaddress"_s), u"7"_s);
    EXPECT_FALSE(store.generalSettingExists(u"line1type"_s));
    EXPECT_EQ(store.getGeneralSetting(u"line11type"_s), u"1"_s);
    EXPECT_EQ(rows(u"select item from DescriptionSettings where item like 'VendorName%' order by item"_s),
              (QStringList{u"VendorName"_s, u"VendorName_11"_s, u"VendorName_2"_s}));
    EXPECT_EQ(rows(u"select count(*) from Connections"_s), QStringList{u"1"_s});
    EXPECT_EQ(rows(u"select name from sqlite_master where name in ('Objects1','UDSSettings1')"_s), QStringList{});
    EXPECT_TRUE(store.removeNode(200));
}

TEST_F(Lines, SettingsWriteOnceAndTell)
{
    struct Table
    {
        bool (ObjectDataBase::*setter)(const QString &, const QString &);
        QString (ObjectDataBase::*getter)(const QString &);
        quint32 type;
        bool escapes;
    };
    const Table tables[] = {
        {&ObjectDataBase::setGeneralSetting, &ObjectDataBase::getGeneralSetting, 9, false},
        {&ObjectDataBase::setDescriptionSetting, &ObjectDataBase::getDescriptionSetting, 10, true},
        {&ObjectDataBase::setEnergyBusSetting, &ObjectDataBase::getEnergyBusSetting, 11, false},
        {&ObjectDataBase::setMiscSetting, &ObjectDataBase::getMiscSetting, 12, true},
        {&ObjectDataBase::setJ1939Setting, &ObjectDataBase::getJ1939Setting, 13, true},
    };
    store.setCurrentLine(0);
    for (const Table &table : tables) {
        const auto set = [&](const QString &value) { return (store.*table.setter)(u"key"_s, value); };
        const auto value = [&] { return (store.*table.getter)(u"key"_s); };
        types.clear();
        EXPECT_EQ(value(), u""_s);
        EXPECT_TRUE(set(u"%1 a"_s) && set(u"%1 a"_s) && set(u"b"_s));
        EXPECT_EQ(types, (QList<quint32>{table.type, table.type}));
        EXPECT_EQ(value(), u"b"_s);
        EXPECT_EQ(set(u"it's"_s), table.escapes) << table.type;
        EXPECT_EQ(value(), table.escapes ? u"it's"_s : u"b"_s);
        EXPECT_FALSE((store.*table.setter)(u"bad'key"_s, u"b"_s));
    }
    EXPECT_EQ(store.getEnergyBusSettingKeys(), QStringList{u"key"_s});
    EXPECT_TRUE(store.removeEnergyBusSetting(u"key"_s));
    EXPECT_TRUE(store.getEnergyBusSettingKeys().isEmpty());
    EXPECT_TRUE(store.miscSettingExists(u"key"_s));
    EXPECT_FALSE(store.miscSettingExists(u"other"_s));
}

TEST_F(Lines, DescriptionKeysCarryTheLine)
{
    store.addNode(2, {});
    store.setDescriptionSetting(u"ProductName"_s, u"two"_s);
    EXPECT_TRUE(store.descriptionSettingExists(u"ProductName"_s));
    EXPECT_TRUE(store.descriptionSettingExists(u"ProductName_2"_s));
    store.setCurrentLine(0);
    EXPECT_EQ(store.getDescriptionSetting(u"ProductName"_s), u""_s);
    EXPECT_EQ(store.getDescriptionSetting(u"ProductName_2"_s), u"two"_s);
}

} // namespace
