#include "generate/runtable.h"

#include "generate/docs/csvgenerator.h"
#include "generate/docs/documentname.h"
#include "generate/docs/edsgenerator.h"
#include "generate/docs/edsrun.h"
#include "generate/docs/icsvgenerator.h"
#include "generate/docs/xddgenerator.h"
#include "generate/generationrun.h"
#include "generate/j1939/pgngenerator.h"
#include "generate/stack/externdeclgenerator.h"
#include "generate/stack/indicesgenerator.h"
#include "store/objectdatabase.h"

#include <QFile>

#include <array>

using namespace Qt::StringLiterals;

namespace {

/// The generator of the pair whose form the project asks for.
template <typename Classic, typename V4>
std::unique_ptr<FileGenerator> inForm(const RunContext &run)
{
    if (run.usesV4())
        return std::make_unique<V4>();
    return std::make_unique<Classic>();
}

bool hasNamesToDefine(const RunContext &run)
{
    return run.hasAnyProtocol() && !run.bootloaderMode;
}

std::unique_ptr<FileGenerator> makeIndices(const RunContext &run, quint8 /*line*/)
{
    auto generator = std::make_unique<IndicesGenerator>();
    generator->setLines(run.lines);
    return generator;
}

bool hasSdoServer(const RunContext &run)
{
    return run.isJ1939Only() && run.store->getJ1939Setting(u"cia510serversupport"_s).toInt() == 1;
}

bool hasIndications(const RunContext &run)
{
    return run.hasCANopen || run.generalSetting(u"uds_static_indication"_s).toInt() == 1;
}

bool hasFdDescription(const RunContext &run)
{
    return hasIndications(run) && run.generalSetting(u"canfd_supported"_s).toInt() >= 1;
}

std::unique_ptr<FileGenerator> makeCsv(const RunContext & /*run*/, quint8 /*line*/)
{
    return std::make_unique<CSVGenerator>();
}

std::unique_ptr<FileGenerator> makeIcsv(const RunContext &run, quint8 /*line*/)
{
    auto generator = std::make_unique<ICSVGenerator>();
    generator->setDocumentation(run.store->getMiscSetting(u"disableDocu"_s) != "true"_L1);
    return generator;
}

std::unique_ptr<FileGenerator> makeEds(const RunContext & /*run*/, quint8 /*line*/)
{
    return std::make_unique<EDSGenerator>();
}

std::unique_ptr<FileGenerator> makeXdd(const RunContext & /*run*/, quint8 /*line*/)
{
    return std::make_unique<XDDGenerator>();
}

/// For messages that have a file's extension of their own.
QString nameOfLine(const RunContext &run, quint8 line)
{
    return documentName(run.baseName, line, run.multiLine);
}

QString nameOfXdd(const RunContext &run, quint8 line)
{
    return XDDGenerator::nameOf(*run.store, run.baseName, line, run.multiLine);
}

bool isJ1939Only(const RunContext &run)
{
    return run.isJ1939Only();
}

std::unique_ptr<FileGenerator> makePgn(const RunContext &run, quint8 /*line*/)
{
    return inForm<PGNGenerator, PGNGeneratorV4>(run);
}

bool hasMessages(const RunContext &run)
{
    return (run.hasJ1939 || run.hasRawCAN) && !run.bootloaderMode;
}

std::unique_ptr<FileGenerator> makeExternDecl(const RunContext &run, quint8 /*line*/)
{
    return inForm<ExtDeclGenerator, ExtDeclGeneratorV4>(run);
}

/// Removes what a device without CANopen does not have, and adapter files that are no longer wanted.
RunFlow removeStaleFiles(GenerationRun &run, quint8 /*line*/)
{
    constexpr std::array adapterFiles{"gen_j1939_adapter.c", "gen_j1939_adapter.cs", "j1939_adapter.cs",
                                      "j1939_adapter.c"};
    if (run.context().store->getJ1939Setting(u"j1939adapter"_s) != "1"_L1) {
        for (const char *name : adapterFiles)
            QFile::remove(run.filePath(QString::fromLatin1(name)));
    }
    QFile::remove(run.filePath(u"gen_indication.h"_s));
    return RunFlow::Continue;
}

constexpr std::array rows{
    RunRow{.applies = hasNamesToDefine,
           .make = makeIndices,
           .started = "Generation of gen_indices.h in %1 started",
           .notWritable = "The file in gen_indices.h in %1 is not writable"},
    RunRow{.applies = isJ1939Only,
           .make = makePgn,
           .started = "Generation of gen_pgn.c in %1 started",
           .notWritable = "The file gen_pgn.c in %1 is not writable"},
    RunRow{.applies = hasSdoServer,
           .make = makeEds,
           .started = "Generation of %2 EDS file in %1 started (for CAM11/CAM21 SDO Server)",
           .notWritable = "The EDS file %2.eds in %1 is not writable",
           .nameInTexts = nameOfLine},
    RunRow{.applies = isJ1939Only, .step = removeStaleFiles},
    RunRow{.applies = hasMessages,
           .make = makeExternDecl,
           .started = "Generation of gen_extern_decl.h in %1 started",
           .notWritable = "The file gen_extern_decl.h in %1 is not writable"},
    RunRow{.applies = hasIndications,
           .lines = RunLines::CANopen,
           .make = makeCsv,
           .started = "Generation of CSV file (deprecated) in %1 started",
           .notWritable = "The file %2.csv in %1 is not writable",
           .nameInTexts = nameOfLine},
    RunRow{.applies = hasIndications,
           .lines = RunLines::CANopen,
           .make = makeIcsv,
           .started = "Generation of ICSV file in %1 started",
           .notWritable = "The file %2.icsv in %1 is not writable",
           .nameInTexts = nameOfLine},
    RunRow{.applies = hasIndications, .lines = RunLines::CANopen, .step = generateEdsFiles},
    RunRow{.applies = hasFdDescription,
           .lines = RunLines::CANopen,
           .make = makeXdd,
           .started = "Generation of XDD file in %1 started",
           .notWritable = "The XDD file %2.xdd in %1 is not writable",
           .nameInTexts = nameOfXdd},
};

} // namespace

std::span<const RunRow> runTable()
{
    return rows;
}
