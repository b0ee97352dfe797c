#include "generate/multiprotocol/rawcansections.h"

#include "generate/base/codewriter.h"
#include "generate/base/dialect.h"
#include "generate/j1939/pgntables.h"

using namespace Qt::StringLiterals;
using Code::dec;
using Code::hex;

namespace {

using Messages = QList<PgnTables::Message>;

quint64 count(const Messages &messages)
{
    return static_cast<quint64>(messages.size());
}

void writeMapping(CodeWriter &out, const PgnTables::Message &message, const Dialect &dialect)
{
    const bool pointers = dialect.has(Point::PointerTables);
    if (message.items.isEmpty()) {
        out(u"\tNULL, /* no mappings */");
        if (pointers)
            out(u"\tNULL,");
        return;
    }
    out(u"\t&${MAPPING}[0], ", {{"MAPPING", message.mapping}});
    if (pointers)
        out(u"\t&${MAPPING}_data[0], ", {{"MAPPING", message.mapping}});
}

void writeTransmitted(CodeWriter &out, const Messages &messages, const QString &suffix, const Dialect &dialect)
{
    out(u"static RAWCAN_TR_CONFIG_T\trawcanTransmitConfig${SUFFIX}[${COUNT}]= {",
        {{"SUFFIX", suffix}, {"COUNT", dec(count(messages))}});
    for (const PgnTables::Message &message : messages) {
        out(uR"(
            {
            	${ID}u, /* CANID number 0x${HEX} */ 
            )",
            {{"ID", dec(message.number)}, {"HEX", hex(message.number)}});
        writeMapping(out, message, dialect);
        out(uR"(
            	${CYCLE}u, /* cycletime in ms */ 
            	${INHIBIT}u, /* inhibit time in ms */ 
            	${COUNT}u /* number of mappings */
            },
            )",
            {{"CYCLE", dec(message.cycleMs)},
             {"INHIBIT", dec(message.inhibitMs)},
             {"COUNT", dec(static_cast<quint64>(message.items.size()))}});
    }
    out(u"};");
}

void writeReceived(CodeWriter &out, const Messages &messages, const QString &suffix, const Dialect &dialect)
{
    out(u"static RAWCAN_REC_CONFIG_T\trawcanReceiveConfig${SUFFIX}[${COUNT}]= {",
        {{"SUFFIX", suffix}, {"COUNT", dec(count(messages))}});
    for (const PgnTables::Message &message : messages) {
        out(uR"(
            {
            	${ID}u, /* CANID number 0x${HEX} */ 
            	0u, /*  RX ignore mask */ 
            )",
            {{"ID", dec(message.number)}, {"HEX", hex(message.number)}});
        writeMapping(out, message, dialect);
        out(uR"(
            	${CYCLE}u, /* monitoring time in ms (0 .. acyclic) */ 
            	${COUNT}u /* number of mappings */
            },
            )",
            {{"CYCLE", dec(message.cycleMs)}, {"COUNT", dec(static_cast<quint64>(message.items.size()))}});
    }
    out(u"};");
}

QString reference(const QString &name, const Messages &messages)
{
    return messages.isEmpty() ? u"0, "_s : u"&%1[0],"_s.arg(name);
}

} // namespace

void RawCanSections::writeConfigs(CodeWriter &out, const PgnTables &tables, const Dialect &dialect)
{
    out(uR"(

        /* configuration of raw CAN settings */
        )");
    for (const PgnTables::Line &line : tables.lines) {
        if (!line.hasRawCan)
            continue;
        out(u"/*  TX CANID definitions */");
        if (!line.transmittedCanIds.isEmpty())
            writeTransmitted(out, line.transmittedCanIds, line.suffix, dialect);
        out(u"/*  RX CANID definitions */");
        if (!line.receivedCanIds.isEmpty())
            writeReceived(out, line.receivedCanIds, line.suffix, dialect);
        out(uR"(
            /* rawCAN configuration */
            RAWCAN_CONFIG_T  rawcanConfig${SUFFIX}= {
            	${TRANSMITTED}
            	${TRANSMITTED_COUNT}u,
            	${RECEIVED}
            	${RECEIVED_COUNT}u
            };
            )",
            {{"SUFFIX", line.suffix},
             {"TRANSMITTED", reference(u"rawcanTransmitConfig"_s + line.suffix, line.transmittedCanIds)},
             {"TRANSMITTED_COUNT", dec(count(line.transmittedCanIds))},
             {"RECEIVED", reference(u"rawcanReceiveConfig"_s + line.suffix, line.receivedCanIds)},
             {"RECEIVED_COUNT", dec(count(line.receivedCanIds))}});
    }
}

void RawCanSections::writeServiceValues(CodeWriter &out, const Dialect &dialect)
{
    out(uR"(
        /* raw CAN service initialization values */
        ${CORE}CONST RAWCAN_SERVICE_INIT_VAL_T	rawcanInitVars = {
        	{ RAWCAN_RECEIVE_COUNTS },
        	{ RAWCAN_TRANSMIT_COUNTS }
        };

        )",
        {{"CORE", dialect.core}});
}
