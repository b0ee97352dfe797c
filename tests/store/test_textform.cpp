// The text form of a project: its INI format against the framework's own, and projects out and in.

#include "store/storetest.h"

#include "store/databasetextconverter.h"
#include "store/metadatablob.h"
#include "store/settingstext.h"

#include <QBuffer>
#include <QRandomGenerator>
#include <QSettings>

#include <csignal>
#include <sys/resource.h>

using namespace Qt::StringLiterals;
using SettingsText::Reader;
using SettingsText::Writer;

namespace {

QByteArray textOf(const QMap<QString, QVariant> &settings)
{
    QMap<QString, QMap<QString, QVariant>> sections;
    for (const auto &[path, value] : settings.asKeyValueRange()) {
        const qsizetype slash = path.indexOf(u'/');
        sections[path.left(std::max(slash, qsizetype{0}))][path.sliced(slash + 1)] = value;
    }
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    Writer writer(buffer);
    for (const auto &[section, keys] : sections.asKeyValueRange()) {
        writer.setSection(section);
        for (const auto &[key, value] : keys.asKeyValueRange()) {
            if (value.typeId() == QMetaType::QByteArray)
                writer.writeBytes(SettingsText::escapedKey(key), value.toByteArray());
            else
                writer.writeText(SettingsText::escapedKey(key), value.toString());
        }
    }
    EXPECT_TRUE(writer.flush());
    return buffer.data();
}

/// A value as a project takes it: a list by its parts.
QString plainText(const QVariant &value)
{
    QStringList parts;
    if (value.typeId() == QMetaType::QStringList || value.typeId() == QMetaType::QVariantList) {
        for (const QVariant &part : value.toList())
            parts.append(part.toString());
    }
    const QString text = parts.isEmpty() ? value.toString() : parts.join(u',');
    return (value.isValid() ? value.typeId() == QMetaType::QByteArray ? u"bytes "_s : u"text "_s : u"none"_s) + text;
}

QStringList entriesOf(const Reader &reader)
{
    QStringList entries;
    for (const QString &group : reader.groups()) {
        reader.forEachKey(group, [&](const QString &key, const QVariant &value) {
            entries.append(u"%1/%2=%3"_s.arg(group, key, plainText(value)));
        });
    }
    return entries;
}

QStringList entriesOf(const QByteArray &content)
{
    Reader reader;
    reader.setContent(content);
    return entriesOf(reader);
}

/// What the framework finds in a file, in groups; keys that its own lookup cannot reach are left out.
QStringList frameworkEntries(const QSettings &settings)
{
    QStringList keys = settings.allKeys();
    keys.sort();
    QStringList entries;
    for (const QString &key : std::as_const(keys)) {
        if (key.contains(u'/') && !key.startsWith(u'/') && !key.endsWith(u'/') && !key.contains("//"_L1))
            entries.append(u"%1=%2"_s.arg(key, plainText(settings.value(key))));
    }
    return entries;
}

template <class Token>
auto randomJoin(QRandomGenerator &random, const QList<Token> &tokens, int most)
{
    Token result;
    for (int i = random.bounded(most + 1); i > 0; --i)
        result += tokens.at(random.bounded(static_cast<int>(tokens.size())));
    return result;
}

class TextForm : public StoreTest
{
protected:
    QByteArray textOfProject(ObjectDataBase &project)
    {
        const QString file = path(u"project.ncxt"_s);
        QFile::remove(file);
        DatabaseTextConverter converter;
        converter.setStore(&project);
        converter.setDatabase(project.connection());
        converter.setOutputFile(file);
        EXPECT_TRUE(converter.convertSqlToText());
        return TestSupport::readFile(file);
    }

    static QStringList groupsOf(const QByteArray &text)
    {
        Reader reader;
        reader.setContent(text);
        return reader.groups();
    }

    bool open(ObjectDataBase &project, const QByteArray &text)
    {
        const QString file = path(u"written.ncxt"_s);
        EXPECT_TRUE(TestSupport::writeFile(file, text));
        return project.openTextDatabase(file);
    }

    /// Every table of a project but those that hold its identity.
    static QStringList contentOf(ObjectDataBase &project)
    {
        QStringList content;
        for (const QString &table :
             rowsOf(project, u"select name from sqlite_master where type='table' order by name"_s)) {
            if (table != "MiscSettings"_L1)
                content += table + rowsOf(project, u"select * from %1 order by rowid"_s.arg(table)).join(u'\n');
        }
        return content;
    }

    QRandomGenerator random{42};
};

const QList<QString> nastyTexts =
    u"\"|\\|;|,|=| |\t|@|%|é|€|😀|\x1f|\x7f|\x80|f|0|g|\n|\r|)|'|[a]|@ByteArray(|@Variant(|@String(|General|\ufeff"_s
        .split(u'|') +
    QStringList{QString(QChar(u'\0')), QString(QChar(0xd83d))};

TEST_F(TextForm, WriterAgreesWithTheFrameworkByteForByte)
{
    for (int round = 0; round < 150; ++round) {
        QMap<QString, QVariant> settings;
        for (int i = random.bounded(1, 40); i > 0; --i) {
            QStringList groups;
            for (int depth = random.bounded(1, 4); depth > 0; --depth)
                groups.append(u'k' + randomJoin(random, nastyTexts, 2));
            if (random.bounded(5) == 0)
                groups.first() = u"General"_s;
            const QString text = randomJoin(random, nastyTexts, 7);
            settings[groups.join(u'/')] = random.bounded(3) == 0 ? QVariant(text.toLatin1()) : QVariant(text);
        }
        const QString file = path(u"framework%1.ini"_s.arg(round));
        {
            QSettings framework(file, QSettings::IniFormat);
            for (const auto &[key, value] : settings.asKeyValueRange())
                framework.setValue(key, value);
        }
        const QByteArray written = TestSupport::readFile(file);
        ASSERT_EQ(textOf(settings), written);

        const QString copy = file + ".copy"_L1;
        ASSERT_TRUE(TestSupport::writeFile(copy, written));
        QStringList found = entriesOf(written);
        found.sort();
        QStringList expected = frameworkEntries(QSettings(copy, QSettings::IniFormat));
        expected.sort();
        ASSERT_EQ(found, expected) << written.toStdString();
        QFile::remove(copy);
        QFile::remove(file);
    }
}

TEST_F(TextForm, ReaderFindsWhatTheFrameworkFinds)
{
    const QList<QByteArray> tokens =
        QByteArray("[|]|=|\n|\r|\r\n|\"|\\|;|,| |\t|%|%20|%U20AC|%U|@|@ByteArray(|)|@String(|@Invalid()|@@|a|b|0|x|"
                   "\\x4|\\x41f|\\101|\\0|\\n|\\\n|\\\r\n|\xc3\xa9|\xff|General|%General|[a]\n|[b]\n|[General]\n|"
                   "[%gENERAL]\n|k=|\nk2=|\na\\b=|/|\xf0\x9f\x98\x80|\xed\xa0\x80|#")
            .split('|') +
        QByteArrayList{QByteArray(1, '\0')};
    int withEntries = 0;
    for (int round = 0; round < 4000; ++round) {
        const QByteArray content = randomJoin(random, tokens, 40);
        const QString file = path(u"garbage%1.ini"_s.arg(round));
        ASSERT_TRUE(TestSupport::writeFile(file, content));
        const auto comparable = [](QStringList entries) {
            entries.removeIf([](const QString &entry) {
                return entry.startsWith(u'/') || entry.contains("//"_L1) || entry.contains("/="_L1);
            });
            entries.sort();
            return entries;
        };
        const QStringList expected = comparable(frameworkEntries(QSettings(file, QSettings::IniFormat)));
        Reader reader;
        ASSERT_TRUE(reader.open(file));
        ASSERT_EQ(comparable(entriesOf(reader)), expected) << content.toStdString();
        withEntries += expected.isEmpty() ? 0 : 1;
        QFile::remove(file);
    }
    EXPECT_GT(withEntries, 1000);
}

TEST_F(TextForm, ReaderTakesWhatPeopleWrite)
{
    const QStringList expected = {u"A/x=text 1,2"_s, u"A/y=text a b"_s, u"A/z=text new"_s, u"B/1/k=text v"_s,
                                  u"B/1/l=none"_s};
    EXPECT_EQ(entriesOf("\xef\xbb\xbf[B]\r\n1\\k = v ; comment\r\n; comment\r\nno key\r\n1\\l=@Invalid()\r\n[A]\r\n"
                        "z=old\r\n y =  a b \r\nz=new\r\n[C]\r\n[A]\r\nx=1, 2"),
              expected);
    EXPECT_EQ(entriesOf("[General]\nB\\1\\k=v\nplain=1\n[B\\1]\nl=@Invalid()\n[A]\nx=1,2\ny=a b\nz=new\n"), expected);

    const QByteArray garbage = QByteArray(200000, '\xfe') + "=\"" + QByteArray(200000, '[') + QByteArray(200000, '\0');
    EXPECT_TRUE(groupsOf(garbage).isEmpty());
    EXPECT_EQ(groupsOf("[a]\n" + QByteArray(1000000, 'k') + '=' + QByteArray(1000000, ',')), QStringList{u"a"_s});
    Reader reader;
    EXPECT_FALSE(reader.open(folder.path()));
    EXPECT_FALSE(reader.open(u"/dev/zero"_s));
}

TEST_F(TextForm, ProtocolFilterChoosesTables)
{
    // The types of lines 0, 1, ... and the groups of the text.
    const std::pair<QString, QString> cases[] = {
        {u"1"_s, u"MiscSettings Nodes Objects0 SubObjects0 UDSSettings0"_s},
        {u"2"_s, u"J1939Settings MiscSettings PGNs0 SPNs0 UDSSettings0"_s},
        {u"4"_s, u"MiscSettings UDSSettings0"_s},
        {u"12"_s, u"J1939Settings MiscSettings Nodes Objects0 PGNs1 SPNs1 SubObjects0 UDSSettings0 UDSSettings1"_s},
        {u"56"_s, u"J1939Settings MiscSettings Nodes Objects0 Objects1 PGNs0 PGNs1 SPNs0 SPNs1 SubObjects0 SubObjects1 "
                  "UDSSettings0 UDSSettings1"_s},
    };
    for (const auto &[types, groups] : cases) {
        store.createNewDataBase();
        store.setJ1939Setting(u"startaddress"_s, u"1"_s);
        store.setEnergyBusSetting(u"device_cnt"_s, u"1"_s);
        for (quint8 line = 0; line < types.size(); ++line) {
            store.addNode(line, {});
            store.setGeneralSetting(u"line%1type"_s.arg(line), types.at(line));
            store.addIndex(line, 0x1000, {});
            store.addSubIndex(line, 0x1000, 0, {});
            store.addPGN(line, 5, {});
            store.addSPN(line, 5, 0, 1, {});
            store.addCANID(line, 1, {});
            store.addDataElement(line, 1, 0, 1, {});
        }
        EXPECT_EQ(groupsOf(textOfProject(store)).join(u' '), "DescriptionSettings GeneralSettings "_L1 + groups);
    }
}

TEST_F(TextForm, RowsStandAsTheFormTells)
{
    store.setGeneralSetting(u"line0type"_s, u"5"_s);
    store.setGeneralSetting(u"hw_defines"_s, u"#define A \"x\"\n"_s);
    store.addIndex(0, 0x1018, {.name = u"Identity, object"_s, .description = u"d"_s, .metadata = {{u"k"_s, u"v"_s}}});
    store.addSubIndex(0, 0x1018, 10, {.name = u"Vendor"_s, .defaultvalue = u"$NODEID+0x600"_s});
    ASSERT_TRUE(exec(u"update SubObjects0 set metadata = NULL, signalid = NULL, size = NULL, varname = NULL"_s));
    store.addPGN(0, 61184, {.name = u"P"_s, .desc = u"D"_s, .direction = ObjectDataBase::receive});
    store.addPGN(0, 61184, {.name = u"Q"_s, .direction = ObjectDataBase::transmit});
    store.addSPN(0, 61184, ObjectDataBase::transmit, 7, {.name = u"S"_s});

    const QStringList entries = entriesOf(textOfProject(store));
    const auto below = [&](const QString &path) {
        QStringList found;
        for (const QString &entry : entries) {
            if (entry.startsWith(path))
                found.append(entry.sliced(path.size()));
        }
        return found.join(u' ').toStdString();
    };
    const QString blob = QString::fromUtf8(MetadataBlob::serialise({{u"k"_s, u"v"_s}}));
    EXPECT_EQ(below(u"Objects0/"_s),
              u"0x1018/category=text 0 0x1018/datatype=text 5 0x1018/description=text d 0x1018/device_class=text 3 "
              "0x1018/fwsupported=text 0 0x1018/metadata=bytes %1 0x1018/name=text Identity, object "
              "0x1018/objecttype=text 7"_s.arg(blob)
                  .toStdString());
    EXPECT_EQ(
        below(u"SubObjects0/0x1018/10/"_s),
        "accesstype=text ro allowedaccesstypes=text const,ro,rw,wo,rww,rwr category=text 1 currentvalue=text  "
        "datatype=text 5 defaultineds=text 1 defaultvalue=text $NODEID+0x600 description=text  implementation=text 0 "
        "limitineds=text 0 lowlimit=text 0 managedbyqlk=text 0 metadata=bytes 0 name=text Vendor nvstorage=text 0 "
        "pdomapping=text 0 refuseread=text 0 refusewrite=text 0 sharedlines=text 0 size=text 0 uplimit=text 0 "
        "varname=text  writedefaulttoeds=text 1");
    EXPECT_EQ(rows(u"select size, varname from SubObjects0"_s), QStringList{u"0|"_s})
        << "the working copy loses its NULLs";
    const std::string description = u"desc=text %1 direction=text 119 "_s.arg(store.getStringId(u"D"_s)).toStdString();
    EXPECT_NE(below(u"PGNs0/61184/"_s).find(description), std::string::npos);
    EXPECT_NE(below(u"PGNs0/61184_2/"_s).find("direction=text 85"), std::string::npos);
    EXPECT_NE(below(u"SPNs0/61184/7/"_s).find("name=text S pgnnumber=text 61184 pos=text 0"), std::string::npos);
    EXPECT_EQ(below(u"UDSSettings0/34/"_s),
              "active=text 1 authentication=text  sessions=text 1 sid=text 34 userlevels=text ");
    EXPECT_EQ(below(u"GeneralSettings/"_s), "hw_defines=text #define A \"x\"\n line0type=text 5");
    EXPECT_NE(below(u"Nodes/0/"_s).find("outputpath=text C:/ prefix=text _"), std::string::npos);
}

TEST_F(TextForm, ProjectSurvivesTheRoundTrip)
{
    const auto word = [this] {
        static const QList<QString> parts = u"a Z 1 é , ; \" \\ @ %"_s.split(u' ');
        return u'w' + randomJoin(random, parts, 5);
    };
    const auto number = [this](quint32 below) { return static_cast<quint16>(random.bounded(below)); };
    for (int round = 0; round < 12; ++round) {
        store.createNewDataBase();
        for (quint8 line = 0; line < random.bounded(1, 4); ++line) {
            store.addNode(line, {.name = word(), .tpdocnt = number(99), .prefix = word(), .generatedcf = false});
            store.setGeneralSetting(u"line%1type"_s.arg(line), u"5"_s);
            for (int i = 0; i < 20; ++i) {
                const auto index = static_cast<quint16>(random.bounded(1, 0x10000));
                store.addIndex(line, index,
                               {.name = word() + u'\'', .description = word(), .metadata = {{word(), word()}}});
                ObjectDataBase::SUBINDEX_DATA_T sub = {.name = word(), .defaultvalue = word(), .size = number(9)};
                sub.description = word();
                sub.varname = word();
                if (i % 3 == 0)
                    sub.metadata = {{word(), u"x"_s}};
                for (int subs = random.bounded(0, 14); subs > 0; --subs)
                    store.addSubIndex(line, index, static_cast<quint8>(random.bounded(256)), sub);
                const quint8 direction = i % 2 ? ObjectDataBase::transmit : ObjectDataBase::receive;
                store.addPGN(line, number(8), {.name = word(), .priority = 6, .direction = direction, .issafe = true});
                store.addSPN(line, number(8), direction, number(3), {.pos = number(9), .varname = word()});
            }
            store.setUDSServiceSessions(line, 0x31, word());
        }
        store.setGeneralSetting(u"co_node_id"_s, u"1,2"_s);
        store.setJ1939Setting(word(), word() + u'\'');
        store.setCurrentLine(1);
        store.setDescriptionSetting(u"ProductName"_s, word());

        const QByteArray text = textOfProject(store);
        EXPECT_EQ(textOfProject(store), text);
        ObjectDataBase back;
        ASSERT_TRUE(open(back, text));
        static const QRegularExpression kept(u"^(?!MiscSettings|.*/(desc|device_class)=)"_s);
        const QStringList before = entriesOf(text).filter(kept);
        ASSERT_EQ(entriesOf(textOfProject(back)).filter(kept).join(u'\n'), before.join(u'\n'));
        EXPECT_GT(before.size(), 500);
        for (const quint8 line : store.getNodeList())
            EXPECT_EQ(back.getIndexList(line, 0, 0xffff), store.getIndexList(line, 0, 0xffff));
    }
}

TEST_F(TextForm, RowsAreWrittenWithTheOutcomeOfSingleValues)
{
    const QStringList columns = u"name datatype accesstype defaultvalue metadata description size implementation Name "
                                "unknown objectindex category device_class subindex"_s.split(u' ');
    const QStringList values = u"7|  two  words ||%1|a,b;c|0x10|-1|text"_s.split(u'|');
    const QStringList lines = u"0 1 12"_s.split(u' ');
    const QStringList indices = u"0x1000 4096 0x2000 8193 word"_s.split(u' ');
    const QByteArray blob = MetadataBlob::serialise({{u"k"_s, u"v"_s}});
    for (int round = 0; round < 40; ++round) {
        QMap<QString, QVariant> settings = {{u"Nodes/1/name"_s, u"n"_s}, {u"Nodes/12/name"_s, u"n"_s}};
        for (int i = 0; i < 40; ++i) {
            const QString line = lines.at(random.bounded(3));
            const QString index = indices.at(random.bounded(5));
            const QString sub = QString::number(random.bounded(3));
            const QString column = columns.at(random.bounded(static_cast<int>(columns.size())));
            const QVariant value = random.bounded(6) == 0 ? QVariant(blob) : QVariant(values.at(random.bounded(8)));
            const QString path = random.bounded(2) ? u"Objects%1/%2/%3"_s.arg(line, index, column)
                                                   : u"SubObjects%1/%2/%4/%3"_s.arg(line, index, column, sub);
            settings[path] = value;
        }
        const QByteArray text = textOf(settings);
        ObjectDataBase whole;
        ASSERT_TRUE(open(whole, text));

        ObjectDataBase single;
        single.createNewDataBase();
        Reader reader;
        reader.setContent(text);
        reader.forEachKey(u"Nodes"_s, [&](const QString &key, const QVariant &value) {
            single.addNode(static_cast<quint8>(key.section(u'/', 0, 0).toUInt()), {});
            single.setNodeSqlValue(key.section(u'/', 0, 0), u"name"_s, value);
        });
        for (const QString &group : reader.groups()) {
            reader.forEachKey(group, [&](const QString &key, const QVariant &value) {
                const QStringList parts = key.split(u'/');
                if (group.startsWith("Objects"_L1))
                    single.setObjectIndexSqlValue(group, parts.at(0), parts.at(1), value);
                else if (group.startsWith("SubObjects"_L1))
                    single.setSubindexSqlValue(group, parts.at(0), parts.at(1), parts.at(2), value);
            });
        }
        ASSERT_EQ(contentOf(whole), contentOf(single)) << text.toStdString();
    }
}

TEST_F(TextForm, SingleQuotesSurvive)
{
    const QByteArray text = "[GeneralSettings]\nhw_defines=#define C 'x'\nline0type=5\n\n[Nodes]\n0\\prefix=a'b\n\n"
                            "[Objects0]\n0x2000\\name=it's\n\n[PGNs0]\n5\\direction=85\n5\\name=it's\n\n"
                            "[SPNs0]\n5\\7\\direction=85\n5\\7\\varname=c['0']\n\n"
                            "[SubObjects0]\n0x2000\\0\\datatype=9\n0x2000\\0\\defaultvalue=it's\n"
                            "0x2000\\0\\metadata=0\n0x2000\\0\\varname=a['b']\n";
    ObjectDataBase project;
    ASSERT_TRUE(open(project, text));
    EXPECT_EQ(project.getGeneralSetting(u"hw_defines"_s), u"#define C 'x'"_s);
    EXPECT_EQ(rowsOf(project, u"select prefix from Nodes"_s), QStringList{u"a'b"_s});
    EXPECT_EQ(rowsOf(project, u"select direction, varname from SPNs0"_s), QStringList{u"85|c['0']"_s});
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(rowsOf(project, u"select defaultvalue, varname from SubObjects0"_s), QStringList{u"it's|a['b']"_s});
        project.saveDatabaseAsText(path(u"again.ncxt"_s));
        ASSERT_TRUE(project.openTextDatabase(path(u"again.ncxt"_s)));
    }
}

TEST_F(TextForm, SmallProjectsThatAPersonWroteOpen)
{
    TestSupport::writeFile(path(u"a.ncxt"_s),
                           "[GeneralSettings]\nline0type=1\nco_node_id=1,2\n\n[Nodes]\n0\\name=Motor\n"
                           "1\\name = second line\n300\\name=x\n[Objects1]\n0X1000\\name=Device type\n"
                           "[SubObjects1]\n0x1000\\0\\datatype=7\n[Unknown]\nx=1\n");
    ASSERT_TRUE(store.openDataBase(path(u"a.ncxt"_s)));
    EXPECT_EQ(rows(u"select nodeId, name, outputpath from Nodes"_s),
              (QStringList{u"0|Motor|C:/"_s, u"1|second line|C:/"_s}));
    EXPECT_EQ(store.getGeneralSetting(u"co_node_id"_s), u"1,2"_s);
    EXPECT_EQ(store.getIndexName(1, 0x1000), u"Device type"_s);
    EXPECT_EQ(store.getSubIndexDataType(1, 0x1000, 0), 7);
    EXPECT_TRUE(store.saveDatabase(path(u"a.ncxt"_s)) && store.saveDatabase(path(u"b.ncxt"_s)));
    EXPECT_EQ(TestSupport::readFile(path(u"a.ncxt"_s)), TestSupport::readFile(path(u"b.ncxt"_s)));

    ObjectDataBase j1939;
    ASSERT_TRUE(open(
        j1939, "[PGNs1]\n5\\name=n\n5\\direction=85\n5_2\\direction=119\n[SPNs1]\n5\\7\\varname=v\n5\\7\\nonsense=1\n"
               "[UDSSettings1]\n49\\active=1\n"));
    EXPECT_EQ(j1939.getPGNList(1, 0), (QList<quint32>{5, 5})) << "a line that only its tables tell of";
    EXPECT_EQ(rowsOf(j1939, u"select pgnnumber, spnnumber, varname from SPNs1"_s), QStringList{u"5|7|v"_s});
    EXPECT_TRUE(j1939.getUDSServiceActive(1, 49));

    EXPECT_FALSE(open(store, "no settings file at all\n\x01\xff\0"));
    EXPECT_TRUE(store.openDataBase(path(u"missing.ncxt"_s)));
    EXPECT_EQ(store.getNodeList(), QList<quint8>{0});
    DatabaseTextConverter converter;
    EXPECT_FALSE(converter.convertSqlToText() || converter.convertTextToSql());
}

TEST_F(TextForm, FailedWriteLeavesTheFileBeforeIt)
{
    const QString file = path(u"kept.ncxt"_s);
    const QByteArray before = "[GeneralSettings]\nline0type=1\n";
    ASSERT_TRUE(TestSupport::writeFile(file, before));
    store.setGeneralSetting(u"user_defines"_s, QString(100000, u'x'));
    DatabaseTextConverter converter;
    converter.setDatabase(store.connection());
    converter.setOutputFile(file);
    rlimit limit{};
    getrlimit(RLIMIT_FSIZE, &limit);
    const rlimit small{10000, limit.rlim_max};
    auto *const handler = std::signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &small);
    const bool reported = converter.convertSqlToText();
    setrlimit(RLIMIT_FSIZE, &limit);
    std::signal(SIGXFSZ, handler);

    EXPECT_TRUE(reported && converter.writeFailed());
    EXPECT_EQ(TestSupport::readFile(file), before);
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files), QStringList{u"kept.ncxt"_s});
    EXPECT_TRUE(converter.convertSqlToText() && !converter.writeFailed());
    EXPECT_GT(QFile(file).size(), 100000);
}

} // namespace
