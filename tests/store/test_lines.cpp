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
    ObjectDataBase::NODE_DATA_T node;
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
    const auto fields = [](const ObjectDataBase::NODE_DATA_T &n) {
        return std::tie(n.name, n.iconpath, n.edspath, n.dcfpath, n.xddpath, n.tpdocnt, n.rpdocnt, n.prefix,
                        n.outputpath, n.ismaster, n.issyncproducer, n.issyncconsumer, n.ishbconsumer,
                        n.isemergencyproducer, n.isemergencyconsumer, n.ismpdosupported, n.iscanopengateway,
                        n.allpdosstatic, n.excludegeneration, n.generatedcf, n.isbootupmanager, n.isconfigmanager,
                        n.excludepdolinking, n.multilinedata, n.lssslave);
    };
    ObjectDataBase::NODE_DATA_T back;
    ASSERT_TRUE(store.getNode(3, back));
    EXPECT_EQ(fields(back), fields(node));
    EXPECT_FALSE(store.getNode(4, back));

    store.addIndex(3, 0x2000, {});
    store.setUDSServiceActive(3, 0x22, false);
    store.setUDSServiceSessions(3, 0x22, u"9"_s);
    types.clear();
    ASSERT_TRUE(store.addNode(3, {}));
    EXPECT_EQ(types.last(), 6U);
    ASSERT_TRUE(store.getNode(3, back));
    ObjectDataBase::NODE_DATA_T expected;
    expected.isconfigmanager = expected.lssslave = true;
    expected.multilinedata = -7;
    EXPECT_EQ(fields(back), fields(expected));
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
    struct Case
    {
        QString value;
        quint8 line;
        QString part;
    };
    for (const Case &row :
         {Case{u"a,b"_s, 0, u"a"_s}, Case{u"a,b"_s, 1, u"b"_s}, Case{u"a,b"_s, 5, u"b"_s}, Case{u""_s, 3, u""_s},
          Case{u"x"_s, 9, u"x"_s}, Case{u"1,0,,1"_s, 2, u""_s}, Case{u",,"_s, 7, u""_s}}) {
        store.setGeneralSetting(u"k"_s, row.value);
        store.setJ1939Setting(u"k"_s, row.value);
        EXPECT_EQ(store.getGeneralSetting(u"k"_s, row.line), row.part);
        EXPECT_EQ(store.getJ1939Setting(u"k"_s, row.line), row.part);
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
        std::function<bool(const QString &, const QString &)> set;
        std::function<QString(const QString &)> get;
        quint32 type;
        bool escapes;
    };
    const QList<Table> tables = {
        {[&](auto &k, auto &v) { return store.setGeneralSetting(k, v); },
         [&](auto &k) { return store.getGeneralSetting(k); }, 9, false},
        {[&](auto &k, auto &v) { return store.setDescriptionSetting(k, v); },
         [&](auto &k) { return store.getDescriptionSetting(k); }, 10, true},
        {[&](auto &k, auto &v) { return store.setEnergyBusSetting(k, v); },
         [&](auto &k) { return store.getEnergyBusSetting(k); }, 11, false},
        {[&](auto &k, auto &v) { return store.setMiscSetting(k, v); }, [&](auto &k) { return store.getMiscSetting(k); },
         12, true},
        {[&](auto &k, auto &v) { return store.setJ1939Setting(k, v); },
         [&](auto &k) { return store.getJ1939Setting(k); }, 13, true},
    };
    store.setCurrentLine(0);
    for (const Table &table : tables) {
        types.clear();
        EXPECT_EQ(table.get(u"key"_s), u""_s);
        EXPECT_TRUE(table.set(u"key"_s, u"%1 a"_s));
        EXPECT_TRUE(table.set(u"key"_s, u"%1 a"_s));
        EXPECT_TRUE(table.set(u"key"_s, u"b"_s));
        EXPECT_EQ(types, (QList<quint32>{table.type, table.type}));
        EXPECT_EQ(table.get(u"key"_s), u"b"_s);
        EXPECT_EQ(table.set(u"key"_s, u"it's"_s), table.escapes) << table.type;
        EXPECT_EQ(table.get(u"key"_s), table.escapes ? u"it's"_s : u"b"_s);
        EXPECT_FALSE(table.set(u"bad'key"_s, u"b"_s));
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
