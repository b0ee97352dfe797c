#include "generate/common/commoninit.h"

#include "generate/base/codewriter.h"
#include "generate/base/dialect.h"
#include "generate/model/linesettings.h"
#include "store/objectdatabase.h"
#include "store/settings.h"

using namespace Qt::StringLiterals;

namespace {

/// A line's protocols in the order of its mask.
CommonInit::Protocols wordsOf(const LineProtocols &line)
{
    CommonInit::Protocols words;
    if (line.j1939)
        words.append(u"J1939"_s);
    if (line.canOpen)
        words.append(u"CANOPEN"_s);
    if (line.rawCan)
        words.append(u"RAWCAN"_s);
    return words.isEmpty() ? CommonInit::Protocols{u"UNKNOWN"_s} : words;
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
    const Settings settings(store);
    const bool udsServer = settings.isOn(u"udsserver_supported"_s);
    const bool uds = udsServer || settings.isOn(u"udsclient_supported"_s);
    CommonInit init;
    for (const quint8 line : LineSettings::stackLines(store)) {
        Protocols protocols = wordsOf(LineProtocols::ofLine(store, line));
        if (uds)
            protocols.append(u"UDS"_s);
        init.lines.append(protocols);
    }
    init.isoTp = udsServer || settings.isOn(u"isotp_supported"_s);
    init.fd = settings.isOn(u"canfd_supported"_s);
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
