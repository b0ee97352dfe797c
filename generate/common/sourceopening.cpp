#include "generate/common/sourceopening.h"

#include "generate/base/codewriter.h"
#include "generate/base/dialect.h"
#include "generate/model/dictionarytables.h"
#include "store/objectdatabase.h"
#include "store/settings.h"

#include <QDir>
#include <QFile>

using namespace Qt::StringLiterals;

SourceOpening SourceOpening::of(ObjectDataBase &store, const QString &outputFolder)
{
    const Settings settings(store);
    return {
        .stdlib = !QFile::exists(QDir(outputFolder).filePath(u"no_stdlib_include.txt"_s)),
        .uds = settings.isOn(u"udsserver_supported"_s) || settings.isOn(u"udsclient_supported"_s),
        .staticUdsIndications = settings.isOn(u"uds_static_indication"_s),
        .coreHeaders = settings.isOn(u"use_core_headers"_s),
        .applicationHeaders = settings.text(u"applicationheader"_s).trimmed().split(u' ', Qt::SkipEmptyParts),
    };
}

void SourceSections::stdlibInclude(CodeWriter &out, const SourceOpening &opening)
{
    if (opening.stdlib)
        out(u"#include <stdlib.h>\n");
}

void SourceSections::udsIncludes(CodeWriter &out, const SourceOpening &opening, const Dialect &dialect)
{
    if (!opening.uds)
        return;
    out(uR"(
        #include <${ISOTP}>
        #include <uds_uds.h>
        )",
        {{"ISOTP", dialect.isoTpHeader}});
}

QString SourceSections::dataTypeHeader(const SourceOpening &opening, const Dialect &dialect)
{
    return opening.coreHeaders ? Dialect::v4().dataTypeHeader : dialect.dataTypeHeader;
}

void SourceSections::stackIncludes(CodeWriter &out, const SourceOpening &opening, const DictionaryTables &tables,
                                   const Dialect &dialect)
{
    stdlibInclude(out, opening);
    out(u"#include <gen_define.h>");
    if (tables.options.serverMode) {
        out(uR"(
            #include <${TYPES}>
            #include <co_odaccess.h>
            #include <j1939_cam11_cam21.h>
            )",
            {{"TYPES", dataTypeHeader(opening, dialect)}});
        udsIncludes(out, opening, dialect);
        return;
    }
    out(u"#include <co_canopen.h>");
    udsIncludes(out, opening, dialect);
    if (opening.staticUdsIndications && dialect.has(Point::UdsIndicationHeader))
        out(u"#include <uds_indication.h>");
    out(u"#include <gen_indication.h>");
}

void SourceSections::linePrototypes(CodeWriter &out, const DictionaryTables &tables, const Dialect &dialect)
{
    if (!tables.multiLine || tables.options.serverMode)
        return;
    const QString modes = tables.canFd ? u", BOOL_T *pModes"_s : QString();
    out(u"/* these functions may be used by the application to initialize only a sub set of all lines.*/");
    if (!dialect.has(Point::LinePrototypesOnly)) {
        out(u"RET_T coCanOpenStackInit_common(CO_EVENT_STORE_T pLoadFunction${MODES});", {{"MODES", modes}});
        out(u"RET_T coCanOpenStackInit_line(UNSIGNED8 canLine, CO_INIT_OPTION_T *pCoOptions${MODES});",
            {{"MODES", modes}});
    }
    for (const quint8 line : tables.lineList)
        out(u"RET_T coCanOpenStackInit_line${LINE}(UNSIGNED8 canLine, CO_INIT_OPTION_T *pCoOptions${MODES});",
            {{"LINE", Code::dec(line)}, {"MODES", modes}});
    out(u"RET_T coCanOpenStackInit_finish(void);\n");
}

void SourceSections::applicationIncludes(CodeWriter &out, const SourceOpening &opening)
{
    if (opening.applicationHeaders.isEmpty())
        return;
    out(u"/* application header file(s) */");
    for (const QString &header : opening.applicationHeaders)
        out(u"#include \"${HEADER}\"", {{"HEADER", header}});
    out(u"");
}

void SourceSections::memoryGuard(CodeWriter &out, const Dialect &dialect)
{
    out(uR"(
        /* definition of memory specifier */
        #ifndef ${CORE}CONST
        #define ${CORE}CONST const
        #endif

        )",
        {{"CORE", dialect.core}});
}

void SourceSections::specifierGuards(CodeWriter &out, const Dialect &dialect)
{
    memoryGuard(out, dialect);
    out(uR"(
        /* definition of compiler-specific storage classes */
        #ifndef ${CORE}STORAGE_CLASS
        #define ${CORE}STORAGE_CLASS
        #endif
        #ifndef ${CORE}CONST_STORAGE_CLASS
        #define ${CORE}CONST_STORAGE_CLASS
        #endif

        )",
        {{"CORE", dialect.core}});
}

void SourceSections::watchdogGuard(CodeWriter &out, const Dialect &dialect)
{
    out(uR"(
        /* definition of watchdog handle during initialization */
        #ifndef ${CORE}HANDLE_WATCHDOG
        #define ${CORE}HANDLE_WATCHDOG
        #endif /* ${CORE}HANDLE_WATCHDOG */


        )",
        {{"CORE", dialect.core}});
}
