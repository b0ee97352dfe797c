// The start-up of several protocols on several lines: a function for what they share, one for each line.

#include "generate/base/codewriter.h"
#include "generate/base/dialect.h"
#include "generate/common/commongeneratorhelper.h"
#include "generate/multiprotocol/mpstartup.h"

using namespace Qt::StringLiterals;
using Code::dec;

void MpStartUpWriter::writeSeveralLines() const
{
    writeEntryHead();
    out_(uR"(
        RET_T retVal;

            retVal = mpStackInit_common(${ARGUMENTS}pProtType${MODES});
        )",
         {{"ARGUMENTS", startUp_.protocols.canOpen ? u"pLoadFunction, "_s : u"NULL, "_s},
          {"MODES", startUp_.fd ? u", pModes"_s : QString()}});
    for (const MpStartUp::Line &line : startUp_.lines)
        out_(uR"(
                if (retVal == RET_OK) {
                    retVal = mpStackInit_line${LINE}(${LINE}${MODES});
                }
            )",
             {{"LINE", dec(line.number)}, {"MODES", startUp_.fd ? u", pModes"_s : QString()}});
    out_(uR"(
            if (retVal == RET_OK) {
                retVal = mpStackInit_finish();
            }
            return(retVal);
        }
        )");
    writeCommonFunction();
    for (const MpStartUp::Line &line : startUp_.lines)
        writeLineFunction(line);
    writeFinish();
}

/// Takes the protocols, and with FD the modes, of all lines from the caller.
void MpStartUpWriter::writeModes() const
{
    out_(uR"(
            for (${CAN}LINE = 0; ${CAN}LINE < ${CAN}MULTI_LINE_CNT; ${CAN}LINE ++)
            {
                commonInitVars.protocolType[${CAN}LINE] = pProtType[${CAN}LINE];
        )",
         {{"CAN", dialect_.line}});
    if (startUp_.fd) {
        for (const QString &structure : structuresWithModes())
            out_(u"        ${STRUCTURE}.fdMode[${CAN}LINE] = CO_TRUE;",
                 {{"STRUCTURE", structure}, {"CAN", dialect_.line}});
        statements_.modes(QString(8, u' '), indent, structuresWithModes(), {dialect_.line + u"LINE"_s});
    }
    out_(u"    }");
}

/// The part of a protocol that all lines share, if any line asks for the protocol.
void MpStartUpWriter::writeProtocolStart(const QString &word, const QString &call) const
{
    out_(uR"(
            for (${CAN}LINE = 0; ${CAN}LINE < ${CAN}MULTI_LINE_CNT; ${CAN}LINE ++)
            {
                if ((commonInitVars.protocolType[${CAN}LINE] & ${MASK}${WORD}) == ${MASK}${WORD}) {
                    ${CALL};
                    break;
                }
            }
        )",
         {{"CAN", dialect_.line}, {"MASK", dialect_.protocol}, {"WORD", word}, {"CALL", call}});
}

void MpStartUpWriter::writeCommonFunction() const
{
    out_(uR"(

        RET_T mpStackInit_common(${PARAMETERS})
        {
        ${CAN}LINE_TYPE    ${CAN}LINE;
        RET_T retVal;

        )",
         {{"PARAMETERS", commonParameters()}, {"CAN", dialect_.line}});
    writeParameterCheck();
    writeModes();
    statements_.call(indent, dialect_.stackInit + u"(&commonInitVars)"_s);
    if (startUp_.protocols.canOpen)
        writeProtocolStart(u"CANOPEN"_s, u"coCanOpenStackVarInit(&serviceInitVars)"_s);
    if (startUp_.protocols.j1939)
        writeProtocolStart(u"J1939"_s, u"j1939StackInit_common(&j1939InitVars)"_s);
    if (startUp_.protocols.rawCan)
        writeProtocolStart(u"RAWCAN"_s, u"rawcanStackInit_common(&rawcanInitVars)"_s);
    if (startUp_.protocols.canOpen) {
        out_(u"");
        statements_.guarded(u"CANOPEN_SUPPORTED"_s, [this] { canOpen_.writeLoadParameter(); });
    } else {
        out_(u"    (void)pLoadFunction;");
    }
    out_(uR"(

            return(retVal);
        }
        )");
}

void MpStartUpWriter::writeLineFunction(const MpStartUp::Line &line) const
{
    out_(uR"(

        /* ****************************************************************************************** */
        /* Initialize line <<${LINE}>> */
        RET_T mpStackInit_line${LINE}(${PARAMETERS})
        {
        RET_T retVal = RET_OK;

        )",
         {{"LINE", dec(line.number)}, {"PARAMETERS", lineParameters()}});
    if (startUp_.fd)
        out_(u"    (void)pModes;\n");
    const auto write = [&](bool has, const QString &word, LineBlock block) {
        if (!has)
            return;
        out_(uR"(
                if ((commonInitVars.protocolType[canLine] & ${MASK}${WORD}) != ${MASK}${WORD}) {
                    /* not requested */
                } else {
            )",
             {{"MASK", dialect_.protocol}, {"WORD", word}});
        (this->*block)(line);
        out_(u"    }");
    };
    write(line.services, u"CANOPEN"_s, &MpStartUpWriter::writeCanOpen);
    write(line.protocols.j1939, u"J1939"_s, &MpStartUpWriter::writeJ1939);
    write(line.protocols.rawCan, u"RAWCAN"_s, &MpStartUpWriter::writeRawCan);
    if (!line.services && !line.protocols.j1939 && !line.protocols.rawCan)
        out_(u"    (void)canLine;");
    out_(uR"(

            return(retVal);
        }
        )");
}

void MpStartUpWriter::writeFinish() const
{
    const bool routing = startUp_.protocols.canOpen && startUp_.canOpen->pdoRouting;
    out_(uR"(

        RET_T mpStackInit_finish(void)
        {
        RET_T retVal = RET_OK;

        )");
    if (routing) {
        out_(u"    /* initialize PDO routing */ ");
        statements_.call(indent, u"coPdoNetworkRouting()"_s);
    }
    common_.writeUdsInitCalls(out_);
    out_(uR"(

            return(retVal);
        }
        )");
}
