// The life of a project file: working copies, identity, hash, migrations, saving.

#include "store/storetest.h"

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QFileInfo>
#include <QRegularExpression>
#include <QThread>

#include <cstdlib>

using namespace Qt::StringLiterals;

namespace {

class ProjectFile : public StoreTest
{
protected:
    /// Makes an old project from the statements of a file, and opens it.
    bool openOld(const QString &name)
    {
        const QByteArray script =
            TestSupport::readFile(u"%1/tests/data/oldprojects/%2.sql"_s.arg(QStringLiteral(NCX_SOURCE_DIR), name));
        makeDatabase(path(name), QString::fromUtf8(script).split(u';'));
        return store.openDataBase(path(name));
    }

    static int workingCopies()
    {
        return static_cast<int>(QDir(TestSupport::dataFolder()).entryList({u"qvxdatatemp_*"_s}, QDir::Files).size());
    }
};

TEST_F(ProjectFile, NewProjectHasLineZeroAndItsIdentity)
{
    EXPECT_EQ(store.getNodeList(), QList<quint8>{0});
    EXPECT_TRUE(store.getIndexList(0, 0, 0xffff).isEmpty());
    EXPECT_EQ(rows(u"select item, value from MiscSettings order by item"_s),
              (QStringList{u"CreateToolName|CANopen NodeComposer"_s, u"CreateToolVersion|4.3.3"_s,
                           u"DatabaseVersion|107"_s}));
    EXPECT_EQ(rows(u"select name from pragma_table_info('Groups')"_s), (QStringList{u"name"_s, u"nodeidlist"_s}));
    EXPECT_EQ(rows(u"select type from pragma_table_info('Nodes') where name = 'lssslave'"_s), QStringList{u""_s});
    EXPECT_EQ(store.getUDSServiceSessions(0, 0x3e), u"1"_s);
}

TEST_F(ProjectFile, SavedProjectComesBackWithoutTamperMark)
{
    const ObjectDataBase::SUBINDEX_DATA_T sub = {.name = u"Grüße, 'quoted'"_s, .metadata = {{u"eds_define"_s, u"A"_s}}};
    store.addSubIndex(0, 0x2000, 0, sub);
    ASSERT_TRUE(store.saveDatabase(path(u"a.ncxp"_s)));
    EXPECT_EQ(store.projectPath(), path(u"a.ncxp"_s));

    ObjectDataBase other;
    ASSERT_TRUE(other.openDataBase(path(u"a.ncxp"_s)));
    EXPECT_FALSE(other.isTampered());
    EXPECT_EQ(other.getMiscSetting(u"TamperLog"_s), u""_s);
    ObjectDataBase::SUBINDEX_DATA_T back;
    ASSERT_TRUE(other.getSubIndex(0, 0x2000, 0, back));
    EXPECT_EQ(back, sub);
}

TEST_F(ProjectFile, ChangeFromOutsideIsLoggedOncePerSave)
{
    for (int round = 1; round <= 2; ++round) {
        ASSERT_TRUE(reopenAfter({u"insert into GeneralSettings values('outside%1','1')"_s.arg(round)}));
        EXPECT_TRUE(store.isTampered());
    }
    static const QRegularExpression stamps(u"^(;?\\d{4}-\\d\\d-\\d\\dT\\d\\d:\\d\\d:\\d\\d){2}$"_s);
    EXPECT_TRUE(stamps.match(store.getMiscSetting(u"TamperLog"_s)).hasMatch());
    // The rows that hold the verdict are not part of what is judged.
    ASSERT_TRUE(reopenAfter({u"update MiscSettings set value = 'x' where item = 'TamperLog'"_s}));
    EXPECT_FALSE(store.isTampered());
}

TEST_F(ProjectFile, HashFollowsTheCanonicalDump)
{
    // The dump of a database with two known tables, hashed by hand: name, line feed, cells each with "|", line feed.
    ASSERT_TRUE(exec(u"create table aaa (n integer, t text, b blob)"_s));
    ASSERT_TRUE(exec(u"insert into aaa values(7, NULL, x'c3a4')"_s));
    for (const QString &table : rows(u"select name from sqlite_master where type='table'"_s)) {
        if (table != "aaa"_L1 && table != "MiscSettings"_L1)
            exec(u"drop table "_s + table);
    }
    QByteArray dump = "MiscSettings\nCreateToolVersion|4.3.3|\nCreateToolName|CANopen NodeComposer|\n"
                      "DatabaseVersion|107|\naaa\n7||\xc3\xa4|\n";
    EXPECT_EQ(store.computeFileHash(),
              QString::fromLatin1(QCryptographicHash::hash(dump, QCryptographicHash::Sha256).toHex()));
}

TEST_F(ProjectFile, SaveKeepsTheFileBeforeAsBackupAndDropsScratchLines)
{
    const QString file = path(u"a.ncxp"_s);
    TestSupport::writeFile(file, "what stood here");
    TestSupport::writeFile(file + u".bak"_s, "older");
    QFile::setPermissions(file, QFile::ReadOwner | QFile::WriteOwner | QFile::WriteGroup);
    const auto permissions = QFile::permissions(file);
    store.addNode(254, {});
    store.addNode(255, {});
    ASSERT_TRUE(store.saveDatabase(file));
    EXPECT_EQ(QFile::permissions(file), permissions);
    EXPECT_EQ(TestSupport::readFile(file + u".bak"_s), "what stood here");
    EXPECT_EQ(store.getNodeList(), QList<quint8>{0});
    // The file is saved without a backup where something stands in that one's way.
    QFile::remove(file + u".bak"_s);
    QDir().mkpath(file + u".bak/x"_s);
    ASSERT_TRUE(store.saveDatabase(file));
    EXPECT_EQ(QFile::permissions(file), permissions);

    // Nowhere to write: the backup stays, nothing that looks whole is left.
    EXPECT_FALSE(store.saveDatabase(path(u"no/such/folder/a.ncxp"_s)));
    EXPECT_EQ(store.projectPath(), file);
    EXPECT_FALSE(ObjectDataBase().saveDatabase({}));
}

TEST_F(ProjectFile, DamagedWorkingCopyIsNotSaved)
{
    const QString file = path(u"a.ncxp"_s);
    ASSERT_TRUE(store.saveDatabase(file));
    const QByteArray whole = TestSupport::readFile(file);
    // Room for a few pages more: the next rows fill the "disk".
    exec(u"PRAGMA max_page_count = %1"_s.arg(rows(u"PRAGMA page_count"_s).value(0).toInt() + 2));
    for (int i = 0; i < 2000; ++i)
        store.setGeneralSetting(u"key%1"_s.arg(i), QString(100, u'x'));
    EXPECT_FALSE(store.saveDatabase({}));
    EXPECT_NE(store.lastError(), u""_s);
    EXPECT_EQ(TestSupport::readFile(file), whole);
    ASSERT_TRUE(store.openDataBase(file));
    EXPECT_TRUE(store.saveDatabase({}));
}

TEST_F(ProjectFile, WizardProfileMarksItsSubObjects)
{
    store.addSubIndex(0, 0x2000, 0, {.changedbyuser = true});
    ASSERT_TRUE(store.saveDatabase(path(u"v1.data.ncxp"_s)));
    ASSERT_TRUE(store.saveDatabase(path(u"v1.wizard.data"_s)));
    EXPECT_EQ(rows(u"select changedbyuser, wizardsource from SubObjects0"_s), QStringList{u"1|0"_s});
    ASSERT_TRUE(store.saveDatabase(path(u"wizard.DATA"_s)));
    EXPECT_EQ(rows(u"select changedbyuser, wizardsource from SubObjects0"_s), QStringList{u"0|454"_s});
}

TEST_F(ProjectFile, WorkingCopiesAreTheirOwnAndGoWithTheStore)
{
    const int before = workingCopies();
    {
        // The same seed draws the same names.
        std::srand(1);
        ObjectDataBase first;
        std::srand(1);
        first.createNewDataBase();
        ObjectDataBase second;
        std::srand(1);
        second.createNewDataBase();
        first.setGeneralSetting(u"k"_s, u"first"_s);
        second.setGeneralSetting(u"k"_s, u"second"_s);
        EXPECT_EQ(first.getGeneralSetting(u"k"_s), u"first"_s);
        EXPECT_EQ(workingCopies(), before + 2);
        EXPECT_FALSE(second.openDataBase(path(u"missing.ncxp"_s)));
        EXPECT_EQ(workingCopies(), before + 3);
    }
    EXPECT_EQ(workingCopies(), before);
}

TEST_F(ProjectFile, WhatIsNoProjectIsRefused)
{
    TestSupport::writeFile(path(u"empty"_s), "");
    TestSupport::writeFile(path(u"upper.NCXT"_s), "[GeneralSettings]\nline0type=1\n");
    makeDatabase(path(u"foreign"_s), {u"create table x (a)"_s});
    makeDatabase(path(u"nolines"_s), {u"create table Nodes (nodeId integer primary key)"_s});
    makeDatabase(path(u"endless"_s),
                 {u"create view Nodes as with recursive c(x) as (select 0 union all select x+1 from c) "
                  "select x nodeId from c"_s});
    makeDatabase(path(u"wrapped"_s),
                 {u"create table Nodes (nodeId integer primary key)"_s, u"insert into Nodes values(4294967296)"_s});
    store.saveDatabase(path(u"whole.ncxp"_s));
    TestSupport::writeFile(path(u"truncated"_s), TestSupport::readFile(path(u"whole.ncxp"_s)).left(5000));

    for (const QString &name : {u"empty"_s, u"upper.NCXT"_s, u"foreign"_s, u"nolines"_s, u"endless"_s, u"wrapped"_s,
                                u"truncated"_s, u""_s, u"missing"_s, u"/dev/zero"_s})
        EXPECT_FALSE(store.openDataBase(path(name))) << name.toStdString();
    EXPECT_FALSE(store.openDataBase({}));
    EXPECT_EQ(store.lastError(), u""_s);
    EXPECT_TRUE(store.openDataBase(path(u"whole.ncxp"_s)));
}

TEST_F(ProjectFile, ToolCheckKnowsWhoMayOpenWhat)
{
    const QString canOpen = u"CANopen NodeComposer"_s;
    const QString j1939 = u"J1939 NodeComposer"_s;
    const QString can = u"CAN NodeComposer"_s;
    const std::tuple<QString, QString, QString, bool> cases[] = {
        {canOpen, {}, u"2"_s, false},
        {canOpen, can, u"2"_s, false},
        {canOpen, {}, u"4"_s, false},
        {canOpen, {}, u"5"_s, false},
        {canOpen, {}, u"7"_s, true},
        {canOpen, {}, u"1"_s, true},
        {canOpen, canOpen, u"2"_s, true},
        {j1939, canOpen, u"1"_s, false},
        {j1939, {}, u"2"_s, true},
        {can, j1939, u"2"_s, true},
        {u"EnergyBus NodeAssistant"_s, {}, u"2"_s, true},
    };
    const QString own = QCoreApplication::applicationName();
    int refused = 0;
    QObject::connect(&store, &ObjectDataBase::wrongTool, [&] { ++refused; });
    for (const auto &[application, savedBy, type, opens] : cases) {
        store.createNewDataBase();
        store.setGeneralSetting(u"line0type"_s, type);
        QCoreApplication::setApplicationName(application);
        refused = 0;
        const QString saver = u"update MiscSettings set value = '%1' where item = 'SaveToolType'"_s.arg(savedBy);
        EXPECT_EQ(reopenAfter({saver}), opens) << (application + type).toStdString();
        EXPECT_EQ(refused, opens ? 0 : 1);
        EXPECT_EQ(store.lastError(), opens ? u""_s : u"File was not created with this tool."_s);
        QCoreApplication::setApplicationName(own);
    }
}

TEST_F(ProjectFile, UntypedLineIsInferred)
{
    const std::tuple<QString, int, int, QString> cases[] = {{u"CANopen NodeComposer"_s, 0, 1, u"1"_s},
                                                            {u"J1939 NodeComposer"_s, 2, 0, u"2"_s},
                                                            {u"4.3.3"_s, 2, 1, u"1"_s},
                                                            {u"4.3.3"_s, 1, 1, u"2"_s}};
    for (const auto &[createToolVersion, objects, pgns, type] : cases) {
        store.createNewDataBase();
        store.setMiscSetting(u"CreateToolVersion"_s, createToolVersion);
        store.addIndex(0, 0xfff, {});
        for (int i = 0; i < objects; ++i)
            store.addIndex(0, static_cast<quint16>(0x1000 + i), {});
        for (int i = 0; i < pgns; ++i)
            store.addPGN(0, static_cast<quint32>(i), {.direction = store.transmit});
        ASSERT_TRUE(reopenAfter({}));
        EXPECT_EQ(store.getGeneralSetting(u"line0type"_s), type);
    }
}

TEST_F(ProjectFile, OpenCompletesAFile)
{
    store.addNode(2, {});
    store.setGeneralSetting(u"co_node_id"_s, u"1,2,3,4,5"_s);
    ASSERT_TRUE(reopenAfter({u"update UDSSettings0 set active = 0"_s, u"delete from DescriptionSettings"_s}));

    EXPECT_EQ(store.getGeneralSetting(u"co_node_id"_s), u"1,2,3"_s);
    EXPECT_EQ(store.currentLine(), 2);
    EXPECT_EQ(store.getDescriptionSetting(u"OrderCode"_s), u"0815-BUY-ME"_s);
    EXPECT_EQ(rows(u"select count(*) from DescriptionSettings where item like '%\\_2' escape '\\'"_s),
              QStringList{u"27"_s});
    EXPECT_EQ(rows(u"select sessions, count(*) from UDSSettings0 where active = 1 group by sessions"_s),
              (QStringList{u"1,2,3,4|10"_s, u"2,3,4|7"_s}));
    EXPECT_EQ(rows(u"select count(*) from UDSSettings2 where active = 1"_s), QStringList{u"5"_s});
}

TEST_F(ProjectFile, MigratesAnOldCANopenFileWithoutShiftingColumns)
{
    for (int round = 0; round < 2; ++round) {
        ASSERT_TRUE(round == 0 ? openOld(u"v99_canopen"_s) : store.openDataBase(path(u"v99_canopen"_s)));
        EXPECT_EQ(rows(u"select objectindex, subindex, datatype, accesstype, defaultvalue, uplimit, varname, "
                       "implementation from SubObjects0"_s),
                  (QStringList{u"4096|0|7|ro|0x191|||1"_s, u"8192|0|3|rw|-5|10|speed|2"_s, u"8192|1|3|rw|7|||0"_s}));
        ObjectDataBase::SUBINDEX_DATA_T sub;
        ASSERT_TRUE(store.getSubIndex(0, 0x2000, 0, sub));
        EXPECT_EQ(sub.name, u"Speed"_s);
        EXPECT_FALSE(exec(u"insert into SubObjects0 select * from SubObjects0"_s));
        EXPECT_EQ(rows(u"select name from sqlite_master where name like '%_old'"_s), QStringList{});
        EXPECT_EQ(store.getGeneralSetting(u"line0type"_s), u"1"_s);
        EXPECT_EQ(store.getGeneralSetting(u"co_node_id"_s), u"5"_s);
        EXPECT_EQ(rows(u"select name from pragma_table_info('Groups')"_s).value(0), u"groupid"_s);
        ObjectDataBase::NODE_DATA_T node;
        ASSERT_TRUE(store.getNode(0, node));
        EXPECT_EQ(node.edspath, u"old.eds"_s);
        EXPECT_EQ(store.getMiscSetting(u"DatabaseVersion"_s), u"99"_s);
    }
    EXPECT_TRUE(store.addSPN(0, 1, store.receive, 5, {.bitposition = 12}));
    EXPECT_EQ(rows(u"select bitposition, bitpostion from SPNs0"_s), QStringList{u"12|NULL"_s});
    ASSERT_TRUE(store.saveDatabase(path(u"new.ncxp"_s)));
    EXPECT_EQ(store.getMiscSetting(u"DatabaseVersion"_s), u"107"_s);
}

TEST_F(ProjectFile, MigratesSignalsOfOldFiles)
{
    ASSERT_TRUE(openOld(u"v99_j1939"_s));
    EXPECT_EQ(
        rows(u"select spnnumber, direction, bitposition from SPNs0 order by pos"_s),
        (QStringList{u"899|85|0"_s, u"190|85|8"_s, u"512|85|24"_s, u"513|85|48"_s, u"1|119|0"_s, u"2|85|NULL"_s}));
    EXPECT_EQ(store.getPGNMappingCount(0, 61444, store.transmit), 4);

    ASSERT_TRUE(openOld(u"v104_rawcan"_s));
    EXPECT_EQ(rows(u"select number, bitpos from DataElements0"_s), (QStringList{u"0|0"_s, u"1|16"_s, u"2|28"_s}));
    EXPECT_EQ(store.getUDSServiceSessions(0, 0x37), u"2,3,4"_s);

    ASSERT_TRUE(openOld(u"v105_j1939"_s));
    EXPECT_TRUE(store.addPGN(0, 65262, {.direction = store.receive, .safetytype = 2, .FD_DataID = 77}));
    EXPECT_EQ(rows(u"select safetytype, FD_DataId from PGNs0"_s), QStringList{u"2|77"_s});
    store.setUDSServiceAuthentication(0, 34, u"1"_s);
    EXPECT_EQ(rows(u"select * from UDSSettings0"_s), QStringList{u"34|1|1,3|2|1"_s});
}

TEST_F(ProjectFile, EnergyBusFileGetsAbsolutePaths)
{
    ObjectDataBase::NODE_DATA_T node;
    node.edspath = u"sub/x.eds"_s;
    store.addNode(0, node);
    store.saveDatabase(path(u"a.ncxe"_s));
    const QString here = QDir::currentPath();
    ASSERT_TRUE(store.openDataBase(path(u"a.ncxe"_s)));
    ASSERT_TRUE(store.getNode(0, node));
    EXPECT_EQ(node.edspath, QFileInfo(path(u"a.ncxe"_s)).canonicalPath() + u"/sub/x.eds"_s);
    QDir::setCurrent(here);
}

TEST_F(ProjectFile, GateLetsOneThreadInAtATime)
{
    // A thread that closed the gate works; another waits until it is open, and writes fail while blocked.
    store.setBlocked(true);
    EXPECT_FALSE(store.addIndex(0, 0x2000, {}));
    EXPECT_TRUE(store.setGeneralSetting(u"k"_s, u"1"_s));
    std::atomic<bool> read = false;
    const std::unique_ptr<QThread> reader(QThread::create([&] {
        store.getGeneralSetting(u"k"_s);
        read = true;
    }));
    reader->start();
    QThread::msleep(100);
    EXPECT_FALSE(read);
    store.setBlocked(false);
    ASSERT_TRUE(reader->wait(5000));
    EXPECT_TRUE(read);
    EXPECT_TRUE(store.addIndex(0, 0x2000, {}));
}

TEST_F(ProjectFile, WriteTrackingTellsOfWritesOnly)
{
    int writes = 0;
    QObject::connect(&store, &ObjectDataBase::databaseWriteExecuted, [&] { ++writes; });
    exec(u"insert into GeneralSettings values('a','1')"_s);
    EXPECT_EQ(writes, 0);
    store.setWriteTracking(true);
    exec(u"  Update GeneralSettings set value = 2"_s);
    exec(u"select * from GeneralSettings"_s);
    exec(u"insert into NoSuchTable values(1)"_s);
    EXPECT_EQ(writes, 1);
}

} // namespace
