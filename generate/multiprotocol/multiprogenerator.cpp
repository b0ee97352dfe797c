#include "generate/multiprotocol/multiprogenerator.h"

#include "generate/base/codewriter.h"
#include "generate/base/dialect.h"
#include "generate/common/commongeneratorhelper.h"
#include "generate/common/sourceopening.h"
#include "generate/j1939/externdecl.h"
#include "generate/j1939/pgnsections.h"
#include "generate/model/linesettings.h"
#include "generate/multiprotocol/rawcansections.h"
#include "generate/names/indicationpointers.h"
#include "generate/names/indications.h"
#include "generate/objdict/objdictsections.h"
#include "generate/objdict/userheader.h"
#include "generate/startup/loadindication.h"
#include "store/objectdatabase.h"
#include "store/settings.h"

#include <algorithm>
#include <optional>

using namespace Qt::StringLiterals;

namespace {

/// What the file is written from.
struct Content
{
    SourceOpening opening = {};
    bool externDeclarations = true;
    std::optional<ExternDeclarations> ownDeclarations = {}; ///< of a bootloader, in place of gen_extern_decl.h
    PgnTables pgns = {};
    DictionaryTables dictionary = {};
};

/// A bootloader of one line gets no gen_extern_decl.h; it may map variables all the same.
void collectDeclarations(Content &content, ObjectDataBase &store, const MultiProtocols &protocols, bool bootloader,
                         const Dialect &dialect)
{
    content.externDeclarations = !protocols.udsOnly && !bootloader;
    if (bootloader && !protocols.udsOnly && content.pgns.usesApplicationVariables)
        content.ownDeclarations = ExternDeclarations::collect(store, dialect);
}

/// The protocols that the file starts. A bootloader's header leaves out raw CAN, which its stack then does not have,
/// and no line has CANopen where none of its lines takes part.
MultiProtocols startedProtocols(ObjectDataBase &store, MultiProtocols protocols, const Dialect &dialect)
{
    if (dialect.has(Point::BootloaderBuffers) && Settings(store).isOn(u"uds_bl_setting"_s))
        protocols.rawCan = false;
    protocols.canOpen = std::ranges::any_of(LineSettings::partakingLines(store),
                                            [&](quint8 line) { return RunContext::protocolsOf(store, line).canOpen; });
    return protocols;
}

/// A bootloader has no raw CAN; what the project has of it is not to vanish without a word.
QStringList leftOutCanIds(ObjectDataBase &store, const QString &fileName)
{
    QStringList warnings;
    for (const quint8 line : LineSettings::stackLines(store)) {
        if (RunContext::protocolsOf(store, line).rawCan && !store.getAllCANIDs(line).isEmpty())
            warnings.append(
                u"Warning: The raw CAN-IDs of line %1 are not part of %2, since uds_bl_setting is set."_s.arg(
                    QString::number(line), fileName));
    }
    return warnings;
}

void writeIncludes(CodeWriter &out, ObjectDataBase &store, const Content &content, const MultiProtocols &protocols,
                   const Dialect &dialect)
{
    const SourceOpening &opening = content.opening;
    SourceSections::stdlibInclude(out, opening);
    out(u"#include <gen_define.h>");
    if (protocols.rawCanOnly())
        out(u"#include <rawcan_rawcan.h>");
    else
        out(uR"(
            #include <core_common.h>
            #include <mp_mp.h>
            )");
    SourceSections::udsIncludes(out, opening, dialect);
    const bool staticUds = opening.staticUdsIndications && dialect.has(Point::UdsIndicationHeader);
    if (staticUds)
        out(u"#include <uds_indication.h>");
    // The functions that the static pointers of the UDS server name are declared there too.
    if (protocols.canOpen || (staticUds && Indications::namesUdsFunction(store)))
        out(u"#include <gen_indication.h>");
    out(uR"(
        #include <icore_commtask.h>
        #include <icore_cobhandler.h>
        #include <icore_queue.h>
        )");
    if (content.externDeclarations)
        out(u"#include <gen_extern_decl.h>");
    if (Settings(store, Settings::Table::J1939).onAnyLine(u"cia510serversupport"_s))
        out(uR"(
            #include <j1939_cam11_cam21.h>
            #include <ico_odaccess.h>
            )");
    if (Settings(store).isOn(u"generate_string_defaults"_s))
        out(u"#include <gen_user.h>");
    out(u"");
    if (content.ownDeclarations) {
        writeVariables(out, *content.ownDeclarations, DeclarationForm::Declaration);
        out(u"");
    }
}

void writeGuards(CodeWriter &out, ObjectDataBase &store, const Content &content, const MultiProtocols &protocols,
                 const Dialect &dialect)
{
    if (protocols.canOpen)
        SourceSections::applicationIncludes(out, content.opening);
    SourceSections::specifierGuards(out, dialect);
    SourceSections::watchdogGuard(out, dialect);
    if (protocols.canOpen)
        writeIndicationPointers(out, store, dialect);
    writeUdsIndicationPointers(out, store, dialect);
    if (protocols.canOpen)
        ObjDictSections::objectCounts(out, content.dictionary);
}

void writePgnTables(CodeWriter &out, const PgnTables &pgns, const Dialect &dialect)
{
    PgnSections::writeManagedVariables(out, pgns);
    PgnSections::writeMappings(out, pgns, dialect);
    PgnSections::writeIdentities(out, pgns, dialect);
    PgnSections::writeTransmitConfigs(out, pgns, dialect);
    PgnSections::writeReceiveConfigs(out, pgns, dialect);
    PgnSections::writeConfigs(out, pgns);
}

void writeDictionary(CodeWriter &out, const DictionaryTables &dictionary, const Dialect &dialect)
{
    ObjDictSections::managedVariables(out, dictionary, dialect);
    ObjDictSections::constants(out, dictionary, dialect);
    ObjDictSections::applicationVariables(out, dictionary, dialect);
    ObjDictSections::description(out, dictionary, dialect);
    ObjDictSections::assign(out, dictionary, dialect);
    ObjDictSections::mappingTables(out, dictionary, dialect);
    ObjDictSections::dataVariables(out, dictionary, dialect);
}

} // namespace

QString MultiProGenerator::fileName() const
{
    switch (sourceFile()) {
    case SourceFile::GenMpInit:
        return u"gen_uds.c"_s;
    case SourceFile::GenMpCanIds:
        return u"gen_rawcan.c"_s;
    default:
        return u"gen_mp.c"_s;
    }
}

SourceFile MultiProGenerator::sourceFile() const
{
    if (protocols_.udsOnly)
        return SourceFile::GenMpInit;
    return protocols_.rawCanOnly() ? SourceFile::GenMpCanIds : SourceFile::GenMp;
}

void MultiProGenerator::write(Utf8Sink &sink)
{
    const Dialect &dialect = Dialect::of(form_);
    ObjectDataBase &store = *database();
    const bool multiLine = LineSettings::severalLines(*database());
    const MultiProtocols protocols = startedProtocols(store, protocols_, dialect);
    const auto scope = protocols.rawCan ? PgnTables::Scope::AllMessages : PgnTables::Scope::J1939Only;
    Content content{.opening = SourceOpening::of(store, outputFolder()),
                    .pgns = PgnTables::collect(store, dialect, multiLine, scope)};
    content.dictionary = collectDictionaryTables(store, {.compactDescription = compactDescription_});
    if (!content.dictionary.error.isEmpty()) {
        fail(OutputError, content.dictionary.error);
        return;
    }
    if (protocols.canOpen)
        warn(mappingWarnings(content.dictionary));
    const bool bootloader = Settings(store).isOn(u"uds_bl_setting"_s) && !isMultiLine();
    collectDeclarations(content, store, protocols, bootloader, dialect);
    if (!protocols.rawCan || protocols.udsOnly)
        warn(leftOutCanIds(store, fileName()));

    CodeWriter out(sink);
    const CommonGeneratorHelper common(database(), dialect);
    StackInit canOpen = StackInit::collect(store, content.dictionary);
    settleMasters(canOpen);
    const MpStartUp startUp = MpStartUp::collect(store, protocols, content.pgns, content.dictionary, canOpen);
    const MpStartUpWriter startUpWriter(out, startUp, common, dialect);

    writeFileHeader(out, sourceFile(), form_, baseName());
    writeIncludes(out, store, content, protocols, dialect);
    startUpWriter.writePrototypes();
    writeGuards(out, store, content, protocols, dialect);
    Q_EMIT progress(25);
    if (!protocols.udsOnly)
        writePgnTables(out, content.pgns, dialect);
    if (protocols.canOpen)
        writeDictionary(out, content.dictionary, dialect);
    if (protocols.rawCan && !protocols.udsOnly)
        RawCanSections::writeConfigs(out, content.pgns, dialect);
    Q_EMIT progress(75);
    startUpWriter.write();
    if (protocols.canOpen)
        writePredefinedSet(out, PredefinedSet::collect(store, content.dictionary), dialect);
}

void MultiProGenerator::writeCompanions()
{
    const bool multiLine = LineSettings::severalLines(*database());
    const bool wanted = Settings(*database()).isOn(u"generate_string_defaults"_s);
    const QString error = updateUserHeader(outputFolder(), baseName(), wanted, multiLine);
    if (!error.isEmpty())
        fail(OutputError, error);
}
