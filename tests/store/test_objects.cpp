// The object dictionary in the store: objects, subindices, the string pool, caches, copies.

#include "store/storetest.h"

#include "store/metadatablob.h"

using namespace Qt::StringLiterals;

namespace {

using Index = ObjectDataBase::INDEX_DATA_T;
using Sub = ObjectDataBase::SUBINDEX_DATA_T;

class Objects : public StoreTest
{
protected:
    Objects()
    {
        QObject::connect(&store, &ObjectDataBase::updateNotify, [this](const ObjectDataBase::ChangeSet &change) {
            changes.append(
                u"%1:%2.%3@%4"_s.arg(change.type).arg(change.index, 0, 16).arg(change.subindex).arg(change.line));
        });
    }

    void add(quint16 index, std::initializer_list<int> subs)
    {
        store.addIndex(0, index, {.name = u"Object %1"_s.arg(index, 0, 16)});
        for (const int sub : subs)
            store.addSubIndex(0, index, static_cast<quint8>(sub), {.defaultvalue = QString::number(sub)});
        changes.clear();
    }

    QStringList changes;
};

TEST_F(Objects, RecordsComeBackAsTheyWent)
{
    Index object;
    object.name = u"Speed"_s;
    object.datatype = 4;
    object.objecttype = 8;
    object.description = u"line 1\nline 2"_s;
    object.category = 2;
    object.device_class = u"drive"_s;
    object.fwsupported = true;
    object.metadata = {{u"objectdefine"_s, u"SPEED"_s}, {u"ü"_s, u""_s}};
    ASSERT_TRUE(store.addIndex(0, 0x6042, object));
    Index back;
    ASSERT_TRUE(store.getIndex(0, 0x6042, back));
    EXPECT_EQ(back, object);

    Sub sub;
    sub.name = u"Unit's name"_s;
    sub.datatype = 9;
    sub.accesstype = u"rww"_s;
    sub.defaultvalue = u"it's"_s;
    sub.currentvalue = u"''"_s;
    sub.pdomapping = PDOMapping::TPDO;
    sub.lowlimit = u"-5"_s;
    sub.uplimit = u"0xFF"_s;
    sub.size = 70000;
    sub.defaultineds = false;
    sub.limitineds = sub.refusewrite = sub.cyclicread = sub.changedbyuser = sub.managedbyqlk = true;
    sub.allowedaccesstypes = u""_s;
    sub.implementation = 2;
    sub.description = u"d"_s;
    sub.varname = u"v[3]"_s;
    sub.category = 0;
    sub.writedefaulttoeds = 2;
    sub.wizardsource = 454;
    sub.denotation = u"shown"_s;
    sub.signalid = 4000000000U;
    ASSERT_TRUE(store.addSubIndex(0, 0x6042, 255, sub));
    const auto id = [&](const QString &text) { return store.getStringId(text); };
    EXPECT_EQ(rows(u"select * from SubObjects0"_s),
              QStringList{u"24642|255|%1|9|rww|it's|''|4|-5|0xFF|70000|0|1|0|1||2|v[3]|%2|0|2|1|0|1|454|%3|0|1|"
                          "4000000000|0|0"_s.arg(id(sub.name))
                              .arg(id(sub.description))
                              .arg(id(sub.denotation))});
    // Attributes are gone again where a later row has none, since that replaces the row.
    for (const auto &metadata : {ObjectDataBase::Metadata{{u"subdefine"_s, u"X"_s}}, ObjectDataBase::Metadata()}) {
        sub.metadata = metadata;
        ASSERT_TRUE(store.addSubIndex(0, 0x6042, 255, sub));
        Sub one;
        ASSERT_TRUE(store.getSubIndex(0, 0x6042, 255, one));
        EXPECT_EQ(one, sub);
        store.cacheAllSubs(0, 0);
        Sub cached;
        ASSERT_TRUE(store.getSubIndex(0, 0x6042, 255, cached));
        EXPECT_EQ(cached, sub);
        store.clearSubCache();
    }
    // An object keeps its attributes.
    ASSERT_TRUE(store.addIndex(0, 0x6042, Index()));
    ASSERT_TRUE(store.getIndex(0, 0x6042, back));
    EXPECT_EQ(back, Index{.metadata = object.metadata});
}

TEST_F(Objects, QuotesAreEscapedInStringValuesOnly)
{
    for (const quint16 type : {quint16{9}, quint16{10}, quint16{5}})
        EXPECT_EQ(store.addSubIndex(0, 0x2000, 0, {.datatype = type, .defaultvalue = u"it's"_s}), type == 9) << type;
    EXPECT_FALSE(store.addSubIndex(0, 0x2000, 1, {.datatype = 9, .varname = u"a'b"_s}));
    // A percent sign and a digit is no place to fill in.
    const Sub percent = {.name = u"%5"_s, .varname = u"%1%2%3"_s};
    EXPECT_TRUE(store.addSubIndex(0, 0x2000, 1, percent));
    Sub back;
    ASSERT_TRUE(store.getSubIndex(0, 0x2000, 1, back));
    EXPECT_EQ(back, percent);
}

TEST_F(Objects, ListsAreSortedAndRanged)
{
    for (const auto index : std::initializer_list<quint16>{0x1600, 0x1400, 0x15ff, 0x1401, 0x13ff})
        store.addIndex(0, index, {});
    EXPECT_EQ(store.getIndexList(0, 0x1400, 0x15ff), (QList<quint16>{0x1400, 0x1401, 0x15ff}));
    add(0x2000, {3, 0, 255, 1});
    EXPECT_EQ(store.getSubIndexList(0, 0x2000), (QList<quint8>{0, 1, 3, 255}));
    EXPECT_EQ(store.getSubIndexList(0, 0x2000, 2), (QList<quint8>{3, 255}));
    EXPECT_TRUE(store.getIndexList(7, 0, 0xffff).isEmpty());
}

TEST_F(Objects, SingleColumnsAndTheirWriters)
{
    add(0x2000, {0});
    EXPECT_EQ(store.getIndexName(0, 0x2000), u"Object 2000"_s);
    store.setIndexName(0, 0x2000, u"it's new"_s);
    store.setIndexName(0, 0x2001, u"nowhere"_s);
    EXPECT_EQ(store.getIndexName(0, 0x2000), u"it's new"_s);
    EXPECT_TRUE(store.setSubIndexDefaultValue(0, 0x2000, 0, u"$NODEID+0x600"_s));
    EXPECT_EQ(store.getSubIndexDefaultValue(0, 0x2000, 0), u"$NODEID+0x600"_s);
    EXPECT_FALSE(store.setSubIndexDefaultValue(0, 0x2000, 0, u"'"_s));
    EXPECT_EQ(store.getSubIndexDataType(0, 0x2000, 0), 5);
    EXPECT_TRUE(changes.isEmpty());
}

TEST_F(Objects, NotificationsFollowTheWrites)
{
    store.addIndex(0, 0x2000, {});
    store.addSubIndices({{0, 0x2000, 0, {}}, {0, 0x2000, 1, {}}});
    store.removeSubIndex(0, 0x2000, 1);
    store.removeSubIndex(0, 0x2000, 1);
    store.removeIndex(0, 0x2000);
    store.removeIndex(0, 0x2000);
    EXPECT_EQ(changes, (QStringList{u"1:2000.0@0"_s, u"2:2000.0@0"_s, u"2:2000.1@0"_s, u"4:2000.1@0"_s, u"3:2000.0@0"_s,
                                    u"3:2000.0@0"_s}));
}

TEST_F(Objects, BatchGoesOnAfterAFailure)
{
    const Sub broken = {.varname = u"'"_s};
    EXPECT_TRUE(store.addSubIndices({{0, 0x2000, 0, {}}, {0, 0x2000, 1, broken}, {0, 0x2000, 2, {}}}));
    EXPECT_FALSE(store.addSubIndices({{0, 0x2000, 3, {}}, {0, 0x2000, 4, broken}}));
    EXPECT_EQ(store.getSubIndexList(0, 0x2000), (QList<quint8>{0, 2, 3}));
}

TEST_F(Objects, RemovalTakesConnectionsUnlessTheyAreKept)
{
    const auto connections = [&] { return rows(u"select prodindex, conindex from Connections order by rowid"_s); };
    const auto fill = [&] {
        exec(u"delete from Connections"_s);
        exec(u"insert into Connections values(0,8192,1,0,9000,1,0),(0,9000,1,0,8192,2,0),(0,9000,2,0,9001,1,0)"_s);
        add(0x2000, {0, 1, 2});
    };
    fill();
    store.removeIndex(0, 0x2000, true);
    EXPECT_EQ(connections().size(), 3);
    store.removeIndex(0, 0x2000);
    EXPECT_EQ(connections(), QStringList{u"9000|9001"_s});
    fill();
    store.removeSubIndex(0, 0x2000, 1);
    EXPECT_EQ(connections(), (QStringList{u"9000|8192"_s, u"9000|9001"_s}));
    store.removeConsumerConnection(0, 0x2000, 2);
    EXPECT_EQ(connections(), QStringList{u"9000|9001"_s});
}

TEST_F(Objects, FindLooksForNumbersThenTexts)
{
    add(0x2000, {0, 1});
    add(0x1000, {1});
    const Sub text = {.defaultvalue = u"abc"_s};
    store.addSubIndex(0, 0x2000, 5, text);
    store.addSubIndex(0, 0x3000, 0, text); // an orphan
    using Keys = QList<ObjectDataBase::SubKey>;
    EXPECT_EQ(store.findSubIndices(0, u"defaultvalue"_s, u"1"_s), (Keys{{0x1000, 1, 0}, {0x2000, 1, 0}}));
    EXPECT_EQ(store.findSubIndices(0, u"defaultvalue"_s, u"abc"_s), (Keys{{0x2000, 5, 0}}));
    EXPECT_EQ(store.findSubIndices(0, u"datatype"_s, u"5"_s).size(), 4);
}

TEST_F(Objects, StringPoolInternsOnce)
{
    const int id = store.getStringId(u"Temperature"_s);
    EXPECT_GE(id, 1);
    EXPECT_EQ(store.getStringId(u"Temperature"_s), id);
    EXPECT_EQ(store.getString(id), u"Temperature"_s);
    EXPECT_EQ(store.getString(99999), u""_s);
    // A text with a quote gets a row each time and the id of the first.
    const int quoted = store.getStringId(u"it's"_s);
    EXPECT_EQ(store.getStringId(u"it's"_s), quoted);
    EXPECT_EQ(store.getString(quoted), u"it's"_s);
    EXPECT_EQ(rows(u"select count(*) from Strings where string = 'it''s'"_s), QStringList{u"2"_s});

    store.addIndex(0, 0x2000, {.name = u"it's"_s});
    store.removeUnusedStrings();
    EXPECT_EQ(rows(u"select string from Strings order by id"_s), (QStringList{u"it's"_s, u""_s}));
    EXPECT_EQ(store.getIndexName(0, 0x2000), u"it's"_s);
}

TEST_F(Objects, UnusedStringsAreThoseOfNoTable)
{
    const auto id = [&](const QString &text) { return store.getStringId(text); };
    exec(u"insert into Signals (sigid, name, datatype, accesstype) values(1, %1, 5, 'ro')"_s.arg(id(u"signal"_s)));
    store.addNode(1, {});
    store.addPGN(1, 5, {.name = u"pgn"_s, .desc = u"pgn desc"_s});
    store.addSPN(1, 5, 0, 1, {.name = u"spn"_s, .desc = u"spn desc"_s});
    store.addCANID(1, 5, {.name = u"canid"_s, .desc = u"canid desc"_s});
    store.addDataElement(1, 5, 0, 1, {.name = u"element"_s, .desc = u"element desc"_s});
    id(u"unused"_s);
    ASSERT_TRUE(exec(u"alter table CANIDs1 drop column desc"_s)) << "a table that lacks a column";
    const qsizetype before = rows(u"select id from Strings"_s).size();
    store.removeUnusedStrings();
    EXPECT_EQ(rows(u"select id from Strings"_s).size(), before - 2);
    EXPECT_EQ(rows(u"select id from Strings where string in ('unused', 'canid desc')"_s), QStringList{});
}

TEST_F(Objects, CacheAnswersUntilCleared)
{
    add(0x2000, {0, 1});
    store.cacheAllSubs(0, 0);
    exec(u"update SubObjects0 set defaultvalue = 'behind the back'"_s);
    Sub data;
    ASSERT_TRUE(store.getSubIndex(0, 0x2000, 1, data));
    EXPECT_EQ(data.defaultvalue, u"1"_s);
    data.defaultvalue = u"refreshed"_s;
    store.addSubIndex(0, 0x2000, 1, data);
    store.addSubIndex(0, 0x2000, 2, data);
    ASSERT_TRUE(store.getSubIndex(0, 0x2000, 1, data));
    EXPECT_EQ(data.defaultvalue, u"refreshed"_s);
    EXPECT_TRUE(store.getSubIndex(0, 0x2000, 2, data));
    store.clearSubCache();
    ASSERT_TRUE(store.getSubIndex(0, 0x2000, 0, data));
    EXPECT_EQ(data.defaultvalue, u"behind the back"_s);
}

TEST_F(Objects, CopyWithinAProject)
{
    add(0x2000, {0, 1, 2});
    add(0x3000, {0, 7});
    changes.clear();
    EXPECT_TRUE(store.copyIndex(0, 0x2000, 0, 0x2000));
    EXPECT_FALSE(store.copyIndex(0, 0x2fff, 0, 0x3000));
    EXPECT_TRUE(changes.isEmpty());
    EXPECT_TRUE(store.copyIndex(0, 0x2000, 0, 0x3000));
    EXPECT_EQ(changes,
              (QStringList{u"3:3000.0@0"_s, u"1:3000.0@0"_s, u"2:3000.0@0"_s, u"2:3000.1@0"_s, u"2:3000.2@0"_s}));
    EXPECT_EQ(store.getSubIndexList(0, 0x3000), (QList<quint8>{0, 1, 2}));
    EXPECT_EQ(store.getIndexName(0, 0x3000), u"Object 2000"_s);
    store.removeSubIndex(0, 0x3000, 2);
    Sub data;
    EXPECT_FALSE(store.getSubIndex(0, 0x3000, 2, data));
}

TEST_F(Objects, CopyBetweenProjects)
{
    add(0x2000, {0, 1});
    ObjectDataBase target;
    target.createNewDataBase();
    target.addIndex(0, 0x2100, {});
    target.addSubIndex(0, 0x2100, 9, {});
    EXPECT_FALSE(target.copyIndexFrom(nullptr, 0, 0x2000, 0, 0x2100));
    EXPECT_FALSE(target.copyIndexFrom(&store, 0, 0x2fff, 0, 0x2100));
    EXPECT_TRUE(target.copyIndexFrom(&store, 0, 0x2000, 0, 0x2100));
    EXPECT_EQ(target.getSubIndexList(0, 0x2100), (QList<quint8>{0, 1}));
    EXPECT_EQ(target.getIndexName(0, 0x2100), u"Object 2000"_s);
    EXPECT_TRUE(target.copyIndexFrom(&store, 0, 0x2000, 0, 0x2200, true));
    EXPECT_TRUE(target.getSubIndexList(0, 0x2200).isEmpty());
}

TEST_F(Objects, BlockedStoreRefusesWrites)
{
    add(0x2000, {0});
    const ObjectDataBase::Metadata metadata = {{u"a"_s, u"b"_s}};
    store.setBlocked(true);
    EXPECT_FALSE(store.addIndex(0, 0x2001, {}) || store.addSubIndex(0, 0x2000, 1, {}) ||
                 store.addSubIndices({{0, 0x2000, 1, {}}}) || store.removeIndex(0, 0x2000) ||
                 store.removeSubIndex(0, 0x2000, 0) || store.copyIndex(0, 0x2000, 0, 0x2001) ||
                 store.setObjectMetadata(0, 0x2000, metadata) || store.setSubObjectMetadata(0, 0x2000, 0, metadata) ||
                 store.setSubIndexDefaultValue(0, 0x2000, 0, u"1"_s) || store.addNode(1, {}) || store.removeNode(0) ||
                 store.setMiscSetting(u"a"_s, u"b"_s) || store.setJ1939Setting(u"a"_s, u"b"_s));
    store.setIndexName(0, 0x2000, u"new"_s);
    store.setNodeSqlValue(u"0"_s, u"name"_s, u"new"_s);
    EXPECT_TRUE(store.setGeneralSetting(u"a"_s, u"b"_s) && store.setDescriptionSetting(u"a"_s, u"b"_s));
    store.setBlocked(false);
    EXPECT_EQ(rows(u"select objectindex, subindex, defaultvalue, metadata from SubObjects0"_s),
              QStringList{u"8192|0|0|0"_s});
    EXPECT_EQ(store.getIndexName(0, 0x2000), u"Object 2000"_s);
    EXPECT_EQ(rows(u"select nodeId, name from Nodes"_s), QStringList{u"0|"_s});
}

TEST_F(Objects, ColumnWritersMakeTheRowTheyNeed)
{
    store.setObjectIndexSqlValue(u"Objects0"_s, u"0x2000"_s, u"name"_s, u"  two   words "_s);
    store.setObjectIndexSqlValue(u"Objects0"_s, u"0x2000"_s, u"datatype"_s, u" 7 "_s);
    store.setObjectIndexSqlValue(u"Objects0"_s, u"0x2001"_s, u"name"_s, QVariant());
    Index object;
    ASSERT_TRUE(store.getIndex(0, 0x2000, object));
    EXPECT_EQ(object.name, u"  two   words "_s);
    EXPECT_EQ(object.datatype, 7U);
    EXPECT_FALSE(store.indexExists(0, 0x2001));

    store.setSubindexSqlValue(u"SubObjects0"_s, u"0x2000"_s, u"1"_s, u"defaultvalue"_s, u" a  b "_s);
    store.setSubindexSqlValue(u"SubObjects0"_s, u"0x2000"_s, u"1"_s, u"metadata"_s,
                              MetadataBlob::serialise({{u"k"_s, u"v"_s}}));
    Sub sub;
    ASSERT_TRUE(store.getSubIndex(0, 0x2000, 1, sub));
    EXPECT_EQ(sub.defaultvalue, u"a b"_s);
    EXPECT_EQ(sub.metadata.value(u"k"_s), u"v"_s);
}

TEST(Metadata, AnythingElseThanAMapIsEmpty)
{
    const ObjectDataBase::Metadata map = {{u"a"_s, u"1"_s}, {u"b"_s, u"ü"_s}};
    const QByteArray bytes = MetadataBlob::serialise(map);
    EXPECT_EQ(bytes.left(8), QByteArray("\0\0\0\2\0\0\0\2", 8));
    EXPECT_EQ(MetadataBlob::parse(bytes), map);
    for (const QByteArray &bad : {QByteArray(), QByteArray("0"), QByteArray("garbage!"), bytes.left(bytes.size() - 1),
                                  QByteArray("\xff\xff\xff\xf0\0\0\0\2", 8)})
        EXPECT_TRUE(MetadataBlob::parse(bad).isEmpty());
}

} // namespace
