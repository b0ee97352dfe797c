#include "generate/importdispatch.h"
#include "import/importproject.h"
#include "import/ncxpimporter.h"
#include "support/projectbuilder.h"
#include "support/testhome.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

using namespace Qt::StringLiterals;
using TestSupport::ProjectBuilder;

namespace {

using Store = std::shared_ptr<ObjectDataBase>;
constexpr quint8 tx = ObjectDataBase::transmit;
constexpr quint8 rx = ObjectDataBase::receive;
constexpr quint32 extended = 0x80000000;

QString textOf(quint32 number, const StoreRecords::SPN &signal)
{
    return u"  %1 '%2' type=%3 pos=%4 bits=%5 at=%6 implementation=%7 variable='%8' default='%9'\n"_s.arg(number)
        .arg(signal.name)
        .arg(signal.datatype)
        .arg(signal.pos)
        .arg(signal.bitsize)
        .arg(signal.bitposition)
        .arg(signal.implementation)
        .arg(signal.varname, signal.defaultvalue);
}

/// The messages of a line, each followed by its signals.
QString messages(ObjectDataBase &store, quint8 line = 0)
{
    QString text;
    store.cacheSPNs(line);
    for (const quint8 direction : {tx, rx}) {
        const QString word = direction == tx ? u"TX"_s : u"RX"_s;
        for (const quint32 number : store.getPGNList(line, direction)) {
            StoreRecords::PGN pgn;
            store.getPGN(line, number, direction, pgn);
            text += u"PGN %1 %2 '%3' '%4' cycle=%5 inhibit=%6 priority=%7 count=%8\n"_s.arg(number)
                        .arg(word, pgn.name, pgn.desc)
                        .arg(pgn.cycletime_ms)
                        .arg(pgn.inhibittime_ms)
                        .arg(pgn.priority)
                        .arg(pgn.mappingcount);
            for (const quint32 spn : store.getSPNList(line, number, direction)) {
                StoreRecords::SPN data;
                store.getSPN(line, number, direction, spn, data);
                text += textOf(spn, data);
            }
        }
        for (const quint32 id : store.getCANIDList(line, direction)) {
            text += u"CAN-ID 0x%1 %2 '%3'\n"_s.arg(id, 0, 16).arg(word, store.getCANIDName(line, id, direction));
            for (const quint32 number : store.getDataElementList(line, id, direction)) {
                StoreRecords::DataElement data;
                store.getDataElement(line, id, direction, number, data);
                text += textOf(number, data);
            }
        }
    }
    store.clearSPNCache();
    return text;
}

QString contents(ObjectDataBase &store, quint8 line = 0)
{
    return ImportTest::dump(store, line) + messages(store, line);
}

/// A project with a line 0 of the type that has objects, PGNs and CAN-IDs alike, as its line may have had other types.
ProjectBuilder full(int type)
{
    ProjectBuilder project;
    project.line(0, type)
        .object(0x0fff, u"Stack's own"_s)
        .sub(0, u"sub"_s)
        .object(0x2000, u"It's"_s, {{u"key"_s, u"value"_s}})
        .sub(0, u"text"_s, [](StoreRecords::SubIndexData &sub) { sub.datatype = 9, sub.defaultvalue = u"it's"_s; })
        .sub(2, u"bytes"_s, [](StoreRecords::SubIndexData &sub) {
            sub.datatype = 10, sub.defaultvalue = u"it''s"_s, sub.varname = u"a[''x'']"_s;
        });
    project.object(0xffff, u"Last"_s).sub(0, u"sub"_s);
    project.pgn(61184, tx, u"A"_s).spn(1, u"one"_s).spn(2, u"two"_s).pgn(61184, rx, u"B"_s).spn(2, u"two's"_s);
    project.pgn(131071, tx, u"Last"_s).pgn(131072, tx, u"Beyond"_s);
    project.canId(0x123, tx, u"C"_s).element(1, u"one"_s).element(7, u"seven"_s).canId(0x123, rx, u"D"_s);
    project.canId(extended | 0x1fffffff, rx, u"Extended"_s).element(3, u"three"_s);
    return project;
}

QByteArray replaced(QByteArray text, const char *before, const char *after)
{
    return text.replace(before, after);
}

class Merge : public testing::Test
{
protected:
    QString path(const QString &name) const { return folder_.filePath(name); }
    QString saved(ProjectBuilder project, const QString &name = u"other.ncxp"_s) const
    {
        EXPECT_TRUE(project.save(path(name)));
        return path(name);
    }
    bool importText(const Store &store, const QByteArray &text) const
    {
        return TestSupport::writeFile(path(u"my_doc.txt"_s), text) &&
               ImportDispatch::importFile(store, path(u"my_doc.txt"_s));
    }

    QTemporaryDir folder_;
};

using Documentation = Merge;

} // namespace

TEST_F(Merge, EachTypeOfLineTakesWhatItsProtocolsKnow)
{
    for (const int sourceType : {1, 2, 4, 5, 6, 7}) {
        const QString other = saved(full(sourceType), u"other%1.ncxp"_s.arg(sourceType));
        for (const int type : {1, 2, 3, 4, 5, 6, 7}) {
            SCOPED_TRACE(testing::Message() << sourceType << " into " << type);
            const Store store = ProjectBuilder().line(0, type).store();
            ASSERT_TRUE(ImportDispatch::importFile(store, other));
            const bool objects = type == 1 || type == 5 || type == 6;
            const bool pgns = type == 2 || type == 5 || type == 7;
            const bool canIds = type == 4 || type == 6 || type == 7;
            EXPECT_EQ(store->getIndexList(0, 0, 0xffff), objects ? (QList<quint16>{0x2000, 0xffff}) : QList<quint16>());
            EXPECT_EQ(store->getPGNList(0, 0), pgns ? (QList<quint32>{61184, 61184, 131071}) : QList<quint32>());
            EXPECT_EQ(store->getCANIDList(0, 0),
                      canIds ? (QList<quint32>{0x123, 0x123, extended | 0x1fffffff}) : QList<quint32>());
        }
    }
}

TEST_F(Merge, TakesMessagesAndObjectsAsWholes)
{
    const Store source = full(5).store();
    ASSERT_TRUE(source->saveDatabase(path(u"a.ncxp"_s)));
    ProjectBuilder target;
    target.line(0, 5).object(0x2000, u"Old"_s).sub(1, u"gone"_s).sub(2, u"old"_s).object(0x2001, u"Kept"_s);
    target.pgn(61184, tx, u"Old"_s).spn(9, u"gone"_s).spn(2, u"old"_s).pgn(5, tx, u"Kept"_s).spn(6, u"kept"_s);
    ASSERT_TRUE(ImportDispatch::importFile(target.store(), path(u"a.ncxp"_s)));
    const QString all = contents(*target.store());
    // Where both have something, it is that of the other project, texts with quotes and attributes included.
    for (const char *line :
         {"2000 'It's'", "2000:00 'text' type=9 ro default='it's'", "2000:02 'bytes' type=10 ro default='it's'",
          "variable='a['x']'", "2001 'Kept'", "PGN 5 TX 'Kept'", "  6 'kept'",
          "PGN 61184 TX 'A' '' cycle=0 inhibit=0 priority=0 count=2\n  1 'one' type=0 pos=0", "  2 'two' type=0 pos=1",
          "  2 'two's'"})
        EXPECT_TRUE(all.contains(QLatin1StringView(line))) << line << " in " << qPrintable(all);
    EXPECT_FALSE(all.contains("gone"_L1) || all.contains("old"_L1)) << qPrintable(all);
    ObjectDataBase::INDEX_DATA_T object;
    ASSERT_TRUE(target.store()->getIndex(0, 0x2000, object));
    EXPECT_EQ(object.metadata, (StoreRecords::Metadata{{u"key"_s, u"value"_s}}));
}

TEST_F(Merge, ReplacesTheLayoutOfAMessage)
{
    const auto withElement = [](quint16 size, quint32 pos) {
        ProjectBuilder project;
        project.line(0, 4).canId(0x10, tx, u"M"_s);
        StoreRecords::DataElement element;
        element.direction = tx;
        element.bitsize = size;
        element.pos = pos;
        element.varname = u"it''s"_s;
        project.store()->addDataElement(0, 0x10, tx, 1, element);
        return project;
    };
    const ProjectBuilder target = withElement(8, 4);
    target.store()->addDataElement(0, 0x10, tx, 2, {});
    ASSERT_TRUE(ImportDispatch::importFile(target.store(), saved(withElement(16, 1))));
    EXPECT_EQ(messages(*target.store()), messages(*withElement(16, 1).store()));
}

TEST_F(Merge, GoesByTheLinesOfTheOpenProject)
{
    ProjectBuilder other;
    other.object(0x2000, u"Zero"_s).line(2, 1).object(0x2002, u"Two"_s).line(3, 1).object(0x2003, u"Three"_s);
    ProjectBuilder target;
    target.line(1, 1).object(0x2001, u"Own"_s).line(2, 1);
    ASSERT_TRUE(ImportDispatch::importFile(target.store(), saved(other)));
    EXPECT_EQ(target.store()->getNodeList(), (QList<quint8>{0, 1, 2}));
    EXPECT_EQ(target.store()->getIndexList(0, 0, 0xffff), QList<quint16>{0x2000});
    EXPECT_EQ(target.store()->getIndexList(1, 0, 0xffff), QList<quint16>{0x2001});
    EXPECT_EQ(target.store()->getIndexList(2, 0, 0xffff), QList<quint16>{0x2002});
}

TEST_F(Merge, RefusesWhatIsNoProject)
{
    const ProjectBuilder target = full(5);
    const QString before = contents(*target.store());
    ASSERT_TRUE(TestSupport::writeFile(path(u"bad.ncxp"_s), "no database"));
    ASSERT_TRUE(TestSupport::writeFile(path(u"empty.ncxp"_s), {}));
    ASSERT_TRUE(TestSupport::writeFile(path(u"notes.txt"_s), "PGN:"));
    for (const QString &name : {u"bad.ncxp"_s, u"empty.ncxp"_s, u"missing.ncxp"_s, u"notes.txt"_s})
        EXPECT_FALSE(ImportDispatch::importFile(target.store(), path(name))) << qPrintable(name);
    EXPECT_FALSE(ImportDispatch::importFile(target.store(), saved(full(5), u"text.ncxt"_s)));
    EXPECT_EQ(contents(*target.store()), before);
}

TEST_F(Merge, OfOneLineIntoAnother)
{
    ProjectBuilder other;
    other.line(3, 5).object(0x1fff, u"Below"_s).object(0x2000, u"First"_s).object(0x3000, u"Last"_s);
    other.object(0x3001, u"Above"_s).pgn(0x2fff, rx, u"In"_s).spn(1, u"one"_s).pgn(0x3001, tx, u"Out"_s);
    ProjectBuilder target;
    target.line(1, 5);
    for (const QString &file : {saved(other), path(u"notes.ncxp"_s)}) {
        TestSupport::writeFile(path(u"notes.ncxp"_s), "no project");
        NCXPImporter importer;
        importer.setIndexRange(0x2000, 0x3000);
        importer.setLine(1);
        importer.setSourceLine(3);
        ASSERT_TRUE(importer.setDatabase(target.store()) && importer.setFile(file) && importer.startImport());
        importer.waitForEnd();
        EXPECT_EQ(target.store()->getIndexList(1, 0, 0xffff), (QList<quint16>{0x2000, 0x3000}));
        EXPECT_EQ(target.store()->getPGNList(1, 0), QList<quint32>{0x2fff});
        EXPECT_EQ(target.store()->getSPNList(1, 0x2fff, rx), QList<quint32>{1});
    }
}

TEST_F(Documentation, BringsPGNsAndSPNs)
{
    const QByteArray text = TestSupport::readFile(QStringLiteral(NCX_SOURCE_DIR "/tests/data/import-csv/docs_doc.txt"));
    const QString guide = QString::fromUtf8(TestSupport::readFile(QStringLiteral(NCX_SOURCE_DIR "/docs/import.md")));
    for (const QString &line : QString::fromUtf8(text).split(u'\n', Qt::SkipEmptyParts))
        EXPECT_TRUE(guide.contains(u"\n    "_s + line + u'\n')) << qPrintable(line);
    const Store store = ProjectBuilder().line(0, 2).store();
    ASSERT_TRUE(importText(store, text));
    const QString expected =
        u"PGN 65226 TX 'Active trouble codes' 'Sent as long as there are any' cycle=1000 inhibit=20 priority=6 "
        u"count=2\n"
        "  1213 'Malfunction lamp' type=5 pos=0 bits=2 at=0 implementation=0 variable='' default='0'\n"
        "  987 'Protect lamp' type=5 pos=1 bits=2 at=0 implementation=2 variable='lamp' default='0'\n"
        "PGN 61444 RX 'Engine' '' cycle=0 inhibit=0 priority=3 count=1\n"
        "  190 'Engine speed' type=6 pos=0 bits=0 at=0 implementation=2 variable='speed' default='0'\n"_s;
    EXPECT_EQ(messages(*store), expected);
    // Nothing is doubled by a second import, whatever the line ends.
    QByteArray crlf = text;
    ASSERT_TRUE(importText(store, crlf.replace('\n', "\r\n")));
    EXPECT_EQ(messages(*store), expected);
}

TEST_F(Documentation, LeavesOutWhatCannotBeRead)
{
    const Store store = ProjectBuilder().line(0, 2).store();
    const QByteArray head = "PGN:\t0x1/", rest = "\tName:\tBad\tDirection:\tTX\tCycle Time (ms):\t1\tPriority:\t2\n";
    const QByteArray spn = "\tSPN:\t5\tName:\tlost\tData type:\tU8\n";
    QByteArray text = "\tSPN:\t4\tName:\tno PGN yet\tData type:\tU8\n" + head + "65000" + rest;
    for (const QByteArray &bad :
         {head + rest, head + "0xfeca" + rest, head + "262144" + rest, head + "-1" + rest, "PGN:\t5" + rest,
          replaced(head + "5" + rest, "TX", "XX"), replaced(head + "5" + rest, "\t1\t", "\t65536\t"),
          replaced(head + "5" + rest, "\t2\n", "\tx\n"), replaced(head + "5" + rest, "\t2\n", "\t2\tInhibit:\tx\n"),
          QByteArray("PGN:\t0x1/5\tName:\tshort\n")})
        text += bad + "\tDescription:\tlost\n" + spn;
    text += replaced(head + "65001" + rest, "\t2\n", "\t2\tInhibit Time (ms):\t65537\n");
    text += "# comment\nnoise\n\n\tDescription:\n\tSPN:\tx\tName:\tlost\tData type:\tU8\n"
            "\tSPN:\t1\tName:\tIt's\tData type:\tnothing known\tVariable:\ta['x']\n"
            "\tSPN:\t2\tName:\tshort\n\tSPN:\t3\tName:\tlost\tData type:\tU8\tSize:\tx\n"
            "\tSPN:\t6\tName:\tlast\tData type:\tU8\t\n";
    ASSERT_TRUE(importText(store, text + QByteArray(5000, '\0')));
    EXPECT_EQ(messages(*store), u"PGN 65000 TX 'Bad' '' cycle=1 inhibit=0 priority=2 count=0\n"
                                "PGN 65001 TX 'Bad' '' cycle=1 inhibit=1 priority=2 count=2\n"
                                "  1 'It's' type=0 pos=0 bits=0 at=0 implementation=2 variable='a['x']' default='0'\n"
                                "  6 'last' type=5 pos=1 bits=0 at=0 implementation=0 variable='' default='0'\n"_s);
}
