#include "generate/run/importdispatch.h"
#include "import/codbimporter.h"
#include "import/doctxtimporter.h"
#include "import/importproject.h"
#include "import/ncxpimporter.h"
#include "import/projectmerge.h"
#include "support/datacases.h"
#include "support/projectscript.h"
#include "support/recordfields.h"
#include "support/testhome.h"

#include <gtest/gtest.h>

#include <QFileInfo>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;
using namespace TestSupport;
using TestSupport::RecordFields::described;

namespace {

using Store = std::shared_ptr<ObjectDataBase>;

/// All objects, messages and signals of all lines.
QStringList contents(ObjectDataBase &store)
{
    QStringList rows;
    for (const quint8 line : store.getNodeList()) {
        rows.append(u"line %1"_s.arg(line));
        rows += ImportTest::dump(store, line).split(u'\n').filter(QRegularExpression(u"^[0-9a-f]{4}"_s));
        for (const auto &[index, object] : store.getAllIndices(line)) {
            if (!object.metadata.isEmpty())
                rows.append(u"attributes of "_s + described(object));
        }
        for (const auto &pgn : store.getAllPGNs(line))
            rows.append(u"PGN "_s + described(pgn));
        for (const auto &spn : store.getAllSPNs(line))
            rows.append(u"SPN "_s + described(spn));
        for (const auto &id : store.getAllCANIDs(line))
            rows.append(u"CAN-ID "_s + described(id));
        for (const auto &element : store.getAllDataElements(line))
            rows.append(u"element "_s + described(element));
    }
    return rows;
}

class Merge : public testing::Test
{
protected:
    QString path(const QString &name) const { return folder_.filePath(name); }
    /// A project made from commands, saved.
    QString saved(const QStringList &commands, const QString &name = u"other.ncxp"_s) const
    {
        ProjectScript project;
        project.run(commands);
        EXPECT_TRUE(project.store()->saveDatabase(path(name)));
        return path(name);
    }
    static Store made(const QStringList &commands)
    {
        ProjectScript project;
        project.run(commands);
        return project.store();
    }

    QTemporaryDir folder_;
};

} // namespace

class MergeCases : public Merge, public testing::WithParamInterface<TextCase>
{
};

// The head of the file tells how its cases are written.
TEST_P(MergeCases, HoldWhatIsExpected)
{
    static const QRegularExpression command(u"^(?!\\| |$)"_s);
    const QStringList lines = GetParam().lines.filter(command);
    const qsizetype into = lines.indexOf("into"_L1);
    const Store target = made(lines.sliced(into + 1));
    EXPECT_TRUE(ImportDispatch::importFile(target, saved(lines.mid(1, into - 1))));
    expectCase(GetParam(), lines + QStringList{u"| "_s + contents(*target).join("\n| "_L1), u""_s});
}

INSTANTIATE_TEST_SUITE_P(Import, MergeCases, testing::ValuesIn(textCases(u"merge"_s, {u"== "_s})), caseName);

TEST_F(Merge, RefusesWhatIsNoProject)
{
    const QStringList commands{u"line 0 = 5"_s, u"object 0x2000 name=Kept"_s};
    const Store target = made(commands);
    const QStringList before = contents(*target);
    ASSERT_TRUE(TestSupport::writeFile(path(u"bad.ncxp"_s), "no database"));
    ASSERT_TRUE(TestSupport::writeFile(path(u"empty.ncxp"_s), {}));
    ASSERT_TRUE(TestSupport::writeFile(path(u"notes.txt"_s), "PGN:"));
    saved(commands, u"text.ncxt"_s);
    for (const QString &name : {u"bad.ncxp"_s, u"empty.ncxp"_s, u"missing.ncxp"_s, u"notes.txt"_s, u"text.ncxt"_s})
        EXPECT_FALSE(ImportDispatch::importFile(target, path(name))) << qPrintable(name);
    EXPECT_EQ(contents(*target), before);
}

TEST_F(Merge, OfOneLineIntoAnother)
{
    const QString other = saved({u"line 3 = 5"_s, u"object 0x1fff"_s, u"object 0x2000"_s, u"object 0x3000"_s,
                                 u"object 0x3001"_s, u"pgn 0x2fff rx"_s, u"spn 0x2fff rx 1"_s, u"pgn 0x3001 tx"_s});
    const Store target = made({u"line 0 = 1"_s, u"line 1 = 5"_s});
    for (const QString &file : {other, path(u"notes.ncxp"_s)}) {
        TestSupport::writeFile(path(u"notes.ncxp"_s), "no project");
        NCXPImporter importer;
        importer.setIndexRange(0x2000, 0x3000);
        importer.setSourceLine(3);
        const QString report = ImportTest::run(importer, target, file, 1);
        EXPECT_EQ(report.section(u';', 0, 0), file == other
                                                  ? u"Taken: 2 objects, 0 sub-objects, 1 messages, 1 signals"_s
                                                  : u"Taken: 0 objects, 0 sub-objects, 0 messages, 0 signals"_s);
        EXPECT_EQ(target->getIndexList(1, 0, 0xffff), (QList<quint16>{0x2000, 0x3000}));
        EXPECT_EQ(target->getPGNList(1, 0), QList<quint32>{0x2fff});
        EXPECT_EQ(target->getSPNList(1, 0x2fff, ObjectDataBase::receive), QList<quint32>{1});
    }
}

// What of a file did not get into the project is told by its name.
TEST_F(Merge, TellsWhatTheStoreRefuses)
{
    const QString other = saved({u"line 0 = 5"_s, u"pgn 8 tx"_s, u"spn 8 tx 1"_s, u"canid 9 tx"_s, u"signal 9 tx 1"_s});
    ObjectDataBase source;
    ASSERT_TRUE(source.openDataBase(other));
    const QString profile = path(u"profile.codb"_s);
    ASSERT_TRUE(TestSupport::writeFile(profile, "2100::Variable:mandatory::VAR:m:REAL32:m:rw\n"));
    const std::pair<QString, QString> refusals[] = {
        {u"update on PGNs0"_s, u"PGN 8"_s},
        {u"insert on SPNs0"_s, u"SPN 1"_s},
        {u"delete on SPNs0"_s, u"removal of SPN 2"_s},
        {u"update on CANIDs0"_s, u"CAN-ID 9"_s},
        {u"insert on DataElements0"_s, u"data element 1"_s},
        {u"delete on DataElements0"_s, u"removal of data element 2"_s},
        {u"insert on Objects0"_s, u"object 0x2100"_s},
        {u"insert on SubObjects0"_s, u"sub-objects"_s},
    };
    for (const auto &[event, name] : refusals) {
        const Store target =
            made({u"line 0 = 5"_s, u"pgn 8 tx"_s, u"spn 8 tx 2"_s, u"canid 9 tx"_s, u"signal 9 tx 2"_s});
        ASSERT_TRUE(target->statements().execute(
            {nullptr, u"create trigger t before %1 begin select raise(abort, 'refused'); end"_s.arg(event),
             Statement::Effect::Schema}));
        ImportReport merged;
        ProjectMerge::copyPGNs(*target, 0, source, 0, 0, 0xffff, merged);
        ProjectMerge::copyCANIDs(*target, 0, source, 0, 0, 0xffff, merged);
        CODBImporter codb;
        const QString taken = ImportTest::run(codb, target, profile);
        const QString report = event.contains("Objects"_L1) ? taken : merged.text() + u'\n';
        EXPECT_EQ(report.section(u'\n', 1), name + u" could not be written\n"_s);
    }
}

class Documentation : public Merge, public testing::WithParamInterface<FileCase>
{
};

// Each text of the folder has beside it what it brings to a J1939 line.
TEST_P(Documentation, BringsWhatIsExpected)
{
    const QString expected = u"import-doc/%1.txt"_s.arg(GetParam().baseName().chopped(4));
    const Store store = made({u"line 0 = 2"_s});
    DOCTXTImporter importer;
    importer.setIndexRange(0, 0x3ffff);
    const QString report = ImportTest::run(importer, store, GetParam().path);
    TestSupport::expectInFile(contents(*store).join(u'\n') + u'\n' + report, expected);
    // Nothing is doubled by a second import, whatever the line ends, nor is noise at the end.
    const QByteArray again = TestSupport::readFile(GetParam().path).replace('\n', "\r\n") + QByteArray(5000, '\0');
    ASSERT_TRUE(TestSupport::writeFile(path(u"my_doc.txt"_s), again));
    ASSERT_TRUE(ImportDispatch::importFile(store, path(u"my_doc.txt"_s)));
    TestSupport::expectInFile(contents(*store).join(u'\n') + u'\n' + report, expected);
}

INSTANTIATE_TEST_SUITE_P(Import, Documentation, testing::ValuesIn(fileCases(u"import-doc"_s, {u"*_doc.txt"_s})),
                         caseName);

TEST_F(Merge, OfDocumentationIsShownInTheGuide)
{
    const QString guide = QString::fromUtf8(TestSupport::readFile(QStringLiteral(NCX_SOURCE_DIR "/docs/import.md")));
    const QByteArray shown =
        TestSupport::readFile(QStringLiteral(NCX_SOURCE_DIR "/tests/data/import-doc/messages_doc.txt"));
    for (const QString &line : QString::fromUtf8(shown).split(u'\n', Qt::SkipEmptyParts))
        EXPECT_TRUE(guide.contains(u"\n    "_s + line + u'\n')) << qPrintable(line);
}
