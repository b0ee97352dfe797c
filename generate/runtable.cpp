#include "generate/runtable.h"

#include "generate/docs/csvgenerator.h"
#include "generate/docs/dbcgenerator.h"
#include "generate/docs/documentname.h"
#include "generate/docs/edsgenerator.h"
#include "generate/docs/edsrun.h"
#include "generate/docs/icsvgenerator.h"
#include "generate/docs/messagehtmlgenerator.h"
#include "generate/docs/textdocgenerator.h"
#include "generate/docs/xddgenerator.h"
#include "generate/stack/indicesgenerator.h"
#include "store/objectdatabase.h"

#include <array>

using namespace Qt::StringLiterals;

namespace {

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

bool hasCANopen(const RunContext &run)
{
    return run.hasCANopen;
}

bool isMultiProtocol(const RunContext &run)
{
    return run.isMultiProtocol();
}

bool isJ1939Only(const RunContext &run)
{
    return run.isJ1939Only();
}

template <class Generator>
std::unique_ptr<FileGenerator> makeGenerator(const RunContext & /*run*/, quint8 /*line*/)
{
    return std::make_unique<Generator>();
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

std::unique_ptr<FileGenerator> makeIcsv(const RunContext &run, quint8 /*line*/)
{
    auto generator = std::make_unique<ICSVGenerator>();
    generator->setDocumentation(run.store->getMiscSetting(u"disableDocu"_s) != "true"_L1);
    return generator;
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

constexpr auto fileNotWritable = "The file %2 in %1 is not writable";

constexpr std::array rows{
    RunRow{.applies = hasNamesToDefine,
           .make = makeIndices,
           .started = "Generation of gen_indices.h in %1 started",
           .notWritable = "The file in gen_indices.h in %1 is not writable"},
    RunRow{.applies = hasCANopen,
           .lines = RunLines::CANopen,
           .suffix = "_co",
           .make = makeGenerator<TextDocGenerator>,
           .started = "Generation of textual object dictionary documentation in %1 started",
           .notWritable = fileNotWritable},
    RunRow{.applies = hasCANopen,
           .lines = RunLines::CANopen,
           .suffix = "_co",
           .make = makeGenerator<HTMLGenerator>,
           .started = "Generation of HTML object dictionary documentation in %1 started",
           .notWritable = fileNotWritable},
    RunRow{.applies = isMultiProtocol,
           .lines = RunLines::J1939,
           .lineByLine = true,
           .suffix = "_j1939",
           .make = makeGenerator<J1939TextDocGenerator>,
           .started = "Generation of textual PGN documentation in %1 started",
           .notWritable = fileNotWritable},
    RunRow{.applies = isMultiProtocol,
           .lines = RunLines::RawCAN,
           .lineByLine = true,
           .suffix = "_rawcan",
           .make = makeGenerator<RawCANTextDocGenerator>,
           .started = "Generation of raw CAN text documentation in %1 started",
           .notWritable = fileNotWritable},
    RunRow{.applies = isMultiProtocol,
           .lines = RunLines::RawCAN,
           .lineByLine = true,
           .make = makeGenerator<RawCANDBCGenerator>,
           .started = "Generation of raw CAN DBC file in %1 started",
           .notWritable = fileNotWritable},
    RunRow{.applies = isMultiProtocol,
           .lines = RunLines::RawCAN,
           .lineByLine = true,
           .suffix = "_rawcan",
           .make = makeGenerator<RawCANHTMLGenerator>,
           .started = "Generation of raw CAN HTML documentation in %1 started",
           .notWritable = fileNotWritable},
    RunRow{.applies = isMultiProtocol,
           .lines = RunLines::J1939,
           .suffix = "_j1939",
           .make = makeGenerator<J1939HTMLGenerator>,
           .started = "Generation of HTML pgn documentation in %1 started",
           .notWritable = fileNotWritable},
    RunRow{.applies = isMultiProtocol,
           .lines = RunLines::J1939,
           .make = makeGenerator<DBCGenerator>,
           .started = "Generation of DBC_file in %1 started",
           .notWritable = fileNotWritable},
    RunRow{.applies = hasSdoServer,
           .make = makeGenerator<EDSGenerator>,
           .started = "Generation of %2 EDS file in %1 started (for CAM11/CAM21 SDO Server)",
           .notWritable = "The EDS file %2.eds in %1 is not writable",
           .nameInTexts = nameOfLine},
    RunRow{.applies = isJ1939Only,
           .lines = RunLines::Every,
           .make = makeGenerator<J1939TextDocGenerator>,
           .started = "Generation of textual PGN documentation in %1 started",
           .notWritable = "The file in %2_doc.txt in %1 is not writable",
           .nameInTexts = nameOfLine},
    RunRow{.applies = isJ1939Only,
           .lines = RunLines::Every,
           .make = makeGenerator<J1939HTMLGenerator>,
           .started = "Generation of HTML pgn documentation in %1 started",
           .notWritable = fileNotWritable},
    RunRow{.applies = isJ1939Only,
           .lines = RunLines::J1939,
           .make = makeGenerator<DBCGenerator>,
           .started = "Generation of DBC_file in %1 started",
           .notWritable = fileNotWritable},
    RunRow{.applies = hasIndications,
           .lines = RunLines::CANopen,
           .make = makeGenerator<CSVGenerator>,
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
           .make = makeGenerator<XDDGenerator>,
           .started = "Generation of XDD file in %1 started",
           .notWritable = "The XDD file %2.xdd in %1 is not writable",
           .nameInTexts = nameOfXdd},
};

} // namespace

std::span<const RunRow> runTable()
{
    return rows;
}
