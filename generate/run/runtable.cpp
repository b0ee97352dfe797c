#include "generate/run/runtable.h"

#include "generate/base/dialect.h"
#include "generate/bus/dbcgenerator.h"
#include "generate/common/documentname.h"
#include "generate/define/definegenerator.h"
#include "generate/define/projectprops.h"
#include "generate/descriptions/edsgenerator.h"
#include "generate/descriptions/xddgenerator.h"
#include "generate/j1939/pgngenerator.h"
#include "generate/j1939/sdmgenerator.h"
#include "generate/multiprotocol/multiprogenerator.h"
#include "generate/names/externdeclgenerator.h"
#include "generate/names/indicationgenerator.h"
#include "generate/names/indicesgenerator.h"
#include "generate/objdict/cppcopies.h"
#include "generate/objdict/objdictgenerator.h"
#include "generate/objdict/virtualtables.h"
#include "generate/objdict/vobjdictgenerator.h"
#include "generate/pages/messagehtmlgenerator.h"
#include "generate/pages/textdocgenerator.h"
#include "generate/run/edsrun.h"
#include "generate/run/generationrun.h"
#include "generate/srdo/srdogenerator.h"
#include "generate/tables/csvgenerator.h"
#include "generate/tables/icsvgenerator.h"
#include "nodedict/codes.h"
#include "store/objectdatabase.h"

#include <QFile>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace {

bool hasNamesToDefine(const RunContext &run)
{
    return run.hasAnyProtocol() && !run.bootloaderMode;
}

bool hasCANopen(const RunContext &run)
{
    return run.hasCANopen;
}

bool isPlainCANopen(const RunContext &run)
{
    return run.hasCANopen && !run.isMultiProtocol();
}

bool isMultiProtocol(const RunContext &run)
{
    return run.isMultiProtocol();
}

bool hasSrdos(const RunContext &run)
{
    using CANopen::Index::srdos;
    return std::ranges::any_of(
        run.lines, [&run](quint8 line) { return !run.store->getIndexList(line, srdos.first, srdos.last).isEmpty(); });
}

bool isMultiProtocolV4(const RunContext &run)
{
    return run.isMultiProtocol() && run.usesV4();
}

bool isMultiProtocolClassic(const RunContext &run)
{
    return run.isMultiProtocol() && !run.usesV4();
}

bool isJ1939Only(const RunContext &run)
{
    return run.isJ1939Only();
}

bool hasSdoServer(const RunContext &run)
{
    return run.isJ1939Only() && run.isOnForJ1939(u"cia510serversupport"_s);
}

bool hasMessages(const RunContext &run)
{
    return (run.hasJ1939 || run.hasRawCAN) && !run.bootloaderMode;
}

bool hasSafetyGroups(const RunContext &run)
{
    return hasMessages(run) && run.isOnForJ1939(u"safetysupport"_s);
}

bool hasIndications(const RunContext &run)
{
    return run.hasCANopen || run.isOn(u"uds_static_indication"_s);
}

bool hasFdDescription(const RunContext &run)
{
    return hasIndications(run) && run.isOn(u"canfd_supported"_s);
}

bool hasProps(const RunContext &run)
{
    return run.isOn(u"gen_csharp_props"_s);
}

bool wantsCppCopies(const RunContext &run)
{
    return hasIndications(run) && run.isOn(u"generate_cpp_output"_s);
}

template <class Generator>
std::unique_ptr<FileGenerator> makeGenerator(const RunContext & /*run*/, quint8 /*line*/)
{
    return std::make_unique<Generator>();
}

/// The generator of the pair whose form the project asks for.
template <class Classic, class V4>
std::unique_ptr<FileGenerator> makeInForm(const RunContext &run, quint8 /*line*/)
{
    if (run.usesV4())
        return std::make_unique<V4>();
    return std::make_unique<Classic>();
}

std::unique_ptr<FileGenerator> makeIndices(const RunContext &run, quint8 /*line*/)
{
    auto generator = std::make_unique<IndicesGenerator>();
    generator->setLines(run.lines);
    return generator;
}

template <class Classic, class V4>
std::unique_ptr<Classic> newDictionary(const RunContext &run)
{
    const bool compact = run.isOn(u"compact_array_description"_s);
    if (run.usesV4())
        return std::make_unique<V4>(compact);
    return std::make_unique<Classic>(compact);
}

std::unique_ptr<FileGenerator> makeDictionary(const RunContext &run, quint8 /*line*/)
{
    return newDictionary<ObjDictGenerator, ObjDictGeneratorV4>(run);
}

std::unique_ptr<FileGenerator> makeMultiProtocol(const RunContext &run, quint8 /*line*/)
{
    const MultiProtocols protocols = MultiProtocols::of(run);
    const bool compact = run.isOn(u"compact_array_description"_s);
    if (run.usesV4())
        return std::make_unique<MultiProGeneratorV4>(protocols, compact);
    return std::make_unique<MultiProGenerator>(protocols, compact);
}

/// The dictionary that a J1939 device serves over CAM11 and CAM21.
std::unique_ptr<FileGenerator> makeServerDictionary(const RunContext &run, quint8 /*line*/)
{
    auto generator = newDictionary<ObjDictGenerator, ObjDictGeneratorV4>(run);
    generator->setServerMode(true);
    return generator;
}

std::unique_ptr<FileGenerator> makeDefines(const RunContext &run, quint8 /*line*/)
{
    std::unique_ptr<DefineHeaderGenerator> generator;
    if (run.usesV4())
        generator = std::make_unique<GenDefineGenerator>();
    else
        generator = std::make_unique<CoDefineGenerator>();
    generator->setJ1939Mode(run.hasJ1939);
    generator->setMultiProtocol(run.isMultiProtocol());
    return generator;
}

/// Only the V4 form knows the functions of the UDS server.
std::unique_ptr<FileGenerator> makeIndications(const RunContext &run, quint8 /*line*/)
{
    if (run.usesV4() || run.isOn(u"uds_static_indication"_s))
        return std::make_unique<indicationgeneratorv4>(run.usesV4() ? Dialect::v4() : Dialect::classic());
    return std::make_unique<indicationgenerator>();
}

std::unique_ptr<FileGenerator> makeIcsv(const RunContext &run, quint8 /*line*/)
{
    auto generator = std::make_unique<ICSVGenerator>();
    generator->setDocumentation(run.store->getMiscSetting(u"disableDocu"_s) != "true"_L1);
    return generator;
}

std::unique_ptr<FileGenerator> makeSrdo(const RunContext &run, quint8 /*line*/)
{
    auto generator = std::make_unique<SrdoGeneratorStatic>();
    generator->setStaticData(run.isOn(u"static_srdo_data"_s));
    return generator;
}

/// For messages that have a file's extension of their own.
QString nameOfLine(const RunContext &run, quint8 line)
{
    return documentName(run.baseName, line, run.multiLine);
}

RunFlow writeVirtualDictionary(GenerationRun &run, quint8 line)
{
    const RunContext &context = run.context();
    const auto generator = newDictionary<VobjDictGenerator, VobjDictGeneratorV4>(context);
    if (hasVirtualObjects(*context.store)) {
        run.runJob(*generator, line, {}, {});
    } else {
        QFile::remove(run.filePath(generator->fileName()));
    }
    return RunFlow::Continue;
}

RunFlow tellUserSection(GenerationRun &run, FileGenerator &generator)
{
    const auto *defines = qobject_cast<DefineHeaderGenerator *>(&generator);
    if (defines && !defines->userSection().trimmed().isEmpty())
        run.message(u"gen_define.h contains user section:\n%1"_s.arg(defines->userSection()));
    return RunFlow::Continue;
}

RunFlow tellWarnings(GenerationRun &run, FileGenerator &generator)
{
    for (const QString &warning : generator.warnings())
        run.message(warning);
    return RunFlow::Continue;
}

/// Without its template the device has no safety module, and nothing else of it is to be built.
RunFlow endWithoutTemplate(GenerationRun &run, FileGenerator &generator)
{
    if (generator.errorCode() != AbstractGenerator::TemplateError)
        return RunFlow::Continue;
    run.message(generator.errorText());
    return RunFlow::EndWithTemplateFailure;
}

RunFlow writeProps(GenerationRun &run, quint8 /*line*/)
{
    const QString folder = run.context().outputFolder;
    const QString text = ProjectProps::write(folder)
                             ? u"Generation of gen_define.props and Directory.Build.props in %1 finished"_s
                             : u"The files gen_define.props and Directory.Build.props in %1 are not writable"_s;
    run.message(text.arg(folder));
    return RunFlow::Continue;
}

/// Removes what a device without CANopen does not have, and adapter files that are no longer wanted.
RunFlow removeStaleFiles(GenerationRun &run, quint8 /*line*/)
{
    constexpr std::array adapterFiles{"gen_j1939_adapter.c", "gen_j1939_adapter.cs", "j1939_adapter.cs",
                                      "j1939_adapter.c"};
    if (!run.context().isOnForJ1939(u"j1939adapter"_s)) {
        for (const char *name : adapterFiles)
            QFile::remove(run.filePath(QString::fromLatin1(name)));
    }
    QFile::remove(run.filePath(u"gen_indication.h"_s));
    return RunFlow::Continue;
}

RunFlow copyToCpp(GenerationRun &run, quint8 /*line*/)
{
    writeCppCopies(run.context().outputFolder);
    return RunFlow::Continue;
}

constexpr std::array rows{
    RunRow{.applies = hasNamesToDefine,
           .make = makeIndices,
           .notWritable = "The file in gen_indices.h in %1 is not writable"},
    RunRow{.applies = hasCANopen,
           .lines = RunLines::CANopen,
           .suffix = "_co",
           .make = makeGenerator<TextDocGenerator>,
           .started = "Generation of textual object dictionary documentation in %1 started"},
    RunRow{.applies = hasCANopen,
           .lines = RunLines::CANopen,
           .suffix = "_co",
           .make = makeGenerator<HTMLGenerator>,
           .started = "Generation of HTML object dictionary documentation in %1 started"},
    RunRow{.applies = isPlainCANopen, .make = makeDictionary, .after = tellWarnings},
    RunRow{.applies = isPlainCANopen, .step = writeVirtualDictionary},
    // The forms differ in what they say of a file that they cannot write.
    RunRow{.applies = isMultiProtocolV4,
           .make = makeMultiProtocol,
           .started = "Generation of gen_mp.c in %1 started",
           .after = tellWarnings},
    RunRow{.applies = isMultiProtocolClassic,
           .make = makeMultiProtocol,
           .started = "Generation of gen_mp.c in %1 started",
           .notWritable = "The file gen_mp.c in %1 is not writable",
           .after = tellWarnings},
    RunRow{.applies = isMultiProtocol,
           .lines = RunLines::J1939,
           .lineByLine = true,
           .suffix = "_j1939",
           .make = makeGenerator<J1939TextDocGenerator>,
           .started = "Generation of textual PGN documentation in %1 started"},
    RunRow{.applies = isMultiProtocol,
           .lines = RunLines::RawCAN,
           .lineByLine = true,
           .suffix = "_rawcan",
           .make = makeGenerator<RawCANTextDocGenerator>,
           .started = "Generation of raw CAN text documentation in %1 started"},
    RunRow{.applies = isMultiProtocol,
           .lines = RunLines::RawCAN,
           .lineByLine = true,
           .make = makeGenerator<RawCANDBCGenerator>,
           .started = "Generation of raw CAN DBC file in %1 started"},
    RunRow{.applies = isMultiProtocol,
           .lines = RunLines::RawCAN,
           .lineByLine = true,
           .suffix = "_rawcan",
           .make = makeGenerator<RawCANHTMLGenerator>,
           .started = "Generation of raw CAN HTML documentation in %1 started"},
    RunRow{.applies = isMultiProtocol,
           .lines = RunLines::J1939,
           .suffix = "_j1939",
           .make = makeGenerator<J1939HTMLGenerator>,
           .started = "Generation of HTML pgn documentation in %1 started"},
    RunRow{.applies = isMultiProtocol,
           .lines = RunLines::J1939,
           .make = makeGenerator<DBCGenerator>,
           .started = "Generation of DBC_file in %1 started"},
    RunRow{.applies = hasSrdos, .make = makeSrdo, .after = endWithoutTemplate},
    RunRow{.make = makeDefines, .after = tellUserSection},
    RunRow{.applies = hasProps, .step = writeProps},
    RunRow{.applies = isJ1939Only, .make = makeInForm<PGNGenerator, PGNGeneratorV4>},
    RunRow{.applies = hasSdoServer,
           .make = makeServerDictionary,
           .started = "Generation of gen_objdict.c for CAM11/CAM21 SDO server in %1 started"},
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
           .started = "Generation of HTML pgn documentation in %1 started"},
    RunRow{.applies = isJ1939Only,
           .lines = RunLines::J1939,
           .make = makeGenerator<DBCGenerator>,
           .started = "Generation of DBC_file in %1 started"},
    RunRow{.applies = isJ1939Only, .step = removeStaleFiles},
    RunRow{.applies = hasMessages, .make = makeInForm<ExtDeclGenerator, ExtDeclGeneratorV4>},
    RunRow{.applies = hasSafetyGroups,
           .make = makeInForm<SDMGenerator, SDMGeneratorV4>,
           .started = "Generation of file in %1 started",
           .notWritable = "The file in %1 is not writable"},
    RunRow{.applies = hasIndications, .make = makeIndications, .started = "Generation of gen_indication in %1 started"},
    RunRow{.applies = hasIndications,
           .lines = RunLines::CANopen,
           .make = makeGenerator<CSVGenerator>,
           .started = "Generation of CSV file (deprecated) in %1 started"},
    RunRow{.applies = hasIndications,
           .lines = RunLines::CANopen,
           .make = makeIcsv,
           .started = "Generation of ICSV file in %1 started"},
    RunRow{.applies = hasIndications, .lines = RunLines::CANopen, .step = generateEdsFiles},
    RunRow{.applies = hasFdDescription,
           .lines = RunLines::CANopen,
           .make = makeGenerator<XDDGenerator>,
           .started = "Generation of XDD file in %1 started",
           .notWritable = "The XDD file %2 in %1 is not writable"},
    RunRow{.applies = wantsCppCopies, .step = copyToCpp},
};

} // namespace

std::span<const RunRow> runTable()
{
    return rows;
}
