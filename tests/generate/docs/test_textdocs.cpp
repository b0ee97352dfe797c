#include "generate/docs/generatorjob.h"
#include "generate/pages/htmlgenerator.h"
#include "generate/pages/textdocgenerator.h"
#include "import/doctxtimporter.h"
#include "nodedict/canopendatatype.h"
#include "store/file/repairs.h"
#include "support/projectbuilder.h"

#include <QCoreApplication>

using namespace Qt::StringLiterals;
using TestSupport::ProjectBuilder;
using Store = std::shared_ptr<ObjectDataBase>;

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
            const StoreRecords::PGN pgn = store.getPGN(0, number, direction).value();
            const QString description = pgn.desc.size() > 1 ? pgn.desc : QString();
            rows.append(u"%1 %2 '%3' '%4' %5 %6 %7 (%8)"_s.arg(number)
                            .arg(direction)
                            .arg(pgn.name, description)
                            .arg(pgn.cycletime_ms)
                            .arg(pgn.inhibittime_ms)
                            .arg(pgn.priority)
                            .arg(pgn.mappingcount));
            for (const quint32 spnNumber : store.getSPNList(0, number, direction)) {
                const StoreRecords::SPN spn = store.getSPN(0, number, direction, spnNumber).value();
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
    // Texts as people type them. White space other than blanks is no part of one, as a field cannot hold it.
    ProjectBuilder odd;
    odd.line(0, 2);
    quint32 number = 0;
    for (const QString &text : {u"Öl 50 %"_s, u"'quoted'\"double\""_s, u"a,b;c#"_s, u"Name:"_s, u"€<b>  -\\n"_s,
                                u"%1${next}"_s, u"😀"_s, u"PGN: SPN:"_s, QString()}) {
        odd.pgn(++number * 7000, ObjectDataBase::receive, text, [&](auto &pgn) { pgn.desc = text; });
        quint32 pos = 0;
        for (const quint16 type : {CAN::Boolean, CAN::Unsigned64, CAN::Real32, CAN::Unsigned2, CAN::StringAsterisk,
                                   CAN::NoType, CAN::TimeOfDay})
            odd.spn(type, text, [&](auto &spn) {
                spn.pos = pos++;
                spn.datatype = type;
                spn.desc = text;
                spn.bitsize = static_cast<quint16>(type * 9);
                spn.implementation = 2;
                spn.varname = type % 2 == 0 ? u"v"_s : QString();
            });
    }
    EXPECT_TRUE(Repairs::mappingCounts(*odd.store()));
    QList<Store> stores{odd.store()};
    for (const QString &file : DocsTest::projectFiles()) {
        stores.append(std::make_shared<ObjectDataBase>());
        ASSERT_TRUE(stores.last()->openTextDatabase(file));
        EXPECT_TRUE(Repairs::mappingCounts(*stores.last()));
    }
    for (const Store &store : stores) {
        const QTemporaryDir folder;
        J1939TextDocGenerator generator;
        const QString path = DocsTest::runJob(generator, store, folder.path());
        ProjectBuilder copy;
        copy.line(0, 2);
        importText(copy.store(), path);
        EXPECT_EQ(heldByText(*copy.store()), heldByText(*store));
    }
}

TEST(HtmlDictionary, KeepsTheNameOfItsProjectFromBecomingMarkup)
{
    HTMLGenerator generator;
    const QString page = DocsTest::textOf(generator, ProjectBuilder().store(), {.baseName = u"R&D-->x"_s});
    EXPECT_TRUE(page.startsWith(u"<!-- HTML file for R&amp;D--&gt;x - generated by CANopen NodeComposer 4.3.3 -->\n"));
    EXPECT_TRUE(page.contains(u"<title>Object Dictionary Documenation of R&amp;D--&gt;x</title>"));
}
