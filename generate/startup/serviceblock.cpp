// The service block of a line's start-up: the calls of the stack in the order of the form.

#include "generate/base/codewriter.h"
#include "generate/base/dialect.h"
#include "generate/common/commongeneratorhelper.h"
#include "generate/startup/stackinit.h"

using namespace Qt::StringLiterals;

namespace {

constexpr auto sdoServerCount = "CO_SDO_SERVER_CNT"_L1;

} // namespace

QString StackInitWriter::arguments(const QStringList &own) const
{
    return (init_.multiLine ? QStringList(u"canLine"_s) + own : own).join(", "_L1);
}

void StackInitWriter::writeServices(const LineServices &line) const
{
    for (const Service service : init_.multiLine ? lineFunctionOrder() : singleLineOrder())
        writeService(line, service);
}

void StackInitWriter::writeService(const LineServices &line, Service service) const
{
    switch (service) {
    case Service::SdoServer:
        init_.multiLine ? writeFirstSdoServerOfLine() : writeFirstSdoServer();
        break;
    case Service::SdoClient:
        if (line.usdoClient)
            writeUsdoClient();
        break;
    case Service::LoadParameter:
        writeLoadParameter();
        return;
    case Service::LssAndNmt:
        line.nmt == NmtRole::Dynamic ? writeDynamicMaster(line) : writeFixedMaster(line);
        return;
    default:
        break;
    }
    writeCalls(line, service);
}

void StackInitWriter::writeCalls(const LineServices &line, Service service) const
{
    // These two report nothing that would stop the start-up.
    const bool unchecked = service == Service::Led || service == Service::IdNegotiation;
    for (const StackCall &call : line.of(service)) {
        if (!unchecked)
            writeCall(call);
        else
            out_(u"    ${FUNCTION}(${ARGUMENTS});${GAP}", {{"FUNCTION", call.function},
                                                           {"ARGUMENTS", arguments(call.arguments)},
                                                           {"GAP", service == Service::Led ? u"\n"_s : QString()}});
    }
}

void StackInitWriter::writeCall(const StackCall &call, int depth) const
{
    const QString indent(qsizetype{4} * (depth + 1), u' ');
    if (!call.comment.isEmpty())
        out_(u"${IN}/* ${TEXT} */", {{"IN", indent}, {"TEXT", call.comment}});
    statements_.call(indent, u"%1(%2)"_s.arg(call.function, arguments(call.arguments)));
}

/// The first server of a device with one line: in FD mode it is a USDO server.
void StackInitWriter::writeFirstSdoServer() const
{
    if (!init_.fd) {
        writeCall({u"coSdoServerInit"_s, {u"1u"_s}});
        return;
    }
    out_(u"    if (commonInitVars.fdMode[0] == CO_TRUE) {");
    writeCall({u"coUsdoServerInit"_s}, 1);
    statements_.guarded(sdoServerCount, [this] {
        out_(u"    } else {");
        writeCall({u"coSdoServerInit"_s, {u"1"_s}}, 1);
    });
    out_(u"    }");
}

/// The same for one line of several. Without modes each line is in FD mode.
void StackInitWriter::writeFirstSdoServerOfLine() const
{
    if (!init_.fd) {
        writeCall({u"coSdoServerInit"_s, {u"1u"_s}});
        return;
    }
    out_(uR"(
            if (pModes != NULL) {
                if (pModes[canLine] == CO_TRUE) {
        )");
    writeCall({u"coUsdoServerInit"_s}, 2);
    statements_.guarded(sdoServerCount, [this] {
        out_(u"        } else {");
        writeCall({u"coSdoServerInit"_s, {u"1"_s}}, 2);
    });
    out_(uR"(
                }
            } else {
        )");
    writeCall({u"coUsdoServerInit"_s}, 1);
    out_(u"    }");
}

void StackInitWriter::writeUsdoClient() const
{
    out_(u"    if (commonInitVars.fdMode[${LINE}] == CO_TRUE) {", {{"LINE", init_.multiLine ? u"canLine"_s : u"0"_s}});
    writeCall({u"coUsdoClientInit"_s}, 1);
    out_(u"    }");
}

void StackInitWriter::writeLoadParameter() const
{
    out_(uR"(

            /* initialize load parameter function */
        #if defined(CO_EVENT_DYNAMIC_STORE) || defined(CO_EVENT_PROFILE_STORE)
        )");
    statements_.call(u"    "_s, u"coEventRegister_LOAD_PARA(pLoadFunction)"_s);
    out_(u"#else");
    if (init_.storeFunction)
        out_(u"    (void)pLoadFunction;");
    else
        out_(uR"(
                if (pLoadFunction != NULL) {
                    return(${ERROR});
                }
            )",
             {{"ERROR", dialect_.parameterError}});
    out_(u"#endif /* CO_EVENT_DYNAMIC_STORE || CO_EVENT_PROFILE_STORE */");
}

void StackInitWriter::writeDynamicMaster(const LineServices &line) const
{
    out_(uR"(
            /* Check dynamic options for master flag */
            if (pCoOptions->master == 1) {
        )");
    if (line.lss)
        writeCall({u"coLssMasterInit"_s, {}, u"initialize LSS Master"_s}, 1);
    out_(u"        /* initialize NMT master */ ");
    writeCall({u"coNmtInit"_s, {u"1u"_s}}, 1);
    out_(u"    } else {");
    if (line.lss)
        writeCall({u"coLssInit"_s, {}, u"initialize LSS Slave"_s}, 1);
    out_(u"        /* initialize NMT slave */ ");
    writeCall({u"coNmtInit"_s, {u"0u"_s}}, 1);
    out_(u"    }");
}

void StackInitWriter::writeFixedMaster(const LineServices &line) const
{
    if (line.lss && line.lssMaster) {
        writeCall({u"coLssMasterInit"_s, {}, u"initialize LSS Master"_s});
    } else if (line.lss) {
        out_(uR"(
                /* initialize LSS Slave */
                retVal =  coLssInit(${ARGUMENTS});
            )",
             {{"ARGUMENTS", arguments({})}});
        statements_.check(u"    "_s);
    }
    const bool slave = line.nmt == NmtRole::Slave;
    out_(u"    /* initialize NMT ${ROLE} */ ", {{"ROLE", slave ? u"slave"_s : u"master"_s}});
    writeCall({u"coNmtInit"_s, {slave ? u"0u"_s : u"1u"_s}});
}
