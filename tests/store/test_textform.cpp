// The text form of a project: its INI format against the framework's own, and projects out and in.

#include "store/storetest.h"

#include "store/file/projectfile.h"
#include "store/records/metadatablob.h"
#include "store/tables/projecttables.h"
#include "store/text/databasetextconverter.h"
#include "support/datacases.h"
#include "support/smalldisk.h"
#include "texttools/settingstext.h"

#include <QBuffer>
#include <QRandomGenerator>
#include <QSettings>

using namespace Qt::StringLiterals;
using namespace TestSupport;
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
                   "[%gENERAL]\n|k=|\nk2=|\na\\b=|/|\xf0\x9f\x98\x80|\xed\xa0\x80|#|a=\"b\"\n")
            .split('|') +
        QByteArrayList{QByteArray(1, '\0')};
    int withEntries = 0;
    for (int round = 0; round < 4000; ++round) {
        const QByteArray content = randomJoin(random, tokens, 40);
        const QString file = path(u"garbage%1.ini"_s.arg(round));
        ASSERT_TRUE(TestSupport::writeFile(file, content));
        // The framework drops the blanks around the commas of a list.
        static const QRegularExpression comma(u"[ \\t]*,[ \\t]*"_s);
        const auto comparable = [](QStringList entries) {
            entries.removeIf([](const QString &entry) {
                return entry.startsWith(u'/') || entry.contains("//"_L1) || entry.contains("/="_L1);
            });
            entries.replaceInStrings(comma, u","_s);
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

class TextCases : public TextForm, public testing::WithParamInterface<FileCase>
{
};

// Each text of the folder has beside it the form in which the project is saved, and that opens to the same.
TEST_P(TextCases, OpenAndAreSavedAsExpected)
{
    ASSERT_TRUE(store.openTextDatabase(GetParam().path));
    for (int round = 0; round < 2; ++round) {
        const QString file = path(u"saved.ncxt"_s);
        ASSERT_TRUE(store.saveDatabaseAsText(file) && store.saveDatabaseAsText(path(u"again.ncxt"_s)));
        EXPECT_EQ(TestSupport::readFile(path(u"again.ncxt"_s)), TestSupport::readFile(file));
        // The hash and what comes of it change from save to save.
        const QStringList lines = QString::fromUtf8(TestSupport::readFile(file)).split(u'\n');
        TestSupport::expectInFile(lines.filter(QRegularExpression(u"^(?!FileHash|TamperLog)"_s)).join(u'\n'),
                                  u"text/%1.txt"_s.arg(GetParam().baseName()));
        ASSERT_TRUE(store.openTextDatabase(file));
    }
}

INSTANTIATE_TEST_SUITE_P(Store, TextCases, testing::ValuesIn(fileCases(u"text"_s, {u"*.ncxt"_s})), caseName);

TEST_F(TextForm, ReaderTakesGarbage)
{
    const QByteArray garbage = QByteArray(200000, '\xfe') + "=\"" + QByteArray(200000, '[') + QByteArray(200000, '\0');
    EXPECT_TRUE(groupsOf(garbage).isEmpty());
    EXPECT_EQ(groupsOf("[a]\n" + QByteArray(1000000, 'k') + '=' + QByteArray(1000000, ',')), QStringList{u"a"_s});
    Reader reader;
    EXPECT_FALSE(reader.open(folder.path()));
    EXPECT_FALSE(reader.open(u"/dev/zero"_s));
}

TEST_F(TextForm, ReaderTellsGroupsInOrderAndTheLastOfAKey)
{
    const QByteArray text = "[b]\nz=1\nk\\x=1\n[C]\n[d]\nx=1\n[a]\nx=1\n[b]\nk\\x=2\na=1\n[\xc3\xa4]\nx=1\n";
    EXPECT_EQ(groupsOf(text), (QStringList{u"a"_s, u"b"_s, u"d"_s, u"ä"_s}));
    EXPECT_EQ(entriesOf(text).filter(u"b/"_s), (QStringList{u"b/a=text 1"_s, u"b/k/x=text 2"_s, u"b/z=text 1"_s}));
}

// A file as a save writes it and the same with its keys in another order and spelling are read in different ways.
TEST_F(TextForm, RowsAreTheSameInAnyOrderAndSpellingOfTheirKeys)
{
    const auto rowsOfText = [](const QByteArray &text) {
        Reader reader;
        reader.setContent(text);
        QByteArrayList rows;
        reader.forEachRow(u"t"_s, 1, [&rows](const SettingsText::Row &row) {
            rows.append('<' + row.path.toByteArray());
            for (std::size_t i = 0; i < row.columns.size(); ++i)
                rows.append(row.columns[i].toByteArray() + '=' + row.values[i].toByteArray());
        });
        return rows.join(' ');
    };
    const QByteArray expected = "<1 a=x b=\"y;\" <2 a=w %E4=z";
    EXPECT_EQ(rowsOfText("[t]\n1\\a=x\n1\\b=\"y;\"\n2\\%E4=z\n2\\a=w\ndeep\\er\\a=1\nflat=1\n"), expected);
    EXPECT_EQ(rowsOfText("[t]\n2\\a=v\n1\\b=\"y;\"\nflat=1\n%31\\a=x\n2\\%e4=z\n[u]\na=1\n[t]\n2\\a=w\n"), expected);
    EXPECT_EQ(rowsOfText("[t]\n1\\a=x\n1\\b=y\n1\\c\\d=1\n1\\e=z\n"), "<1 a=x b=y e=z");
    EXPECT_EQ(rowsOfText("[t]\n1\\a=x\n1\\b=y\n;1\\c=z\n[u]\na=1\n"), "<1 a=x b=y");
    EXPECT_EQ(rowsOfText("[t]\n1\\a=x\n1\\b=y\n1\\=z\n"), "<1 a=x b=y");
}

TEST_F(TextForm, WriterRemembersAFailure)
{
    class Device : public QBuffer
    {
    public:
        bool isFull = true;

    protected:
        qint64 writeData(const char *data, qint64 size) override
        {
            return isFull ? -1 : QBuffer::writeData(data, size);
        }
    };
    Device device;
    device.open(QIODevice::WriteOnly);
    Writer writer(device);
    writer.setSection(u"empty"_s);
    writer.setSection(u"a"_s);
    writer.writeText("k", u"v"_s);
    EXPECT_FALSE(writer.flush());
    device.isFull = false;
    writer.writeText("l", u"w"_s);
    EXPECT_FALSE(writer.flush());
    EXPECT_EQ(device.data(), "l=w\n");
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
        // Rows that follow each other have the same columns mostly, and often the same values.
        const int used = round % 2 == 0 ? static_cast<int>(columns.size()) : 2;
        const int first = random.bounded(static_cast<int>(columns.size()) - used + 1);
        QMap<QString, QVariant> settings = {{u"Nodes/1/name"_s, u"n"_s}, {u"Nodes/12/name"_s, u"n"_s}};
        for (int i = 0; i < 40; ++i) {
            const QString line = lines.at(random.bounded(3));
            const QString index = indices.at(random.bounded(5));
            const QString sub = QString::number(random.bounded(3));
            const QString column = columns.at(first + random.bounded(used));
            const QVariant value = random.bounded(6) == 0 ? QVariant(blob) : QVariant(values.at(random.bounded(8)));
            const QString path = random.bounded(2) ? u"Objects%1/%2/%3"_s.arg(line, index, column)
                                                   : u"SubObjects%1/%2/%4/%3"_s.arg(line, index, column, sub);
            settings[path] = value;
        }
        const QByteArray text = textOf(settings);
        ObjectDataBase whole;
        ASSERT_TRUE(open(whole, text));

        ObjectDataBase single;
        EXPECT_TRUE(single.createNewDataBase());
        Reader reader;
        reader.setContent(text);
        reader.forEachKey(u"Nodes"_s, [&](const QString &key, const QVariant &value) {
            EXPECT_TRUE(single.addNode(static_cast<quint8>(key.section(u'/', 0, 0).toUInt()), {}));
            std::ignore = single.setNodeSqlValue(key.section(u'/', 0, 0), u"name"_s, value);
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

TEST_F(TextForm, WhatIsNoProjectDoesNotOpen)
{
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
    ProjectTables tables;
    ProjectFile project(tables, [] {});
    ASSERT_TRUE(project.create() && tables.setGeneralSetting(u"user_defines"_s, QString(100000, u'x'), Quotes::Kept));
    DatabaseTextConverter converter;
    converter.setStore(&tables);
    converter.setOutputFile(file);
    {
        const SmallDisk disk(10000);
        EXPECT_TRUE(converter.convertSqlToText() && converter.writeFailed());
    }
    EXPECT_EQ(TestSupport::readFile(file), before);
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files), QStringList{u"kept.ncxt"_s});
    EXPECT_TRUE(converter.convertSqlToText() && !converter.writeFailed());
    EXPECT_GT(QFile(file).size(), 100000);

    // What fits into the memory of a file is refused when that is closed.
    ASSERT_TRUE(tables.setGeneralSetting(u"user_defines"_s, {}, Quotes::Kept));
    const SmallDisk disk(100);
    EXPECT_TRUE(converter.convertSqlToText() && converter.writeFailed());
}

} // namespace
