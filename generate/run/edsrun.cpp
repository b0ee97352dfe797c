#include "generate/run/edsrun.h"

#include "generate/common/documentname.h"
#include "generate/descriptions/edsgenerator.h"
#include "generate/run/generationrun.h"

using namespace Qt::StringLiterals;

namespace {

void generateEds(GenerationRun &run, quint8 line, const EdsVariant &variant)
{
    EDSGenerator generator;
    generator.setVariant(variant);
    run.runJob(generator, line, {},
               {.started = variant.classical ? "Generation of %2 classical EDS file in %1 started"
                                             : "Generation of %2 EDS file in %1 started",
                .notWritable = "The EDS file %2 in %1 is not writable",
                .startedName = variant.tag});
}

} // namespace

RunFlow generateEdsFiles(GenerationRun &run, quint8 line)
{
    const bool hasFd = run.context().isOn(u"canfd_supported"_s);
    const QStringList tags = edsTags(*run.context().store, line);
    for (const QString &tag : tags) {
        generateEds(run, line, {.tag = tag, .extended = hasFd});
        if (hasFd)
            generateEds(run, line, {.tag = tag, .classical = true});
    }
    if (tags.size() > 1)
        run.message(u"Warning: multiple different EDS files to be generated.\n"_s);
    return RunFlow::Continue;
}
