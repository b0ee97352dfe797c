#include "generate/runtable.h"

#include "generate/j1939/pgngenerator.h"
#include "generate/stack/indicesgenerator.h"

#include <array>

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

bool isJ1939Only(const RunContext &run)
{
    return run.isJ1939Only();
}

std::unique_ptr<FileGenerator> makePgn(const RunContext &run, quint8 /*line*/)
{
    return inForm<PGNGenerator, PGNGeneratorV4>(run);
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
};

} // namespace

std::span<const RunRow> runTable()
{
    return rows;
}
