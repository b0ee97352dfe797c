#include "import/edsimporter.h"
#include "import/importproject.h"
#include "store/objectdatabase.h"
#include "support/datacases.h"
#include "support/testhome.h"

#include <gtest/gtest.h>

#include <QFileInfo>
#include <QStringEncoder>
#include <QTemporaryDir>
#include <QThread>

#include <atomic>

using namespace Qt::StringLiterals;
using namespace TestSupport;
using ImportTest::dump;
using ImportTest::emptyProject;
using ImportTest::importEds;
using ImportTest::importText;

// Each description in the folder has beside it the dump of the project that it makes.
class EdsCases : public testing::TestWithParam<FileCase>
{
};

TEST_P(EdsCases, MakeTheirProject)
{
    const auto store = emptyProject();
    EDSImporter importer;
    const QString report = ImportTest::run(importer, store, GetParam().path);
    TestSupport::expectInFile(dump(*store) + report, u"import/%1.txt"_s.arg(GetParam().baseName()));
}

INSTANTIATE_TEST_SUITE_P(Import, EdsCases, testing::ValuesIn(fileCases(u"import"_s, {u"*.eds"_s, u"*.dcf"_s})),
                         caseName);

// One importer for several files: each import tells of its own file alone, and leaves the gate open behind it.
TEST(EdsImport, OneImporterTakesOneFileAfterTheOther)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"device.eds"_s);
    ASSERT_TRUE(TestSupport::writeFile(path, "[2000]\nParameterName=a\nDataType=5\n[0500]\nParameterName=b\n"));
    const auto store = emptyProject();
    EDSImporter importer;
    const QString first = ImportTest::run(importer, store, path);
    EXPECT_TRUE(first.contains("0x0500"_L1)) << first.toStdString();
    EXPECT_EQ(ImportTest::run(importer, store, path), first);
    EXPECT_TRUE(store->indexExists(0, 0x2000));

    // A store that a job has blocked is taken over by an import, and is free for everybody afterwards.
    store->setBlocked(true);
    ImportTest::run(importer, store, path);
    EXPECT_FALSE(store->isBlocked());
    std::atomic<bool> isRead = false;
    const std::unique_ptr<QThread> reader(QThread::create([&] { isRead = store->indexExists(0, 0x2000); }));
    reader->start();
    EXPECT_TRUE(reader->wait(120'000) && isRead);
}

// The same text in every encoding and with every line ending makes the same project.
TEST(EdsImport, EncodingsAndLineEndings)
{
    const QString text = u"[DeviceInfo]\nProductName=Größe\n[2000]\nParameterName=Höhe °C\nDataType=9\n"
                         "AccessType=rw\n;;über;;\nDefaultValue=µ, ß\n"_s;
    const auto reference = emptyProject();
    ASSERT_TRUE(importText(reference, text.toUtf8()));
    const QString expected = dump(*reference);
    ASSERT_TRUE(expected.contains("Höhe °C"_L1) || expected.contains(u"Höhe °C"_s));

    QStringEncoder littleEndian(QStringConverter::Utf16LE, QStringConverter::Flag::WriteBom);
    QStringEncoder bigEndian(QStringConverter::Utf16BE, QStringConverter::Flag::WriteBom);
    QStringEncoder unmarked(QStringConverter::Utf16LE);
    QStringEncoder unmarkedBigEndian(QStringConverter::Utf16BE);
    for (const QString &ending : {u"\n"_s, u"\r\n"_s, u"\r"_s, u"\n\n"_s}) {
        const QString variant = QString(text).replace(u'\n', ending);
        const QByteArrayList forms = {variant.toUtf8(),          "\xef\xbb\xbf" + variant.toUtf8(),
                                      variant.toLatin1(),        littleEndian(variant),
                                      bigEndian(variant),        unmarked(variant),
                                      unmarkedBigEndian(variant)};
        for (const QByteArray &form : forms) {
            const auto store = emptyProject();
            ASSERT_TRUE(importText(store, form));
            EXPECT_EQ(dump(*store).toStdString(), expected.toStdString()) << form.left(8).toHex(' ').toStdString();
            littleEndian.resetState();
            bigEndian.resetState();
        }
    }

    const auto store = emptyProject();
    ASSERT_TRUE(importText(store, "[2000]\nParameterName=5 \x80 \x96 \x9c\nDataType=7\n"));
    EXPECT_EQ(store->getIndexName(0, 0x2000), u"5 € – œ"_s);
}

TEST(EdsImport, AddsToTheLineAndOverwrites)
{
    const auto store = emptyProject();
    ASSERT_TRUE(store->addNode(1, {}));
    store->setCurrentLine(0);
    ASSERT_TRUE(importText(store,
                           "[DeviceInfo]\nVendorName=First\nNrOfTXPDO=1\n[2000]\nParameterName=Old\n"
                           "ObjectType=9\n[2000sub0]\nDataType=5\n[2000sub1]\nDataType=7\nDefaultValue=1\n",
                           1));
    const auto before = store->getIndexList(1, 0, 0xffff);
    EXPECT_EQ(store->getDescriptionSetting(u"VendorName"_s), u"First"_s) << "an import selects its line";
    store->setCurrentLine(0);
    EXPECT_EQ(store->getDescriptionSetting(u"VendorName"_s), QString());
    ASSERT_TRUE(importText(store,
                           "[DeviceInfo]\nNrOfTXPDO=1\n[2000]\nParameterName=New\nObjectType=9\n[2000sub1]\n"
                           "ParameterName=Renamed\nDataType=6\n[2000sub2]\nDataType=5\n[3000sub1]\nDataType=5\n",
                           1));

    EXPECT_TRUE(store->getIndexList(0, 0, 0xffff).isEmpty());
    EXPECT_EQ(store->getIndexList(1, 0, 0xffff), before) << "the PDO is made once";
    EXPECT_EQ(store->getIndexName(1, 0x2000), u"New"_s);
    EXPECT_EQ(store->getSubIndexList(1, 0x2000), (QList<quint8>{0, 1, 2}));
    EXPECT_EQ(store->getSubIndexDataType(1, 0x2000, 1), 6);
    EXPECT_EQ(store->getSubIndexDefaultValue(1, 0x2000, 1), QString());
    EXPECT_TRUE(store->getSubIndexList(1, 0x3000).isEmpty()) << "a sub-object without an object";

    // A sub-object alone joins an object that the line has.
    ASSERT_TRUE(importText(store, "[2000sub3]\nDataType=5\n", 1));
    EXPECT_EQ(store->getSubIndexList(1, 0x2000), (QList<quint8>{0, 1, 2, 3}));
    store->setCurrentLine(1);
    EXPECT_EQ(store->getDescriptionSetting(u"VendorName"_s), QString()) << "what a file does not say it empties";
}

TEST(EdsImport, AnnouncedPdosAreCappedToThoseThatExist)
{
    const auto store = emptyProject();
    ASSERT_TRUE(importText(store, "[DeviceInfo]\nNrOfRXPDO=4294967295\nNrOfTXPDO=-1\n[1450]\nParameterName=Own\n"));
    EXPECT_EQ(store->getIndexList(0, 0x1400, 0x15ff).size(), 512);
    EXPECT_EQ(store->getIndexList(0, 0x1600, 0x17ff).size(), 512);
    EXPECT_TRUE(store->getIndexList(0, 0x1800, 0xbfff).isEmpty());
    EXPECT_EQ(store->getIndexName(0, 0x1450), u"Own"_s);
    EXPECT_EQ(store->getIndexName(0, 0x15ff), u"Receive PDO parameter 512"_s);
}

TEST(EdsImport, RefusesWhatIsNoFileAndSurvivesWhatIsNoDescription)
{
    const QTemporaryDir folder;
    EDSImporter importer;
    EXPECT_FALSE(importer.setDatabase(nullptr));
    EXPECT_FALSE(importer.setFile(folder.path()));
    EXPECT_FALSE(importer.setFile(folder.filePath(u"missing.eds"_s)));

    QByteArray binary;
    for (int i = 0; i < 100'000; ++i)
        binary += static_cast<char>(i * 7919 >> 3);
    for (const QByteArray &content : {QByteArray(), binary, QByteArray(3'000'000, '['), QByteArray(3'000'000, '\0'),
                                      QByteArray("[2000]\nParameterName=") + QByteArray(3'000'000, 'x')}) {
        const auto store = emptyProject();
        ASSERT_TRUE(importText(store, content));
        EXPECT_LE(store->getIndexList(0, 0, 0xffff).size(), 1);
        EXPECT_TRUE(store->addIndex(0, 0x3000, {})) << "the store is open again";
    }
}

TEST(EdsImport, KeepsOtherThreadsFromTheStoreUntilItsEnd)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"device.eds"_s);
    ASSERT_TRUE(TestSupport::writeFile(path, "[2000]\nParameterName=Variable\nDataType=7\n"));
    const auto store = emptyProject();
    EDSImporter importer;
    bool isFound = false;
    bool isEarly = true;
    const std::unique_ptr<QThread> reader(QThread::create([&] { isFound = store->indexExists(0, 0x2000); }));
    const auto start = [&](int percentage) {
        if (percentage != 40) // in the middle of it
            return;
        reader->start();
        isEarly = reader->wait(60);
    };
    QObject::connect(&importer, &BaseDataImporter::progress, &importer, start, Qt::DirectConnection);
    ImportTest::run(importer, store, path);
    EXPECT_TRUE(reader->wait(120'000));
    EXPECT_TRUE(!isEarly && isFound);
}

TEST(EdsImport, RunsOnItsOwnThreadOneAtATime)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"device.eds"_s);
    ASSERT_TRUE(TestSupport::writeFile(path, "[2000]\nParameterName=Variable\nDataType=7\n"));
    const auto store = emptyProject();
    store->setBlocked(true);
    EDSImporter importer;
    importer.waitForEnd(); // nothing to wait for
    importer.setDatabase(store);
    ASSERT_TRUE(importer.setFile(path));
    QStringList steps;
    const auto note = [&](int percentage) {
        const bool isOwnThread = QThread::currentThread() != store->thread();
        const bool startsAgain = percentage < 100 && importer.startImport();
        steps.append(
            u"%1%2%3"_s.arg(percentage).arg(isOwnThread ? u""_s : u" here"_s, startsAgain ? u" again"_s : u""_s));
    };
    QObject::connect(&importer, &BaseDataImporter::progress, &importer, note, Qt::DirectConnection);
    for (int run = 0; run < 2; ++run) {
        steps.clear();
        ASSERT_TRUE(importer.startImport());
        importer.waitForEnd();
        EXPECT_EQ(steps, (QStringList{u"40"_s, u"80"_s, u"100"_s}));
        EXPECT_FALSE(store->isBlocked());
        EXPECT_TRUE(store->removeIndex(0, 0x2000));
    }
}
