#include "generate/runtable.h"

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

constexpr std::array rows{
    RunRow{.applies = hasNamesToDefine,
           .make = makeIndices,
           .started = "Generation of gen_indices.h in %1 started",
           .notWritable = "The file in gen_indices.h in %1 is not writable"},
};

} // namespace

std::span<const RunRow> runTable()
{
    return rows;
}
