#include "generate/j1939/safetysections.h"

#include "generate/codewriter.h"
#include "generate/dialect.h"

#include <QRegularExpression>
#include <QSet>

using namespace Qt::StringLiterals;
using Code::dec;
using Code::hex;

namespace {

using Groups = QList<SafetyGroups::Group>;
using GroupsOfLine = Groups SafetyGroups::Line::*;

quint64 sizeOf(const Groups &groups)
{
    return static_cast<quint64>(groups.size());
}

/// One direction of the data definitions: what its names have in common, and how it counts.
struct Direction
{
    QString tag; ///< within names
    GroupsOfLine groups;
    QString factor; ///< what a group's records are multiplied by
};

/// Counts and first records of the lines, in their order.
void writeCounts(CodeWriter &out, const SafetyGroups &groups, const Direction &direction, const Dialect &dialect)
{
    if (!groups.multiLine) {
        quint64 count = 0;
        for (const SafetyGroups::Line &line : groups.lines)
            count += sizeOf(line.*direction.groups);
        out(u"const UNSIGNED16\tsdg${TAG}Cnt = ${COUNT}${FACTOR};",
            {{"TAG", direction.tag}, {"COUNT", dec(count)}, {"FACTOR", direction.factor}});
        return;
    }
    out(u"const UNSIGNED16\tsdg${TAG}Cnt[${CAN}MULTI_LINE_CNT] = {", {{"TAG", direction.tag}, {"CAN", dialect.line}});
    for (const SafetyGroups::Line &line : groups.lines)
        out(u"\t${COUNT}${FACTOR},", {{"COUNT", dec(sizeOf(line.*direction.groups))}, {"FACTOR", direction.factor}});
    out(uR"(
        };
        const UNSIGNED16	sdg${TAG}LineOffs[${CAN}LINE_ARRAY_DECL] = {
        )",
        {{"TAG", direction.tag}, {"CAN", dialect.line}});
    quint64 offset = 0;
    for (const SafetyGroups::Line &line : groups.lines) {
        out(u"\t${OFFSET}${FACTOR},", {{"OFFSET", dec(offset)}, {"FACTOR", direction.factor}});
        offset += sizeOf(line.*direction.groups);
    }
    out(u"};");
}

/// From a line to its table of a kind; lines without groups have none.
void writeLineTable(CodeWriter &out, const SafetyGroups &groups, const Direction &direction, const QString &type,
                    const QString &name, const Dialect &dialect)
{
    out(u"static ${TYPE} * const sdg${NAME}Lines[${CAN}MULTI_LINE_CNT] = {",
        {{"TYPE", type}, {"NAME", name}, {"CAN", dialect.line}});
    for (const SafetyGroups::Line &line : groups.lines) {
        const bool isEmpty = (line.*direction.groups).isEmpty();
        out(u"\t${TABLE},", {{"TABLE", isEmpty ? u"NULL"_s : u"sdg%1_l%2"_s.arg(name, dec(line.number))}});
    }
    out(u"};");
}

void writeReceived(CodeWriter &out, const SafetyGroups::Line &line, const QString &number)
{
    const QString count = dec(sizeOf(line.received));
    out(uR"(
        static SDG_REC_T	sdgRec_l${LINE}[${COUNT} * J1939_SDG_REC_ADDR_CNT];
        const SDG_REC_CONFIG_T	sdgRecCfg_l${LINE}[${COUNT}] = {
        )",
        {{"LINE", number}, {"COUNT", count}});
    for (const SafetyGroups::Group &group : line.received)
        out(u"\t{ 0x${PGN}ul, ${CYCLE}ul, ${VALIDATION}ul, ${TYPE}, ${PROFILE} },",
            {{"PGN", hex(group.pgn)},
             {"CYCLE", dec(group.cycleMs)},
             {"VALIDATION", dec(group.validationMs)},
             {"TYPE", group.type},
             {"PROFILE", group.profile}});
    out(u"};");
}

void writeTransmitted(CodeWriter &out, const SafetyGroups::Line &line, const QString &number)
{
    const QString count = dec(sizeOf(line.transmitted));
    out(uR"(
        static SDG_TR_T	sdgTr_l${LINE}[${COUNT}];
        static SDG_TR_CONFIG_T	sdgTrCfg_l${LINE}[${COUNT}] = {
        )",
        {{"LINE", number}, {"COUNT", count}});
    for (const SafetyGroups::Group &group : line.transmitted)
        out(u"\t{ 0x${PGN}ul, ${CYCLE}ul, ${TYPE}},",
            {{"PGN", hex(group.pgn)}, {"CYCLE", dec(group.cycleMs)}, {"TYPE", group.type}});
    out(u"};");
}

/// The line's number in names: the only line of a project is line 0 there.
QString lineName(const SafetyGroups &groups, const SafetyGroups::Line &line)
{
    return dec(groups.multiLine ? line.number : 0);
}

bool isPlainName(const QString &variable)
{
    static const QRegularExpression name(u"^[A-Za-z_][A-Za-z0-9_]*$"_s);
    return name.match(variable).hasMatch();
}

void writeVariablesOf(CodeWriter &out, const SafetyGroups::Group &group, quint8 line, bool perSender,
                      QSet<QString> &declared)
{
    out(u"/* line ${LINE} PGN 0x${PGN} */", {{"LINE", dec(line)}, {"PGN", hex(group.pgn)}});
    for (const SafetyGroups::Variable &variable : group.variables) {
        if (!isPlainName(variable.name) || declared.contains(variable.name))
            continue;
        declared.insert(variable.name);
        out(u"extern ${TYPE}\t${NAME}${SENDERS};",
            {{"TYPE", variable.cType},
             {"NAME", variable.name},
             {"SENDERS", perSender ? u"[J1939_SDG_REC_ADDR_CNT]"_s : QString()}});
    }
}

/// The parameters by which the functions of several lines are told theirs.
QString lineParameter(const SafetyGroups &groups)
{
    return groups.multiLine ? u"UNSIGNED8 canLine, "_s : QString();
}

/// The table of a kind, as the functions reach it.
QString table(const SafetyGroups &groups, const QString &name)
{
    return groups.multiLine ? u"sdg%1Lines[canLine]"_s.arg(name) : u"sdg%1_l0"_s.arg(name);
}

QString count(const SafetyGroups &groups, const QString &tag)
{
    return groups.multiLine ? u"sdg%1Cnt[canLine]"_s.arg(tag) : u"sdg%1Cnt"_s.arg(tag);
}

void writeTransmitFunctions(CodeWriter &out, const SafetyGroups &groups)
{
    out(uR"(
        #ifdef J1939_SDG_TRANS_CNT
        UNSIGNED32 genSdgGetTxPgn(${LINE}UNSIGNED16 sdgNr)
        {
        	return (sdgNr < ${COUNT}) ? ${CONFIG}[sdgNr].pgn : 0ul;
        }

        UNSIGNED32 genSdgGetTxSct(${LINE}UNSIGNED16 sdgNr)
        {
        	return (sdgNr < ${COUNT}) ? ${CONFIG}[sdgNr].cycleTime : 0ul;
        }

        SDG_TR_T *getTrSdg(${LINE}UNSIGNED16 sdgNr)
        {
        	return (sdgNr < ${COUNT}) ? &${RECORDS}[sdgNr] : NULL;
        }
        #endif /* J1939_SDG_TRANS_CNT */

        )",
        {{"LINE", lineParameter(groups)},
         {"COUNT", count(groups, u"Tr"_s)},
         {"CONFIG", table(groups, u"TrCfg"_s)},
         {"RECORDS", table(groups, u"Tr"_s)}});
}

void writeReceiveFunctions(CodeWriter &out, const SafetyGroups &groups)
{
    out(uR"(
        #ifdef J1939_SDG_REC_CNT
        UNSIGNED32 genSdgGetRxPgn(${LINE}UNSIGNED16 sdgNr)
        {
        	return (sdgNr < (${COUNT} / J1939_SDG_REC_ADDR_CNT)) ? ${CONFIG}[sdgNr].pgn : 0ul;
        }

        UNSIGNED16 getRecSdgIdx(${LINE}UNSIGNED32 pgn)
        {
        UNSIGNED16 sdgNr = 0u;

        	while ((sdgNr < (${COUNT} / J1939_SDG_REC_ADDR_CNT)) && (${CONFIG}[sdgNr].pgn != pgn)) {
        		sdgNr++;
        	}
        	return (sdgNr);
        }

        SDG_REC_T *getRecSdg(${LINE}UNSIGNED16 recIdx)
        {
        	return (recIdx < ${COUNT}) ? &${RECORDS}[recIdx] : NULL;
        }

        const SDG_REC_CONFIG_T *getRecSdgConfig(${LINE}UNSIGNED16 sdgNr)
        {
        	return (sdgNr < (${COUNT} / J1939_SDG_REC_ADDR_CNT)) ? &${CONFIG}[sdgNr] : NULL;
        }
        #endif /* J1939_SDG_REC_CNT */

        )",
        {{"LINE", lineParameter(groups)},
         {"COUNT", count(groups, u"Rec"_s)},
         {"CONFIG", table(groups, u"RecCfg"_s)},
         {"RECORDS", table(groups, u"Rec"_s)}});
}

} // namespace

void SafetySections::writeDataDefinitions(CodeWriter &out, const SafetyGroups &groups, const Dialect &dialect)
{
    const Direction received{u"Rec"_s, &SafetyGroups::Line::received, u" * J1939_SDG_REC_ADDR_CNT"_s};
    const Direction transmitted{u"Tr"_s, &SafetyGroups::Line::transmitted, {}};

    out(u"#ifdef J1939_SDG_REC_CNT");
    writeCounts(out, groups, received, dialect);
    for (const SafetyGroups::Line &line : groups.lines) {
        if (!line.received.isEmpty())
            writeReceived(out, line, lineName(groups, line));
    }
    if (groups.multiLine) {
        writeLineTable(out, groups, received, u"SDG_REC_T"_s, u"Rec"_s, dialect);
        writeLineTable(out, groups, received, u"const SDG_REC_CONFIG_T"_s, u"RecCfg"_s, dialect);
    }
    out(uR"(
        #endif /* J1939_SDG_REC_CNT */
        #ifdef J1939_SDG_TRANS_CNT
        )");
    writeCounts(out, groups, transmitted, dialect);
    for (const SafetyGroups::Line &line : groups.lines) {
        if (!line.transmitted.isEmpty())
            writeTransmitted(out, line, lineName(groups, line));
    }
    if (groups.multiLine) {
        writeLineTable(out, groups, transmitted, u"SDG_TR_T"_s, u"Tr"_s, dialect);
        writeLineTable(out, groups, transmitted, u"SDG_TR_CONFIG_T"_s, u"TrCfg"_s, dialect);
    }
    out(u"#endif /* J1939_SDG_TRANS_CNT */");
}

void SafetySections::writeVariables(CodeWriter &out, const SafetyGroups &groups)
{
    QSet<QString> declared;
    for (const SafetyGroups::Line &line : groups.lines) {
        for (const SafetyGroups::Group &group : line.received)
            writeVariablesOf(out, group, line.number, groups.sendersApart, declared);
        for (const SafetyGroups::Group &group : line.transmitted)
            writeVariablesOf(out, group, line.number, false, declared);
    }
}

void SafetySections::writeTransmitMapping(CodeWriter &out, const SafetyGroups &groups, const Dialect &dialect)
{
    for (const SafetyGroups::Line &line : groups.lines) {
        for (const SafetyGroups::Group &group : line.transmitted) {
            const QString number = dec(static_cast<quint64>(&group - line.transmitted.constData()));
            if (groups.multiLine)
                out(u"\tif ((sdgNr == ${NUMBER}u) && (canLine == ${LINE}u)) {",
                    {{"NUMBER", number}, {"LINE", dec(line.number)}});
            else
                out(u"\tif (sdgNr == ${NUMBER}u) {", {{"NUMBER", number}});
            SafetyMapping::writePacking(out, group.frame, dialect);
            out(uR"(
                		pgLen = ${LENGTH};
                	}

                )",
                {{"LENGTH", dec(SafetyMapping::length(group.frame))}});
        }
    }
}

void SafetySections::writeReceiveMapping(CodeWriter &out, const SafetyGroups &groups, const Dialect &dialect)
{
    const QString element = groups.sendersApart ? u"[addrIdx]"_s : QString();
    for (const SafetyGroups::Line &line : groups.lines) {
        if (line.received.isEmpty())
            continue;
        if (groups.multiLine)
            out(u"\tif (canLine == ${LINE}u) {", {{"LINE", dec(line.number)}});
        for (const SafetyGroups::Group &group : line.received) {
            const QString number = dec(static_cast<quint64>(&group - line.received.constData()));
            out(u"\tif (sdgNr == ${NUMBER}) {", {{"NUMBER", number}});
            SafetyMapping::writeUnpacking(out, group.frame, element, dialect);
            out(uR"(
                		retVal = RET_OK;
                	}
                )");
        }
        if (groups.multiLine)
            out(u"\t}");
    }
}

void SafetySections::writeFunctions(CodeWriter &out, const SafetyGroups &groups, const Dialect &dialect)
{
    if (groups.transmittedCount() > 0)
        writeTransmitFunctions(out, groups);
    if (groups.receivedCount() > 0)
        writeReceiveFunctions(out, groups);
    out(uR"(
        UNSIGNED8 genSdgTransmitMapping(${LINE}UNSIGNED16 sdgNr, UNSIGNED8 *${BUFFER})
        {
        UNSIGNED8 pgLen = 0u;

        	(void)sdgNr;
        	(void)${BUFFER};
        )",
        {{"LINE", lineParameter(groups)}, {"BUFFER", dialect.safetyBuffer}});
    if (groups.multiLine)
        out(u"\t(void)canLine;");
    writeTransmitMapping(out, groups, dialect);
    out(uR"(
        	return (pgLen);
        }

        RET_T genSdgReceiveMapping(${LINE}UNSIGNED16 sdgNr, UNSIGNED16 addrIdx, const UNSIGNED8 *pBuffer)
        {
        RET_T retVal = ${ERROR};

        	(void)sdgNr;
        	(void)addrIdx;
        	(void)pBuffer;
        )",
        {{"LINE", lineParameter(groups)}, {"ERROR", dialect.parameterError}});
    if (groups.multiLine)
        out(u"\t(void)canLine;");
    writeReceiveMapping(out, groups, dialect);
    out(uR"(
        	return (retVal);
        }
        )");
}
