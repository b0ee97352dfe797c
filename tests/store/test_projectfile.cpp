// The life of a project file: working copies, identity, hash, migrations, saving.

#include "store/storetest.h"

#include "store/file/workingcopies.h"
#include "support/smalldisk.h"

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QFileInfo>
#include <QRegularExpression>
#include <QThread>

#include <cstdlib>

#include <fcntl.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

class ProjectFile : public StoreTest
{
protected:
    static int workingCopies()
    {
        return static_cast<int>(QDir(TestSupport::dataFolder()).entryList({u"qvxdatatemp_*"_s}, QDir::Files).size());
    }

    /// No project is open after an open that fails, and none is saved.
    void expectRefused(const QString &file, const QString &reason)
    {
        SCOPED_TRACE(file.toStdString());
        const QString elsewhere = path(u"elsewhere.ncxp"_s);
        EXPECT_FALSE(store.openDataBase(file));
        EXPECT_EQ(store.lastError(), reason);
        EXPECT_TRUE(!store.isOpen() && store.projectPath().isEmpty() && store.getNodeList().isEmpty());
        EXPECT_FALSE(store.saveDatabase({}) || store.saveDatabase(elsewhere) || QFile::exists(elsewhere));
        EXPECT_FALSE(store.saveDatabase(path(u"elsewhere.ncxt"_s)));
        EXPECT_NE(store.lastError(), u""_s);
    }
};

TEST_F(ProjectFile, SavedProjectComesBackWithoutTamperMark)
{
    const ObjectDataBase::SUBINDEX_DATA_T sub = {.name = u"Grüße, 'quoted'"_s, .metadata = {{u"eds_define"_s, u"A"_s}}};
    EXPECT_TRUE(store.addSubIndex(0, 0x2000, 0, sub));
    ASSERT_TRUE(store.saveDatabase(path(u"a.ncxp"_s)));
    EXPECT_EQ(store.projectPath(), path(u"a.ncxp"_s));

    ObjectDataBase other;
    ASSERT_TRUE(other.openDataBase(path(u"a.ncxp"_s)));
    EXPECT_FALSE(other.isTampered());
    EXPECT_EQ(other.getMiscSetting(u"TamperLog"_s), u""_s);
    EXPECT_EQ(other.getSubIndex(0, 0x2000, 0), sub);
}

TEST_F(ProjectFile, IsNotSavedWithoutTheRowsOfAnOpenBatch)
{
    ObjectDataBase::Transaction batch(store);
    EXPECT_TRUE(store.setGeneralSetting(u"a"_s, u"1"_s));
    EXPECT_FALSE(store.saveDatabase(path(u"early.ncxp"_s)));
    EXPECT_FALSE(store.lastError().isEmpty() || QFile::exists(path(u"early.ncxp"_s)));
    EXPECT_TRUE(batch.commit() && store.saveDatabase(path(u"late.ncxp"_s)));
    ObjectDataBase other;
    EXPECT_TRUE(other.openDataBase(path(u"late.ncxp"_s)));
    EXPECT_EQ(other.getGeneralSetting(u"a"_s), u"1");
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
    EXPECT_TRUE(store.addNode(254, {}));
    EXPECT_TRUE(store.addNode(255, {}));
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
    bool done = true;
    for (int i = 0; i < 2000; ++i)
        done = store.setGeneralSetting(u"key%1"_s.arg(i), QString(100, u'x')) && done;
    EXPECT_FALSE(done || store.saveDatabase({}));
    EXPECT_NE(store.lastError(), u""_s);
    EXPECT_EQ(TestSupport::readFile(file), whole);
    ASSERT_TRUE(store.openDataBase(file));
    EXPECT_TRUE(store.saveDatabase({}));
}

TEST_F(ProjectFile, WorkingCopyThatCouldNotBeWrittenIsNotSaved)
{
    const QString file = path(u"a.ncxp"_s);
    ASSERT_TRUE(store.saveDatabase(file));
    const QByteArray whole = TestSupport::readFile(file);
    {
        const TestSupport::SmallDisk disk(4096);
        EXPECT_FALSE(store.setGeneralSetting(u"k"_s, QString(100000, u'x')));
    }
    EXPECT_FALSE(exec(u"a failure of another kind"_s));
    EXPECT_FALSE(store.saveDatabase({}));
    EXPECT_EQ(TestSupport::readFile(file), whole);
}

/// Puts a folder in the place of an open file, which can neither be read nor written from then on.
bool breakOpenFile(const QString &path)
{
    const QDir descriptors(u"/proc/self/fd"_s);
    for (const QString &number : descriptors.entryList(QDir::Files | QDir::System)) {
        if (QFileInfo(descriptors.filePath(number)).symLinkTarget() != path)
            continue;
        const int folder = ::open("/", O_RDONLY | O_CLOEXEC);
        const bool done = folder >= 0 && ::dup2(folder, number.toInt()) >= 0;
        ::close(folder);
        return done;
    }
    return false;
}

TEST_F(ProjectFile, WorkingCopyThatHasLostItsDiskIsNotSaved)
{
    const QString file = path(u"a.ncxp"_s);
    ASSERT_TRUE(store.saveDatabase(file));
    const QByteArray whole = TestSupport::readFile(file);
    ASSERT_TRUE(breakOpenFile(store.statements().path()));
    EXPECT_FALSE(store.isDamaged());
    EXPECT_FALSE(store.setGeneralSetting(u"k"_s, u"v"_s));
    EXPECT_TRUE(store.isDamaged());
    EXPECT_FALSE(store.saveDatabase({}));
    EXPECT_EQ(TestSupport::readFile(file), whole);
}

TEST_F(ProjectFile, SaveThroughALinkReachesTheFileBehindIt)
{
    const QString file = path(u"a.ncxp"_s);
    const QString link = path(u"link.ncxp"_s);
    TestSupport::writeFile(file, "what stood here");
    ASSERT_TRUE(QFile::link(file, link));
    ASSERT_TRUE(store.saveDatabase(link));
    EXPECT_TRUE(QFileInfo(link).isSymLink());
    EXPECT_TRUE(TestSupport::readFile(file).startsWith("SQLite format 3"));
    EXPECT_EQ(TestSupport::readFile(link + u".bak"_s), "what stood here");
    EXPECT_FALSE(QFile::exists(file + u".bak"_s));
}

TEST_F(ProjectFile, WizardProfileMarksItsSubObjects)
{
    EXPECT_TRUE(store.addSubIndex(0, 0x2000, 0, {.changedbyuser = true}));
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
        EXPECT_TRUE(first.createNewDataBase());
        ObjectDataBase second;
        std::srand(1);
        EXPECT_TRUE(second.createNewDataBase());
        EXPECT_TRUE(first.setGeneralSetting(u"k"_s, u"first"_s));
        EXPECT_TRUE(second.setGeneralSetting(u"k"_s, u"second"_s));
        EXPECT_EQ(first.getGeneralSetting(u"k"_s), u"first"_s);
        EXPECT_EQ(workingCopies(), before + 2);
        EXPECT_FALSE(second.openDataBase(path(u"missing.ncxp"_s)));
        EXPECT_EQ(workingCopies(), before + 3);
    }
    EXPECT_EQ(workingCopies(), before);
}

TEST_F(ProjectFile, AbandonedWorkingCopiesAreRemoved)
{
    const int before = workingCopies();
    for (const QString &name : {u"qvxdatatemp_5_6"_s, u"qvxdatatemp_2147483647_2147483647"_s, u"qvxdatatemp_mine"_s})
        TestSupport::writeFile(TestSupport::dataFolder() + u'/' + name, "SQLite format 3");
    EXPECT_EQ(workingCopies(), before + 3);
    WorkingCopies::removeAbandoned();
    EXPECT_EQ(workingCopies(), before + 1);
    EXPECT_TRUE(QFile::remove(TestSupport::dataFolder() + u"/qvxdatatemp_mine"_s));
    EXPECT_TRUE(store.saveDatabase(path(u"kept.ncxp"_s)));
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
    EXPECT_TRUE(store.saveDatabase(path(u"whole.ncxp"_s)));
    TestSupport::writeFile(path(u"truncated"_s), TestSupport::readFile(path(u"whole.ncxp"_s)).left(5000));

    for (const QString &name : {u"empty"_s, u"upper.NCXT"_s, u"foreign"_s, u"nolines"_s, u"endless"_s, u"wrapped"_s,
                                u"truncated"_s, u""_s, u"missing"_s, u"/dev/zero"_s})
        expectRefused(path(name), u""_s);
    expectRefused({}, u""_s);
    EXPECT_TRUE(store.createNewDataBase());
    EXPECT_TRUE(store.setGeneralSetting(u"line0type"_s, u"2"_s));
    EXPECT_TRUE(store.setMiscSetting(u"CreateToolVersion"_s, u""_s));
    EXPECT_TRUE(store.saveDatabase(path(u"foreign.ncxp"_s)));
    makeDatabase(path(u"foreign.ncxp"_s), {u"update MiscSettings set value = '' where item = 'SaveToolType'"_s});
    expectRefused(path(u"foreign.ncxp"_s), u"File was not created with this tool."_s);
    EXPECT_TRUE(store.openDataBase(path(u"whole.ncxp"_s)));
}

TEST_F(ProjectFile, EnergyBusFileGetsAbsolutePaths)
{
    ObjectDataBase::NODE_DATA_T node;
    node.edspath = u"sub/x.eds"_s;
    EXPECT_TRUE(store.addNode(0, node));
    const QString file = path(u"it's/a.ncxe"_s);
    QDir(folder.path()).mkdir(u"it's"_s);
    EXPECT_TRUE(store.saveDatabase(file));
    const QString here = QDir::currentPath();
    ASSERT_TRUE(store.openDataBase(file));
    EXPECT_EQ(store.getNode(0).value().edspath, QFileInfo(file).canonicalPath() + u"/sub/x.eds"_s);
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
    EXPECT_TRUE(store.setGeneralSetting(u"a"_s, u"1"_s));
    EXPECT_EQ(writes, 0);
    store.setWriteTracking(true);
    EXPECT_TRUE(store.setGeneralSetting(u"a"_s, u"2"_s));
    EXPECT_TRUE(store.setGeneralSetting(u"a"_s, u"2"_s));
    EXPECT_FALSE(store.setIndexName(9, 0x2000, u"of a line that there is not"_s));
    EXPECT_EQ(writes, 1);
    EXPECT_TRUE(store.createUDSSettingsTable(9));
    EXPECT_TRUE(store.removeSubIndex(0, 0x2000, 0, true));
    EXPECT_EQ(writes, 3);
}

} // namespace
