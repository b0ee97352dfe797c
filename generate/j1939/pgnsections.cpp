#include "generate/j1939/pgnsections.h"

#include "generate/base/codewriter.h"
#include "generate/base/dialect.h"

#include <QStringBuilder>

#include <utility>

using namespace Qt::StringLiterals;
using Code::dec;
using Code::hex;

namespace {

/// What stands behind all elements of a list but the last.
QLatin1StringView separator(bool isLast)
{
    return isLast ? ""_L1 : ","_L1;
}

/// Between "static" and the type of a table that nothing changes.
QString specifier(const PgnTables &tables, const Dialect &dialect)
{
    return tables.dynamic ? QString() : u' ' % dialect.core % "CONST "_L1;
}

/// What stands in front of a pointer as an element of a table of pointers to bytes.
QLatin1StringView byteCast(const QString &pointer)
{
    return pointer.contains("_u8"_L1) ? ""_L1 : "(UNSIGNED8 *)"_L1;
}

/// The last columns of a mapping row: the data type, or whether it is a number and where it stands.
QString typeColumns(const PgnTables::Signal &signal, const Dialect &dialect)
{
    if (dialect.has(Point::PointerTables))
        return dialect.core % "DTYPE_"_L1 % signal.type;
    const auto flag = signal.isNumeric ? "J1939_MAP_FLAG_NUMERIC"_L1 : "J1939_MAP_FLAG_NONE"_L1;
    return flag % ", "_L1 % byteCast(signal.pointer) % signal.pointer;
}

void writeMapping(CodeWriter &out, const QString &name, const PgnTables::Message &message, const PgnTables &tables,
                  const Dialect &dialect)
{
    out(u"static ${CONST}${TYPE} ${NAME}[] = {",
        {{"CONST", specifier(tables, dialect)},
         {"TYPE", message.isCanId ? dialect.core % "MAPPING_T"_L1 : u"J1939_MAPPING_T"_s},
         {"NAME", name}});
    for (const PgnTables::Signal &signal : message.items)
        out(u"\t{ ${NUMBER}, ${POSITION}u, ${BITS}u, ${TYPE}${DYNAMIC} } /* ${COMMENT} */${COMMA}",
            {{"NUMBER", dec(signal.number)},
             {"POSITION", dec(signal.bitPosition)},
             {"BITS", dec(signal.bits)},
             {"TYPE", typeColumns(signal, dialect)},
             {"DYNAMIC", tables.dynamic ? ", 0u"_L1 : ""_L1},
             {"COMMENT", signal.comment},
             {"COMMA", separator(&signal == &message.items.last())}});
    out(u"};");
}

void writePointers(CodeWriter &out, const PgnTables::Message &message)
{
    out(u"static UNSIGNED8 * ${NAME}_data[] = {", {{"NAME", message.mapping}});
    for (const PgnTables::Signal &signal : message.items)
        out(u"\t${CAST}${POINTER}${COMMA}", {{"CAST", byteCast(signal.pointer)},
                                             {"POINTER", signal.pointer},
                                             {"COMMA", separator(&signal == &message.items.last())}});
    out(u"};");
}

void writeMessage(CodeWriter &out, const PgnTables::Message &message, const PgnTables &tables, const Dialect &dialect)
{
    // The configuration of a CAN-ID without data names no tables.
    if (message.isCanId && message.items.isEmpty())
        return;
    out(u"/* ${KIND} ${NUMBER} (0x${HEX}) ${NAME} */", {{"KIND", message.isCanId ? "canid"_L1 : "PGN"_L1},
                                                        {"NUMBER", dec(message.number)},
                                                        {"HEX", hex(message.number)},
                                                        {"NAME", message.name}});
    writeMapping(out, message.mapping, message, tables, dialect);
    if (dialect.has(Point::PointerTables))
        writePointers(out, message);
}

void writeConfig(CodeWriter &out, const PgnTables::Message &message, const PgnTables &tables, const Dialect &dialect)
{
    out(uR"(
        {
        	${NUMBER}u, /* PGN number */ 
        	&${MAPPING}[0], 
        )",
        {{"NUMBER", dec(message.number)}, {"MAPPING", message.mapping}});
    if (dialect.has(Point::PointerTables))
        out(u"\t&${MAPPING}_data[0], ", {{"MAPPING", message.mapping}});
    out(uR"(
        	${COUNT}u, /* number of mappings */
        #ifdef J1939_MULTI_SRC_ADDR 
        	1u,
        #endif /* J1939_MULTI_SRC_ADDR */
        	${CYCLE}u, /* cycletime in ms */ 
        	${INHIBIT}u, /* inhibit time in ms */ 
        	${PRIORITY}, /* priority */ 
        )",
        {{"COUNT", dec(static_cast<quint64>(message.items.size()))},
         {"CYCLE", dec(message.cycleMs)},
         {"INHIBIT", dec(message.inhibitMs)},
         {"PRIORITY", dec(message.priority)}});
    if (tables.safety)
        out(uR"(
            	${TRAILER},
            	${ASSURANCE},
            	${SIZE}u
            )",
            {{"TRAILER", message.trailerFormat},
             {"ASSURANCE", message.assuranceType},
             {"SIZE", dec(message.assuranceSize)}});
    out(u"},");
}

/// One array of configurations for a line; none where it would be empty, as C has no such arrays.
void writeConfigArray(CodeWriter &out, const QString &name, const QString &countMacro,
                      const QList<PgnTables::Message> &messages, const PgnTables &tables, const Dialect &dialect)
{
    if (messages.isEmpty())
        return;
    const QString count = tables.multiLine ? dec(static_cast<quint64>(messages.size())) : countMacro;
    out(u"static  ${CORE}CONST J1939_PGN_CONFIG_T\t${NAME}[${COUNT}]= {",
        {{"CORE", dialect.core}, {"NAME", name}, {"COUNT", count}});
    for (const PgnTables::Message &message : messages)
        writeConfig(out, message, tables, dialect);
    out(u"};");
}

void writeIdentity(CodeWriter &out, const PgnTables::Line &line, const PgnTables &tables, const Dialect &dialect)
{
    const PgnTables::Message &claim = line.addressClaim;
    const bool pointerTables = dialect.has(Point::PointerTables);
    if (pointerTables)
        writePointers(out, claim);
    else
        writeMapping(out, claim.mapping, claim, tables, dialect);
    out(uR"(
        static  ${CORE}CONST J1939_PGN_CONFIG_T	addrTrCfg${SUFFIX}= {
        	${NUMBER}u, /* PGN number */
        	&${MAPPING}[0],
        )",
        {{"CORE", dialect.core},
         {"SUFFIX", line.suffix},
         {"NUMBER", dec(claim.number)},
         {"MAPPING", pointerTables ? u"j1939AddressClaimMapping"_s : claim.mapping}});
    if (pointerTables)
        out(u"\t&${MAPPING}_data[0],", {{"MAPPING", claim.mapping}});
    out(uR"(
        	${COUNT}u, /* number of mappings */
        #ifdef J1939_MULTI_SRC_ADDR
        	0u,
        #endif /* J1939_MULTI_SRC_ADDR */
        	0u, /* cycletime in ms */
        	${INHIBIT}u, /* inhibitime in us */
        	${PRIORITY}u, /* priority */
        	J1939_ATF_SAE_NONE,
        	J1939_ADT_NONE,
        };
        )",
        {{"COUNT", dec(static_cast<quint64>(claim.items.size()))},
         {"INHIBIT", dec(claim.inhibitMs)},
         {"PRIORITY", dec(claim.priority)}});
}

/// A reference to the first configuration of a kind, or 0 where there is none.
QString reference(const QString &name, const QList<PgnTables::Message> &messages)
{
    return messages.isEmpty() ? u"0, "_s : u"&%1[0],"_s.arg(name);
}

void writeConfig(CodeWriter &out, const PgnTables::Line &line, bool multiLine)
{
    const auto count = [multiLine](const QList<PgnTables::Message> &messages, const QString &macro) {
        return multiLine ? dec(static_cast<quint64>(messages.size())) + u'u' : macro;
    };
    // The reference to received groups has a blank behind it in either form.
    QString received = reference(u"jPgnReceiveConfig"_s + line.suffix, line.receivedPgns);
    if (!received.endsWith(u' '))
        received += u' ';
    out(uR"(
        J1939_CONFIG_T  j1939Config${SUFFIX}= {
        	${TRANSMITTED}
        	${TRANSMITTED_COUNT},
        	${RECEIVED}
        	${RECEIVED_COUNT},
        	&addrTrCfg${SUFFIX},
        	${ADDRESS}u
        };
        )",
        {{"SUFFIX", line.suffix},
         {"TRANSMITTED", reference(u"jPgnTransmitConfig"_s + line.suffix, line.transmittedPgns)},
         {"TRANSMITTED_COUNT", count(line.transmittedPgns, u"J1939_TRANSMIT_PGN_CNT"_s)},
         {"RECEIVED", received},
         {"RECEIVED_COUNT", count(line.receivedPgns, u"J1939_RECEIVE_PGN_CNT"_s)},
         {"ADDRESS", dec(line.sourceAddress)}});
}

} // namespace

void PgnSections::writeManagedVariables(CodeWriter &out, const PgnTables &tables)
{
    out(uR"(

        /* definition of managed variables */
        )");
    for (const PgnTables::ManagedArray &array : tables.arrays) {
        out(u"static ${TYPE}\t${NAME}[${COUNT}]${END}", {{"TYPE", array.cType},
                                                         {"NAME", array.name},
                                                         {"COUNT", dec(static_cast<quint64>(array.elements.size()))},
                                                         {"END", tables.initialised ? u"= {"_s : u";"_s}});
        if (!tables.initialised)
            continue;
        for (const PgnTables::ManagedArray::Element &element : array.elements)
            out(u"\t${CAST}${VALUE} /* ${COMMENT} */${COMMA}",
                {{"CAST", array.cast},
                 {"VALUE", element.value},
                 {"COMMENT", element.comment},
                 {"COMMA", separator(&element == &array.elements.last())}});
        out(u"};");
    }
}

void PgnSections::writeMappings(CodeWriter &out, const PgnTables &tables, const Dialect &dialect)
{
    out(u"/*  PGN Mapping Definitions */");
    for (const PgnTables::Line &line : tables.lines) {
        for (const auto *messages :
             {&line.receivedPgns, &line.transmittedPgns, &line.receivedCanIds, &line.transmittedCanIds}) {
            for (const PgnTables::Message &message : *messages)
                writeMessage(out, message, tables, dialect);
        }
    }
}

void PgnSections::writeTransmitConfigs(CodeWriter &out, const PgnTables &tables, const Dialect &dialect)
{
    out(u"/*  TX PGN definitions */");
    for (const PgnTables::Line &line : tables.lines)
        writeConfigArray(out, u"jPgnTransmitConfig"_s + line.suffix, u"J1939_TRANSMIT_PGN_CNT"_s, line.transmittedPgns,
                         tables, dialect);
}

void PgnSections::writeReceiveConfigs(CodeWriter &out, const PgnTables &tables, const Dialect &dialect)
{
    const QString count =
        dialect.has(Point::ReceiveConfigs) ? u"J1939_RECEIVE_PGN_CFG_CNT"_s : u"J1939_RECEIVE_PGN_CNT"_s;
    out(u"/*  RX PGN definitions */");
    for (const PgnTables::Line &line : tables.lines)
        writeConfigArray(out, u"jPgnReceiveConfig"_s + line.suffix, count, line.receivedPgns, tables, dialect);
}

void PgnSections::writeIdentities(CodeWriter &out, const PgnTables &tables, const Dialect &dialect)
{
    out(u"/*  J1939 device Identifiy information (NAME PGN) */");
    bool mappingWritten = false;
    for (const PgnTables::Line &line : tables.lines) {
        if (!line.hasJ1939)
            continue;
        // The fields of the NAME are the same everywhere: with the pointers apart, all lines share their mapping.
        if (dialect.has(Point::PointerTables) && !std::exchange(mappingWritten, true))
            writeMapping(out, u"j1939AddressClaimMapping"_s, line.addressClaim, tables, dialect);
        writeIdentity(out, line, tables, dialect);
    }
}

void PgnSections::writeConfigs(CodeWriter &out, const PgnTables &tables)
{
    out(u"/*  J1939 PGN configuration */");
    for (const PgnTables::Line &line : tables.lines) {
        if (line.hasJ1939)
            writeConfig(out, line, tables.multiLine);
    }
}

void PgnSections::writeServiceValues(CodeWriter &out, const ServiceValues &values, const Dialect &dialect)
{
    if (values.former) {
        out(uR"(
            /* service intialization values */
            const J1939_SERVICE_INIT_VAL_T	${NAME} = {
            	3u,
            	{ CO_REC_BUFFER_COUNTS },
            	{ CO_TR_BUFFER_COUNTS },
            	{ CO_COB_COUNTS },
            	{ J1939_TRANSMIT_PGN_COUNTS }
            };
            )",
            {{"NAME", values.name}});
        return;
    }
    out(uR"(
        /* service intialization values */
        ${CORE}CONST J1939_SERVICE_INIT_VAL_T	${NAME} = {
        )",
        {{"CORE", dialect.core}, {"NAME", values.name}});
    if (dialect.has(Point::ReceiveConfigs))
        out(u"\t{ J1939_RECEIVE_PGN_CFG_COUNTS },");
    out(uR"(
        	{ J1939_RECEIVE_PGN_COUNTS },
        	{ J1939_TRANSMIT_PGN_COUNTS },
        	{ J1939_SSDO_COUNTS },
        	{ J1939_CSDO_COUNTS }${COMMA}
        )",
        {{"COMMA", separator(!values.safety && !values.fd)}});
    if (values.safety)
        out(uR"(
            	{ J1939_SDG_TRANS_COUNTS },
            	{ J1939_SDG_REC_COUNTS }${COMMA}
            )",
            {{"COMMA", separator(!values.fd)}});
    if (values.fd)
        out(u"\t{ J1939_DEST_BUFFER_COUNTS }");
    out(u"};");
}

namespace {

void writeNameFieldValues(CodeWriter &out, const PgnTables::Line &line)
{
    for (const PgnTables::NameField &field : line.nameFields)
        out(u"\t${ARRAY}[${POSITION}] = ${VALUE};",
            {{"ARRAY", field.array}, {"POSITION", dec(static_cast<quint64>(field.position))}, {"VALUE", field.value}});
}

void writeNameFieldsHeading(CodeWriter &out)
{
    out(uR"(

        	/* initilization of managed variables for address claiming */ 
        )");
}

} // namespace

void PgnSections::writeNameFields(CodeWriter &out, const PgnTables::Line &line)
{
    writeNameFieldsHeading(out);
    writeNameFieldValues(out, line);
}

void PgnSections::writeNameFields(CodeWriter &out, const PgnTables &tables)
{
    writeNameFieldsHeading(out);
    for (const PgnTables::Line &line : tables.lines)
        writeNameFieldValues(out, line);
}
