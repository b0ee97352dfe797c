#include "generate/runtable.h"

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
    RunRow{.applies = isJ1939Only, .step = removeStaleFiles},
    RunRow{.applies = hasMessages,
           .make = makeExternDecl,
           .started = "Generation of gen_extern_decl.h in %1 started",
           .notWritable = "The file gen_extern_decl.h in %1 is not writable"},
};

} // namespace

std::span<const RunRow> runTable()
{
    return rows;
}
