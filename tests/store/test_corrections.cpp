// Corrections of older projects, modifier files, and the user's own settings.

#include "store/storetest.h"

#include "store/databasemodifier.h"
#include "store/projectconverter.h"
#include "store/usersettings.h"

#include <QDir>
#include <QStandardPaths>

using namespace Qt::StringLiterals;

namespace {

class Corrections : public testing::Test
{
protected:
    Corrections()
    {
        store->createNewDataBase();
        converter.setDatabase(store);
        modifier.setDatabase(store);
        QDir().mkpath(configFile(u"norvane"_s));
    }
    ~Corrections() override
    {
        QFile::remove(configFile(u"norvane.ini"_s));
        QFile::remove(configFile(u"norvane/CANopen NodeComposer.ini"_s));
        QFile::remove(configFile(u"norvane/Versioned.ini"_s));
        qApp->setProperty("AppNameWithVersion", QVariant());
    }

    static QString configFile(const QString &name)
    {
        return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + u'/' + name;
    }

    bool modify(const QByteArray &content)
    {
        const QString file = folder.filePath(u"change.txt"_s);
        EXPECT_TRUE(TestSupport::writeFile(file, content));
        modifier.setModifierFile(file);
        return modifier.applyModifierFile();
    }

    QTemporaryDir folder;
    std::shared_ptr<ObjectDataBase> store = std::make_shared<ObjectDataBase>();
    ProjectConverter converter;
    DatabaseModifier modifier;
};

TEST_F(Corrections, SettingsAreBroughtUpToDateOnce)
{
    const QString define = u"\n\n /* old group filter setting */\n#define CO_DRV_GROUP_FILTER 1u\n"_s;
    // A key and its value, and what another key holds then.
    const std::array<QString, 4> cases[] = {
        {u"drv_group_filter"_s, u"1"_s, u"drv_group_filter"_s, u"0"_s},
        {u"drv_group_filter"_s, u"1"_s, u"hw_defines"_s, u"#define A"_s + define},
        {u"drv_group_filter"_s, u"2"_s, u"hw_defines"_s, u"#define A"_s},
        {u"udsserver_version"_s, u"5"_s, u"udsserver_version"_s, u"6"_s},
        {u"udsserver_version"_s, u"4"_s, u"udsserver_version"_s, u"4"_s},
        {u"co_ml_ms"_s, u"1,0"_s, u"nmtmaster"_s, u"1,0"_s},
        {u"co_ml_ms"_s, u"1,0"_s, u"co_ml_ms"_s, u""_s},
        {u"co_ml_ms"_s, u"1"_s, u"co_ml_ms"_s, u"1"_s},
        {u"usdo_server_cnt"_s, u"2"_s, u"usdo_server_enabled"_s, u"1"_s},
        {u"usdo_server_cnt"_s, u"256"_s, u"usdo_server_enabled"_s, u"0"_s},
        {u"usdo_client_cnt"_s, u"7"_s, u"usdo_client_enabled"_s, u"1"_s},
    };
    for (const auto &[key, value, expectedKey, expected] : cases) {
        store->createNewDataBase();
        store->setGeneralSetting(u"hw_defines"_s, u"#define A"_s);
        store->setGeneralSetting(u"usdo_server_enabled"_s, u"0"_s);
        store->setGeneralSetting(key, value);
        for (int open = 0; open < 2; ++open) {
            EXPECT_TRUE(converter.doGenericCorrection() && converter.doCorrection());
            EXPECT_EQ(store->getGeneralSetting(expectedKey), expected) << key.toStdString();
        }
    }
}

TEST_F(Corrections, Object1032IsUnmappedWhereItIsMapped)
{
    ObjectDataBase::SUBINDEX_DATA_T data;
    data.pdomapping = PDOMapping(1);
    data.defaultvalue = u"42"_s;
    store->addIndex(0, 0x1032, {});
    store->addSubIndex(0, 0x1032, 0, data);
    store->addSubIndex(0, 0x1032, 1, data);
    store->addNode(1, {});
    converter.doCorrection();
    ObjectDataBase::SUBINDEX_DATA_T back;
    ASSERT_TRUE(store->getSubIndex(0, 0x1032, 0, back));
    EXPECT_EQ(back.pdomapping.toUInt(), 0u);
    EXPECT_EQ(back.defaultvalue, u"42"_s);
    ASSERT_TRUE(store->getSubIndex(0, 0x1032, 1, back));
    EXPECT_EQ(back.pdomapping.toUInt(), 1u);
    EXPECT_FALSE(store->indexExists(1, 0x1032));
}

TEST_F(Corrections, StackPathComesFromTheUserWhereTheProjectHasNone)
{
    converter.doCorrection();
    EXPECT_FALSE(store->miscSettingExists(u"costackpath"_s));
    for (const QByteArray path : {"/opt/stack", "/other"}) {
        TestSupport::writeFile(configFile(u"norvane/CANopen NodeComposer.ini"_s), "[General]\ncostackpath=" + path);
        converter.doCorrection();
        EXPECT_EQ(store->getMiscSetting(u"costackpath"_s), u"/opt/stack"_s);
    }
}

TEST_F(Corrections, UserSettingsAreFoundInEachOfTheirPlaces)
{
    const auto valueOf = [](const QString &key) { return UserSettings::value(u"General"_s, key, u"none"_s); };
    TestSupport::writeFile(configFile(u"norvane.ini"_s), "[General]\na=organisation\nb=organisation\nlist=1, 2\n");
    TestSupport::writeFile(configFile(u"norvane/CANopen NodeComposer.ini"_s), "[%General]\na=application\n[x]\nc=1\n");
    EXPECT_EQ(valueOf(u"a"_s), u"application"_s);
    EXPECT_EQ(valueOf(u"b"_s), u"organisation"_s);
    EXPECT_EQ(valueOf(u"list"_s), u"1,2"_s);
    EXPECT_EQ(valueOf(u"c"_s), u"none"_s);
    EXPECT_EQ(UserSettings::value(u"x"_s, u"c"_s), u"1"_s);
    TestSupport::writeFile(configFile(u"norvane/Versioned.ini"_s), "[General]\na=versioned\n");
    qApp->setProperty("AppNameWithVersion", u"Versioned"_s);
    EXPECT_EQ(valueOf(u"a"_s), u"versioned"_s);
}

TEST_F(Corrections, EnergyBusDevicesAreSpeltAndCounted)
{
    const auto set = [this](const QString &key, const QString &value) { store->setEnergyBusSetting(key, value); };
    set(u"sec_0_kind"_s, u"ecurity controller"_s);
    set(u"sec_1_kind"_s, u"security controller"_s);
    set(u"sec_48_kind"_s, u"correct"_s);
    set(u"device_0"_s, u"battery"_s);
    set(u"device_2"_s, u"ecurity"_s);
    set(u"device_cnt"_s, u"1"_s);
    EXPECT_TRUE(converter.doEnergyBusCorrection() && converter.doEnergyBusCorrection());
    QStringList values;
    for (const QString &key : store->getEnergyBusSettingKeys())
        values.append(key + u'=' + store->getEnergyBusSetting(key));
    values.sort();
    EXPECT_EQ(values, (QStringList{u"device_0=battery"_s, u"device_2=security"_s, u"device_cnt=3"_s,
                                   u"sec_0_kind=security controller"_s, u"sec_1_kind=security controller"_s,
                                   u"sec_48_kind=correct"_s}));
}

TEST_F(Corrections, J1939BuildsRecountTheMapping)
{
    store->addPGN(0, 5, {.name = u"n"_s, .mappingcount = 9, .direction = ObjectDataBase::transmit});
    store->addSPN(0, 5, ObjectDataBase::transmit, 1, {});
    store->addSPN(0, 5, ObjectDataBase::transmit, 2, {});
    EXPECT_TRUE(converter.doJ1939Correction());
    EXPECT_EQ(store->getPGNMappingCount(0, 5, ObjectDataBase::transmit), 2);
    EXPECT_EQ(store->getPGNName(0, 5, ObjectDataBase::transmit), u"n"_s);
}

TEST_F(Corrections, ModifierFileSetsWhatItUnderstands)
{
    store->setBlocked(true);
    EXPECT_TRUE(modify("# GeneralSettings:comment:1\r\n\r\nGeneralSettings:a: b \r\nGeneralSettings:b:1:2\n"
                       "GeneralSettings:c\nMiscSettings:d:1\ngeneralsettings:e:1\nJ1939Settings:f:it's\n"
                       "GeneralSettings:g:"));
    EXPECT_EQ(store->getGeneralSetting(u"a"_s), u" b "_s);
    for (const QString &key : {u"b"_s, u"c"_s, u"d"_s, u"e"_s, u"comment"_s})
        EXPECT_FALSE(store->generalSettingExists(key) || store->miscSettingExists(key)) << key.toStdString();
    EXPECT_EQ(store->getJ1939Setting(u"f"_s), u"it's"_s);
    EXPECT_TRUE(store->generalSettingExists(u"g"_s));
    EXPECT_EQ(modifier.failedLine(), QString());
    EXPECT_FALSE(store->isBlocked());
}

TEST_F(Corrections, ModifierFileStopsAtTheLineThatIsRefused)
{
    EXPECT_FALSE(modify("GeneralSettings:a:1\nGeneralSettings:b:it's\nGeneralSettings:c:1\n"));
    EXPECT_EQ(modifier.failedLine(), u"GeneralSettings:b:it's"_s);
    EXPECT_EQ(store->getGeneralSetting(u"a"_s), u"1"_s);
    EXPECT_FALSE(store->generalSettingExists(u"c"_s));
    modifier.setModifierFile(folder.filePath(u"missing"_s));
    EXPECT_FALSE(modifier.applyModifierFile());
    modifier.setModifierFile(folder.path());
    EXPECT_FALSE(modifier.applyModifierFile());
    EXPECT_EQ(modifier.failedLine(), QString());
}

} // namespace
