#include "generate/j1939/pgngenerator.h"

#include "generate/base/codewriter.h"
#include "generate/base/dialect.h"
#include "generate/common/commoninit.h"
#include "generate/common/sourceopening.h"
#include "generate/common/startupstatements.h"
#include "generate/common/udsblocks.h"
#include "generate/j1939/externdecl.h"
#include "generate/j1939/pgnsections.h"
#include "generate/model/linesettings.h"
#include "store/objectdatabase.h"
#include "store/settings.h"

#include <optional>

using namespace Qt::StringLiterals;

namespace {

/// What the file tells beyond its tables.
struct Content
{
    SourceOpening opening = {};
    PgnTables tables = {};
    CommonInit commonInit = {};
    std::optional<UdsBlocks> uds = {};
    std::optional<ExternDeclarations> ownDeclarations = {}; ///< in place of those of gen_extern_decl.h
    bool formerServiceValues = false;
};

Content collect(ObjectDataBase &store, const QString &outputFolder, const Dialect &dialect, bool multiLine)
{
    const Settings settings(store);
    Content content{
        .opening = SourceOpening::of(store, outputFolder),
        .tables = PgnTables::collect(store, dialect, multiLine, PgnTables::Scope::J1939Only),
        .commonInit = CommonInit::collect(store),
        .uds = UdsBlocks::collect(store),
        .formerServiceValues = dialect.has(Point::FormerServiceValues) && !settings.isOn(u"new_init_structure"_s),
    };
    // A bootloader gets no gen_extern_decl.h; it may map variables all the same.
    const bool bootloader = settings.isOn(u"uds_bl_setting"_s) && content.commonInit.lines.size() == 1;
    if (bootloader)
        content.ownDeclarations = ExternDeclarations::collect(store, dialect);
    return content;
}

void writeOpening(CodeWriter &out, const Content &content, const Dialect &dialect)
{
    SourceSections::stdlibInclude(out, content.opening);
    out(uR"(
        #include <gen_define.h>
        #include <j1939_j1939.h>
        )");
    SourceSections::udsIncludes(out, content.opening, dialect);
    if (!content.ownDeclarations)
        out(u"#include <gen_extern_decl.h>");
    else if (content.tables.usesApplicationVariables)
        writeVariables(out, *content.ownDeclarations, DeclarationForm::Declaration);
    SourceSections::memoryGuard(out, dialect);
    SourceSections::watchdogGuard(out, dialect);
}

/// Copies the modes of the caller into the common structure.
void writeModes(CodeWriter &out, const StartUpStatements &statements, bool multiLine)
{
    if (!multiLine) {
        statements.modes(u"\t"_s, u"\t"_s, {u"commonInitVars"_s}, {u"0"_s});
        out(u"\t(void)i;");
        return;
    }
    out(uR"(
        	if (pModes != NULL) {
        		for (i = 0; i < CO_MULTI_LINE_CNT; i++)  {
        			commonInitVars.fdMode[i] = pModes[i];
        		}
        	}
        )");
}

void writeInitFunction(CodeWriter &out, const Content &content, const Dialect &dialect)
{
    const bool fd = content.commonInit.fd;
    const bool multiLine = content.tables.multiLine;
    const StartUpStatements statements(out, dialect);
    out(uR"(
        /*  J1939 stack initialization function */
        RET_T j1939StackInit(
        	${PARAMETER}
        )
        {
        RET_T retVal;
        )",
        {{"PARAMETER", fd ? u"BOOL_T *pModes"_s : u"void"_s}});
    if (fd)
        out(u"UNSIGNED8 i;");
    PgnSections::writeServiceValues(out,
                                    {.name = u"serviceInitVars"_s,
                                     .former = content.formerServiceValues,
                                     .safety = content.tables.safety,
                                     .fd = fd},
                                    dialect);
    out(u"");
    if (fd)
        writeModes(out, statements, multiLine);
    statements.call(u"\t"_s, dialect.stackInit + u"(&commonInitVars)"_s);
    if (content.uds)
        writeUdsInitCalls(out, *content.uds);
    statements.call(u"\t"_s, u"j1939StackInit_common(&serviceInitVars)"_s);
    if (!content.tables.initialised)
        PgnSections::writeNameFields(out, content.tables);
    for (const PgnTables::Line &line : content.tables.lines)
        statements.call(u"\t"_s, u"j1939StackInit_line(&j1939Config%1)"_s.arg(line.suffix));
    out(uR"(
        return(RET_OK);
        }
        )");
}

} // namespace

QString PGNGenerator::fileName() const
{
    return u"gen_pgn.c"_s;
}

void PGNGenerator::write(Utf8Sink &sink)
{
    const Dialect &dialect = Dialect::of(form_);
    const Content content = collect(*database(), outputFolder(), dialect, LineSettings::severalLines(*database()));

    CodeWriter out(sink);
    writeFileHeader(out, SourceFile::GenPgn, form_, baseName());
    writeOpening(out, content, dialect);
    PgnSections::writeManagedVariables(out, content.tables);
    PgnSections::writeMappings(out, content.tables, dialect);
    PgnSections::writeTransmitConfigs(out, content.tables, dialect);
    PgnSections::writeReceiveConfigs(out, content.tables, dialect);
    PgnSections::writeIdentities(out, content.tables, dialect);
    PgnSections::writeConfigs(out, content.tables);
    writeCommonInit(out, content.commonInit, dialect);
    if (content.uds)
        writeUdsBlocks(out, *content.uds, dialect);
    writeInitFunction(out, content, dialect);
}
