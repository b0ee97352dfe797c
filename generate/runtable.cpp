#include "generate/runtable.h"

#include "generate/docs/dbcgenerator.h"
#include "generate/docs/messagehtmlgenerator.h"
#include "generate/docs/textdocgenerator.h"
#include "generate/stack/indicesgenerator.h"

#include <array>

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

/// What the names of a line's documents begin with.
QString documentBase(const RunContext &run, quint8 line)
{
    return run.multiLine ? QStringLiteral("%1_%2").arg(run.baseName).arg(line) : run.baseName;
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
    RunRow{.applies = isJ1939Only,
           .lines = RunLines::Every,
           .make = makeGenerator<J1939TextDocGenerator>,
           .started = "Generation of textual PGN documentation in %1 started",
           .notWritable = "The file in %2_doc.txt in %1 is not writable",
           .nameInTexts = documentBase},
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
};

} // namespace

std::span<const RunRow> runTable()
{
    return rows;
}
