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
        EXPECT_TRUE(store->createNewDataBase());
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

} // namespace
