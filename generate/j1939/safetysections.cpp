#include "generate/j1939/safetysections.h"

#include "generate/base/codewriter.h"
#include "generate/base/dialect.h"

#include <QRegularExpression>
#include <QSet>

#include <algorithm>
#include <array>
#include <span>

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
        out(u"${COUNT}${FACTOR},", {{"COUNT", dec(sizeOf(line.*direction.groups))}, {"FACTOR", direction.factor}});
    out(uR"(
        };
        const UNSIGNED16	sdg${TAG}LineOffs[${CAN}LINE_ARRAY_DECL] = {
        )",
        {{"TAG", direction.tag}, {"CAN", dialect.line}});
    quint64 offset = 0;
    for (const SafetyGroups::Line &line : groups.lines) {
        out(u"${OFFSET}${FACTOR},", {{"OFFSET", dec(offset)}, {"FACTOR", direction.factor}});
        offset += sizeOf(line.*direction.groups);
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
        out(u"{ 0x${PGN}ul, ${CYCLE}ul, ${VALIDATION}ul, ${TYPE}, ${PROFILE} },",
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
        out(u"{ 0x${PGN}ul, ${CYCLE}ul, ${TYPE}},",
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

/// A function that looks something up in the tables of a line.
struct Lookup
{
    QLatin1StringView head;      ///< what it returns, and its name
    QLatin1StringView parameter; ///< behind that of the line
    QLatin1StringView tag;       ///< of the count, %1 of the body
    QLatin1StringView table;     ///< %2 of the body, without the line
    QLatin1StringView body;
    QLatin1StringView none; ///< what it returns for a line without groups
};

constexpr std::array transmitLookups{
    Lookup{"UNSIGNED32 genSdgGetTxPgn"_L1, "UNSIGNED16 sdgNr"_L1, "Tr"_L1, "TrCfg"_L1,
           "\treturn (sdgNr < %1) ? %2[sdgNr].pgn : 0ul;"_L1, "0ul"_L1},
    Lookup{"UNSIGNED32 genSdgGetTxSct"_L1, "UNSIGNED16 sdgNr"_L1, "Tr"_L1, "TrCfg"_L1,
           "\treturn (sdgNr < %1) ? %2[sdgNr].cycleTime : 0ul;"_L1, "0ul"_L1},
};

constexpr std::array receiveLookups{
    Lookup{"UNSIGNED32 genSdgGetRxPgn"_L1, "UNSIGNED16 sdgNr"_L1, "Rec"_L1, "RecCfg"_L1,
           "\treturn (sdgNr < (%1 / J1939_SDG_REC_ADDR_CNT)) ? %2[sdgNr].pgn : 0ul;"_L1, "0ul"_L1},
    Lookup{"UNSIGNED16 getRecSdgIdx"_L1, "UNSIGNED32 pgn"_L1, "Rec"_L1, "RecCfg"_L1,
           "UNSIGNED16 sdgNr = 0u;\n\n"
           "\twhile ((sdgNr < (%1 / J1939_SDG_REC_ADDR_CNT)) && (%2[sdgNr].pgn != pgn)) {\n"
           "\t\tsdgNr++;\n\t}\n\treturn (sdgNr);"_L1,
           "0u"_L1},
    Lookup{"SDG_REC_T *getRecSdg"_L1, "UNSIGNED16 recIdx"_L1, "Rec"_L1, "Rec"_L1,
           "\treturn (recIdx < %1) ? &%2[recIdx] : NULL;"_L1, "NULL"_L1},
    Lookup{"const SDG_REC_CONFIG_T *getRecSdgConfig"_L1, "UNSIGNED16 sdgNr"_L1, "Rec"_L1, "RecCfg"_L1,
           "\treturn (sdgNr < (%1 / J1939_SDG_REC_ADDR_CNT)) ? &%2[sdgNr] : NULL;"_L1, "NULL"_L1},
};

void writeLookup(CodeWriter &out, const SafetyGroups &groups, GroupsOfLine direction, const Lookup &lookup)
{
    out(uR"(
        ${HEAD}(${LINE}${PARAMETER})
        {
        )",
        {{"HEAD", lookup.head}, {"LINE", lineParameter(groups)}, {"PARAMETER", lookup.parameter}});
    for (const SafetyGroups::Line &line : groups.lines) {
        if ((line.*direction).isEmpty())
            continue;
        const QString count = u"sdg%1Cnt"_s.arg(lookup.tag) + (groups.multiLine ? u"[%1]"_s.arg(line.number) : u""_s);
        const QString table = u"sdg%1_l%2"_s.arg(lookup.table, lineName(groups, line));
        if (groups.multiLine)
            out(u"\tif (canLine == ${LINE}u) {", {{"LINE", dec(line.number)}});
        out(u"${BODY}", {{"BODY", QString(lookup.body).arg(count, table)}});
        if (groups.multiLine)
            out(u"\t}");
    }
    if (groups.multiLine)
        out(u"\treturn (${NONE});", {{"NONE", lookup.none}});
    out(u"}\n");
}

void writeLookups(CodeWriter &out, const SafetyGroups &groups, GroupsOfLine direction, std::span<const Lookup> lookups,
                  const QString &guard)
{
    out(u"#ifdef ${GUARD}", {{"GUARD", guard}});
    for (const Lookup &lookup : lookups)
        writeLookup(out, groups, direction, lookup);
    out(u"#endif /* ${GUARD} */\n", {{"GUARD", guard}});
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
    out(uR"(
        #endif /* J1939_SDG_REC_CNT */
        #ifdef J1939_SDG_TRANS_CNT
        )");
    writeCounts(out, groups, transmitted, dialect);
    for (const SafetyGroups::Line &line : groups.lines) {
        if (!line.transmitted.isEmpty())
            writeTransmitted(out, line, lineName(groups, line));
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
                out(u"if ((sdgNr == ${NUMBER}u) && (canLine == ${LINE}u)) {",
                    {{"NUMBER", number}, {"LINE", dec(line.number)}});
            else
                out(u"if (sdgNr == ${NUMBER}u) {", {{"NUMBER", number}});
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
            out(u"if (canLine == ${LINE}u) {", {{"LINE", dec(line.number)}});
        for (const SafetyGroups::Group &group : line.received) {
            const QString number = dec(static_cast<quint64>(&group - line.received.constData()));
            out(u"if (sdgNr == ${NUMBER}) {", {{"NUMBER", number}});
            SafetyMapping::writeUnpacking(out, group.frame, element, dialect);
            out(uR"(
                retVal = RET_OK;
                }
                )");
        }
        if (groups.multiLine)
            out(u"}");
    }
}

namespace {

/// The statements of the mapping take the data cleared.
void writeClearing(CodeWriter &out, const SafetyGroups &groups, const Dialect &dialect)
{
    quint32 length = 0;
    for (const SafetyGroups::Line &line : groups.lines) {
        for (const SafetyGroups::Group &group : line.transmitted)
            length = std::max(length, SafetyMapping::length(group.frame));
    }
    if (length == 0)
        return;
    out(uR"(
        	{
        	UNSIGNED8 i;

        		for (i = 0u; i < ${LENGTH}u; i++) {
        			${BUFFER}[i] = 0x00u;
        		}
        	}
        )",
        {{"LENGTH", dec(length)}, {"BUFFER", dialect.safetyBuffer}});
}

} // namespace

void SafetySections::writeFunctions(CodeWriter &out, const SafetyGroups &groups, const Dialect &dialect)
{
    if (groups.transmittedCount() > 0)
        writeLookups(out, groups, &SafetyGroups::Line::transmitted, transmitLookups, u"J1939_SDG_TRANS_CNT"_s);
    if (groups.receivedCount() > 0)
        writeLookups(out, groups, &SafetyGroups::Line::received, receiveLookups, u"J1939_SDG_REC_CNT"_s);
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
    writeClearing(out, groups, dialect);
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
