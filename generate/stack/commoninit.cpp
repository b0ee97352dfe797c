#include "generate/stack/commoninit.h"

#include "generate/codewriter.h"
#include "generate/dialect.h"
#include "generate/stack/linesettings.h"
#include "store/objectdatabase.h"

using namespace Qt::StringLiterals;

namespace {

CommonInit::Protocols protocolsOfType(quint32 typeCode)
{
    switch (typeCode) {
    case 1:
        return {u"CANOPEN"_s};
    case 2:
        return {u"J1939"_s};
    case 4:
        return {u"RAWCAN"_s};
    case 5:
        return {u"J1939"_s, u"CANOPEN"_s};
    case 6:
        return {u"CANOPEN"_s, u"RAWCAN"_s};
    case 7:
        return {u"J1939"_s, u"RAWCAN"_s};
    default:
        return {u"UNKNOWN"_s};
    }
}

/// The protocols of all lines, each line's mask with the comma behind it.
QString protocolRow(const CommonInit &init, const Dialect &dialect)
{
    QString row;
    for (const CommonInit::Protocols &protocols : init.lines)
        row += dialect.protocol + protocols.join(u" | "_s + dialect.protocol) + u", "_s;
    return row;
}

} // namespace

CommonInit CommonInit::collect(ObjectDataBase &store)
{
    using LineSettings::number;
    const bool udsServer = number(store, u"udsserver_supported"_s) == 1;
    const bool uds = udsServer || number(store, u"udsclient_supported"_s) == 1;
    CommonInit init;
    for (const quint8 line : LineSettings::stackLines(store)) {
        Protocols protocols = protocolsOfType(number(store, u"line%1type"_s.arg(line)));
        if (uds)
            protocols.append(u"UDS"_s);
        init.lines.append(protocols);
    }
    init.isoTp = udsServer || number(store, u"isotp_supported"_s) == 1;
    init.fd = number(store, u"canfd_supported"_s) >= 1;
    return init;
}

void writeCommonInit(CodeWriter &out, const CommonInit &init, const Dialect &dialect)
{
    const bool coreForm = dialect.has(Point::CoreCommonInit);
    if (coreForm)
        out(u"/* core initialization settings */");
    out(uR"(
        ${TYPE}commonInitVars = {
        	${SEVERAL}u,
        	{ ${CORE}REC_BUFFER_COUNTS },
        	{ ${CORE}TR_BUFFER_COUNTS },
        	{ ${CORE}COB_COUNTS }, 
        	{ ${PROTOCOLS}},
        )",
        {{"TYPE", dialect.commonInitType},
         {"SEVERAL", Code::dec(init.lines.size() > 1 ? 1 : 0)},
         {"CORE", dialect.core},
         {"PROTOCOLS", protocolRow(init, dialect)}});
    if (init.isoTp)
        out(uR"(
            	{ ISOTP_CLIENT_COUNTS },
            	{ ISOTP_SERVER_COUNTS }${COMMA}
            )",
            {{"COMMA", coreForm || init.fd ? u","_s : QString()}});
    if (init.fd)
        out(u"\t{ ${MODES} }", {{"MODES", QStringList(init.lines.size(), u"CO_TRUE"_s).join(", "_L1)}});
    out(u"};\n");
}
