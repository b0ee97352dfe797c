#include "generate/docs/generatorjob.h"
#include "generate/docs/textdocgenerator.h"
#include "import/doctxtimporter.h"
#include "nodedict/canopendatatype.h"
#include "support/projectbuilder.h"

#include <QCoreApplication>
#include <QRandomGenerator>

#include <array>

using namespace Qt::StringLiterals;
using TestSupport::ProjectBuilder;
using Store = std::shared_ptr<ObjectDataBase>;

TEST(TextDoc, LeavesOutWhatIsEmpty)
{
    ProjectBuilder project;
    StoreRecords::IndexData object;
    object.name = u"Sub ${subindex} of ${index:x}"_s;
    object.description = u"Two\nlines of ${line}"_s;
    object.objecttype = 8;
    project.store()->addIndex(0, 0x60AB, object);
    project.object(0x60AB, object.name);
    project.store()->addIndex(0, 0x60AB, object);
    project.sub(0, u"Count"_s).sub(0x1F, u"No ${subindex:x}"_s, [](StoreRecords::SubIndexData &sub) {
        sub.datatype = CAN::VisibleString;
        sub.accesstype = u"rww"_s;
        sub.defaultvalue = u"a ${b}"_s;
        sub.pdomapping = PDOMapping(PDOMapping::TPDO);
        sub.description = u"Last"_s;
    });
    TextDocGenerator generator;
    EXPECT_EQ(DocsTest::textOf(generator, project.store()), u"CANopen Object Dictionary Documenation for device\n"
                                                            "\n"
                                                            "\n"
                                                            "Index:       0x60ab - Sub 0 of 60ab\n"
                                                            "DataType:    UNSIGNED8\n"
                                                            "ObjectCode:  ARRAY\n"
                                                            "Description: Two\nlines of 0\n"
                                                            "  Sub:          0x00 - Count\n"
                                                            "  DataType:     UNSIGNED8\n"
                                                            "  AccessType:   ro\n"
                                                            "  PDOMapping:   0\n"
                                                            "  Sub:          0x1f - No 1f\n"
                                                            "  DataType:     VISIBLE_STRING\n"
                                                            "  DefaultValue: a ${b}\n"
                                                            "  AccessType:   rww\n"
                                                            "  PDOMapping:   4\n"
                                                            "  Description:  Last\n"_s);
}

TEST(TextDoc, NamesFilesByLineAndSuffix)
{
    TextDocGenerator generator;
    generator.setBaseName(u"device.v2"_s);
    EXPECT_EQ(generator.fileName(), u"device.v2_doc.txt");
    generator.setFileSuffix(u"_co"_s);
    EXPECT_EQ(generator.fileName(), u"device.v2_co_doc.txt");
    generator.setMultiLine(true);
    EXPECT_EQ(generator.fileName(), u"device.v2_0_co_doc.txt");
}

TEST(TextDoc, KeepsTheFormerFileWhenTheJobIsCancelled)
{
    ProjectBuilder project;
    for (quint16 index = 0x2000; index < 0x2100; ++index)
        project.object(index, u"Object"_s).sub(0, u"Value"_s);
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"device_doc.txt"_s);
    TestSupport::writeFile(path, "former");
    TextDocGenerator generator;
    generator.setDatabase(project.store());
    generator.setOutputFolder(folder.path());
    generator.setBaseName(u"device"_s);
    // The gate keeps the job from its first look at the objects until the request is there.
    project.store()->closeGate();
    generator.startJob();
    EXPECT_EQ(generator.cancelJob(), AbstractGenerator::Success);
    project.store()->openGate();
    generator.waitForJob();
    EXPECT_EQ(generator.errorText(), u"Generation aborted.");
    EXPECT_EQ(TestSupport::readFile(path), "former");
}

namespace {

/// What the text holds of a line's PGNs: a row for each PGN and SPN.
QStringList heldByText(ObjectDataBase &store)
{
    QStringList rows;
    for (const quint8 direction : {ObjectDataBase::transmit, ObjectDataBase::receive}) {
        for (const quint32 number : store.getPGNList(0, direction)) {
            StoreRecords::PGN pgn;
            EXPECT_TRUE(store.getPGN(0, number, direction, pgn));
            const QString description = pgn.desc.size() > 1 ? pgn.desc : QString();
            rows.append(u"%1 %2 '%3' '%4' %5 %6 %7 (%8)"_s.arg(number)
                            .arg(direction)
                            .arg(pgn.name, description)
                            .arg(pgn.cycletime_ms)
                            .arg(pgn.inhibittime_ms)
                            .arg(pgn.priority)
                            .arg(pgn.mappingcount));
            for (const quint32 spnNumber : store.getSPNList(0, number, direction)) {
                StoreRecords::SPN spn;
                EXPECT_TRUE(store.getSPN(0, number, direction, spnNumber, spn));
                const bool isVariable = spn.implementation == 2 && !spn.varname.isEmpty();
                rows.append(u"  %1 '%2' %3 %4 %5 '%6'"_s.arg(spnNumber)
                                .arg(spn.name)
                                .arg(spn.datatype)
                                .arg(spn.bitsize)
                                .arg(spn.pos)
                                .arg(isVariable ? spn.varname : QString()));
            }
        }
    }
    return rows;
}

class RandomPGNs
{
public:
    explicit RandomPGNs(quint32 seed)
        : random_(seed)
    {
    }

    void fill(ObjectDataBase &store)
    {
        for (int i = 0; i < 60; ++i) {
            const quint8 direction = below(2) == 0 ? ObjectDataBase::transmit : ObjectDataBase::receive;
            const quint32 number = below(4) == 0 ? static_cast<quint32>(i) : below(0x3FFFF);
            if (store.pgnExists(0, number, direction))
                continue;
            addPGN(store, number, direction);
        }
        store.repairMappingCounts();
    }

private:
    quint32 below(quint32 limit) { return random_.bounded(limit); }

    void addPGN(ObjectDataBase &store, quint32 number, quint8 direction)
    {
        StoreRecords::PGN pgn;
        pgn.name = text();
        pgn.desc = text();
        pgn.number = number;
        pgn.direction = direction;
        pgn.cycletime_ms = static_cast<quint16>(below(0x10000));
        pgn.inhibittime_ms = below(2) == 0 ? quint16{0} : static_cast<quint16>(below(0x10000));
        pgn.priority = static_cast<quint8>(below(8));
        EXPECT_TRUE(store.addPGN(0, number, pgn));
        const quint32 count = below(6);
        for (quint32 pos = 0; pos < count; ++pos)
            addSPN(store, number, direction, 100 * pos + below(100), pos);
    }

    void addSPN(ObjectDataBase &store, quint32 pgn, quint8 direction, quint32 number, quint32 pos)
    {
        constexpr std::array types{CAN::Boolean,     CAN::Integer16, CAN::Unsigned64,     CAN::Real32,
                                   CAN::OctetString, CAN::Unsigned2, CAN::StringAsterisk, CAN::StringNull,
                                   CAN::NoType,      CAN::Integer24, CAN::TimeOfDay,      CAN::Utf8String};
        StoreRecords::SPN spn;
        spn.pos = pos;
        spn.name = text();
        spn.desc = text();
        spn.datatype = types.at(below(types.size()));
        spn.direction = direction;
        spn.implementation = static_cast<quint8>(below(4));
        spn.varname = below(3) == 0 ? QString() : u"v_%1"_s.arg(number);
        spn.bitsize = below(2) == 0 ? quint16{0} : static_cast<quint16>(below(0x10000));
        EXPECT_TRUE(store.addSPN(0, pgn, direction, number, spn));
    }

    /// A text as people type it. White space other than blanks is no part of it, as a field cannot hold it.
    QString text()
    {
        static const QStringList words{u"Motor"_s, u"Öl"_s,      u"50 %"_s, u"'quoted'"_s, u"\"double\""_s, u"a,b;c"_s,
                                       u"#"_s,     u"Name:"_s,   u"€"_s,    u"<b>"_s,      u"  "_s,         u"\\n"_s,
                                       u"%1"_s,    u"${next}"_s, u"😀"_s,    u"-"_s};
        QString result;
        const quint32 count = below(4);
        for (quint32 i = 0; i < count; ++i)
            result += words.at(static_cast<qsizetype>(below(static_cast<quint32>(words.size()))));
        return result;
    }

    QRandomGenerator random_;
};

void importText(const Store &store, const QString &path)
{
    DOCTXTImporter importer;
    importer.setDatabase(store);
    importer.setFile(path);
    importer.setLine(0);
    importer.setIndexRange(0, 262143);
    importer.startImport();
    importer.waitForEnd();
}

} // namespace

TEST(J1939TextDoc, ComesBackAsItWas)
{
    for (const quint32 seed : {1U, 20U, 300U}) {
        SCOPED_TRACE(seed);
        ProjectBuilder project;
        project.line(0, 2);
        RandomPGNs(seed).fill(*project.store());
        const QTemporaryDir folder;
        J1939TextDocGenerator generator;
        const QString path = DocsTest::runJob(generator, project.store(), folder.path());

        ProjectBuilder copy;
        copy.line(0, 2);
        importText(copy.store(), path);
        const QStringList expected = heldByText(*project.store());
        EXPECT_GT(expected.size(), 100);
        EXPECT_EQ(heldByText(*copy.store()), expected);
    }
}

TEST(J1939TextDoc, PutsATextOnOneLine)
{
    ProjectBuilder project;
    project.line(0, 2);
    StoreRecords::PGN pgn;
    pgn.name = u"A\tB"_s;
    pgn.desc = u"first\nsecond\r\nthird"_s;
    pgn.direction = ObjectDataBase::receive;
    pgn.priority = 3;
    project.store()->addPGN(0, 0x1F004, pgn);
    pgn.desc = u"x"_s; // too short to be told
    pgn.inhibittime_ms = 7;
    pgn.direction = ObjectDataBase::transmit;
    project.store()->addPGN(0, 0xCA, pgn);
    J1939TextDocGenerator generator;
    EXPECT_EQ(DocsTest::textOf(generator, project.store()),
              u"PGN/SPN Documenation for device - generated by CANopen NodeComposer 4.3.3 \n"
              "PGN:\t0x00ca/202\tName:\tA B\tDirection:\tTX\tCycle Time (ms):\t0\tPriority:\t3\tInhibit Time (ms):\t7\n"
              "PGN:\t0x1f004/126980\tName:\tA B\tDirection:\tRX\tCycle Time (ms):\t0\tPriority:\t3\n"
              "\tDescription:\tfirst second  third\n"_s);
}
