#include "generate/multiprotocol/mpstartup.h"

#include "generate/base/codewriter.h"
#include "generate/base/dialect.h"
#include "generate/common/commongeneratorhelper.h"
#include "generate/j1939/pgnsections.h"
#include "generate/model/linesettings.h"
#include "generate/multiprotocol/rawcansections.h"
#include "store/objectdatabase.h"
#include "store/settings.h"

#include <algorithm>

using namespace Qt::StringLiterals;
using Code::dec;

namespace {

} // namespace

MultiProtocols MultiProtocols::of(const RunContext &run)
{
    return {.canOpen = run.hasCANopen,
            .j1939 = run.hasJ1939,
            .rawCan = run.hasRawCAN,
            .udsOnly = run.bootloaderMode && !run.hasCANopen && !run.hasJ1939};
}

void settleMasters(StackInit &init)
{
    for (LineServices &line : init.lines) {
        if (line.nmt == NmtRole::Dynamic)
            line.nmt = NmtRole::Master;
    }
}

MpStartUp MpStartUp::collect(ObjectDataBase &store, const MultiProtocols &protocols, const PgnTables &pgns,
                             const DictionaryTables &dictionary, const StackInit &canOpen)
{
    const Settings settings(store);
    const Settings j1939(store, Settings::Table::J1939);
    MpStartUp startUp{.protocols = protocols,
                      .multiLine = pgns.multiLine,
                      .fd = settings.isOn(u"canfd_supported"_s),
                      .uds = settings.isOn(u"udsserver_supported"_s) || settings.isOn(u"udsclient_supported"_s),
                      .initialised = pgns.initialised,
                      .formerServiceValues = !settings.isOn(u"new_init_structure"_s),
                      .safety = pgns.safety,
                      .canOpen = &canOpen};
    for (const quint8 number : LineSettings::partakingLines(store)) {
        Line line{.number = number, .protocols = RunContext::protocolsOf(store, number)};
        line.protocols.rawCan = line.protocols.rawCan && protocols.rawCan;
        if (!line.protocols.any() && !protocols.rawCanOnly())
            continue;
        line.sdoServer = line.protocols.j1939 && j1939.isOn(u"cia510serversupport"_s, number);
        const auto messages = std::ranges::find(pgns.lines, number, &PgnTables::Line::number);
        if (messages != pgns.lines.end())
            line.messages = &*messages;
        const auto services = std::ranges::find(canOpen.lines, number, &LineServices::line);
        if (services != canOpen.lines.end() && line.protocols.canOpen)
            line.services = &*services;
        line.dictionary = dictionary.line(number);
        startUp.lines.push_back(line);
    }
    return startUp;
}

MpStartUpWriter::MpStartUpWriter(CodeWriter &out, const MpStartUp &startUp, const CommonGeneratorHelper &common,
                                 const Dialect &dialect)
    : out_(out)
    , startUp_(startUp)
    , common_(common)
    , dialect_(dialect)
    , statements_(out, dialect)
    , canOpen_(out, *startUp.canOpen, common, dialect)
{
}

QString MpStartUpWriter::commonParameters() const
{
    const QString parameters = u"CO_EVENT_STORE_T pLoadFunction, %1 *pProtType"_s.arg(protocolType());
    return startUp_.fd ? parameters + u", BOOL_T *pModes"_s : parameters;
}

QString MpStartUpWriter::protocolType() const
{
    return dialect_.protocolType;
}

/// What the caller's CAN FD modes go into.
QStringList MpStartUpWriter::structuresWithModes() const
{
    QStringList structures{u"commonInitVars"_s};
    if (startUp_.protocols.canOpen)
        structures.append(u"serviceInitVars"_s);
    return structures;
}

QString MpStartUpWriter::lineParameters() const
{
    return startUp_.fd ? u"UNSIGNED8 canLine, BOOL_T *pModes"_s : u"UNSIGNED8 canLine"_s;
}

void MpStartUpWriter::writePrototypes() const
{
    if (!startUp_.multiLine || startUp_.protocols.udsOnly || startUp_.protocols.rawCanOnly())
        return;
    out_(u"RET_T mpStackInit_common(${PARAMETERS});", {{"PARAMETERS", commonParameters()}});
    for (const MpStartUp::Line &line : startUp_.lines)
        out_(u"RET_T mpStackInit_line${LINE}(${PARAMETERS});",
             {{"LINE", dec(line.number)}, {"PARAMETERS", lineParameters()}});
    out_(u"RET_T mpStackInit_finish(void);\n");
}

void MpStartUpWriter::write() const
{
    writeStructures();
    if (startUp_.protocols.udsOnly)
        writeUdsOnly();
    else if (startUp_.protocols.rawCanOnly())
        writeRawCanOnly();
    else if (startUp_.multiLine)
        writeSeveralLines();
    else
        writeSingleLine();
}

void MpStartUpWriter::writeStructures() const
{
    common_.writeCommonInit(out_);
    common_.writeUdsBlocks(out_);
    if (startUp_.protocols.udsOnly)
        return;
    if (startUp_.protocols.canOpen)
        canOpen_.writeServiceVariables();
    if (startUp_.protocols.j1939) {
        PgnSections::writeServiceValues(
            out_,
            {.name = u"j1939InitVars"_s,
             .former = dialect_.has(Point::FormerServiceValues) && startUp_.formerServiceValues,
             .safety = startUp_.safety,
             .fd = startUp_.fd},
            dialect_);
        out_(u"");
    }
    if (startUp_.protocols.rawCan)
        RawCanSections::writeServiceValues(out_, dialect_);
}

void MpStartUpWriter::writeUdsOnly() const
{
    out_(uR"(

        RET_T udsStackInit(void) {
        RET_T retVal;

            /* common initialization */
        )");
    statements_.call(indent, dialect_.stackInit + u"(&commonInitVars)"_s);
    if (startUp_.uds) {
        out_(u"    /* ISO-TP initialization */");
        statements_.call(indent, u"isoTpInit()"_s);
        common_.writeUdsInitCalls(out_);
    }
    out_(uR"(
            return(RET_OK);
        }
        )");
}

void MpStartUpWriter::writeRawCanOnly() const
{
    out_(uR"(

        /*  stack initialization for RawCAN stack */
        RET_T rawcanStackInit(${PARAMETER}) {
        RET_T retVal;

        )",
         {{"PARAMETER", startUp_.fd ? u"BOOL_T *pModes"_s : u"void"_s}});
    if (startUp_.fd) {
        QStringList positions;
        for (std::size_t position = 0; position < startUp_.lines.size(); ++position)
            positions.append(dec(position));
        statements_.modes(indent, indent, {u"commonInitVars"_s}, positions);
    }
    statements_.call(indent, dialect_.stackInit + u"(&commonInitVars)"_s);
    if (startUp_.protocols.rawCan)
        out_(u"    rawcanStackInit_common(&rawcanInitVars);");
    for (const MpStartUp::Line &line : startUp_.lines) {
        if (line.protocols.rawCan)
            writeRawCan(line);
    }
    common_.writeUdsInitCalls(out_);
    out_(uR"(
            return(RET_OK);
        }
        )");
}

void MpStartUpWriter::writeEntryHead() const
{
    out_(uR"(

        /*  stack initialization for CAN-MultiProtocol stack */
        RET_T mpStackInit(
                 ${TYPE}	*pProtType
        #ifdef CANOPEN_SUPPORTED
                 , CO_EVENT_STORE_T	pLoadFunction
        #endif /* CANOPEN_SUPPORTED */
        )",
         {{"TYPE", protocolType()}});
    if (startUp_.fd)
        out_(u",        BOOL_T *pModes");
    else
        out_(u"");
    out_(uR"(
            )
        {
        )");
}

void MpStartUpWriter::writeParameterCheck() const
{
    out_(uR"(
            /* check for protocol information */
            if (pProtType == NULL)  {
                return(${ERROR});
            }
        )",
         {{"ERROR", dialect_.parameterError}});
}

void MpStartUpWriter::writeSingleLine() const
{
    writeEntryHead();
    out_(uR"(
        ${TYPE}	protType;
        RET_T retVal;

        )",
         {{"TYPE", protocolType()}});
    writeParameterCheck();
    out_(uR"(
        protType = *pProtType;
        commonInitVars.protocolType[0] = protType;
        )");
    if (startUp_.fd)
        statements_.modes({}, indent, structuresWithModes(), {u"0"_s});
    statements_.call(indent, dialect_.stackInit + u"(&commonInitVars)"_s);
    for (const MpStartUp::Line &line : startUp_.lines) {
        writeRequested(u"CANopen"_s, u"CANOPEN"_s, line.services ? &MpStartUpWriter::writeCanOpen : nullptr, line);
        writeRequested(u"J1939"_s, u"J1939"_s, line.protocols.j1939 ? &MpStartUpWriter::writeJ1939 : nullptr, line);
        writeRequested(u"RAW-CAN"_s, u"RAWCAN"_s, line.protocols.rawCan ? &MpStartUpWriter::writeRawCan : nullptr,
                       line);
    }
    common_.writeUdsInitCalls(out_);
    out_(uR"(
            return(RET_OK);
        }
        )");
}

/// The start of a protocol if the application asks for it; an error if the device does not have it.
void MpStartUpWriter::writeRequested(const QString &name, const QString &word, LineBlock block,
                                     const MpStartUp::Line &line) const
{
    out_(uR"(
        /* initialize ${NAME} if requested */
        if ((protType & ${MASK}${WORD}) == ${MASK}${WORD})  {
        #ifdef ${WORD}_SUPPORTED
        )",
         {{"NAME", name}, {"WORD", word}, {"MASK", dialect_.protocol}});
    if (block)
        (this->*block)(line);
    out_(uR"(
        #else /* ${WORD}_SUPPORTED */
        return(RET_NOT_INITIALIZED);
        #endif /* ${WORD}_SUPPORTED */
        }
        )",
         {{"WORD", word}});
}

void MpStartUpWriter::writeCanOpen(const MpStartUp::Line &line) const
{
    if (!startUp_.multiLine)
        out_(uR"(
            /* variable initialization */
            coCanOpenStackVarInit(&serviceInitVars);
            )");
    canOpen_.writeServices(*line.services);
}

void MpStartUpWriter::writeJ1939(const MpStartUp::Line &line) const
{
    if (!startUp_.multiLine)
        statements_.call(u"\t"_s, u"j1939StackInit_common(&j1939InitVars)"_s);
    if (!startUp_.initialised)
        PgnSections::writeNameFields(out_, *line.messages);
    statements_.call(u"\t"_s, u"j1939StackInit_line(&j1939Config%1)"_s.arg(line.messages->suffix));
    if (line.sdoServer && (line.dictionary || !startUp_.protocols.canOpen))
        writeDictionaryOfJ1939(line);
}

/// The dictionary that J1939 serves where CANopen, which would start it, is not active. A device without CANopen has
/// none, and its compiler leaves this out.
void MpStartUpWriter::writeDictionaryOfJ1939(const MpStartUp::Line &line) const
{
    const QString protocols = startUp_.multiLine ? u"commonInitVars.protocolType[canLine]"_s : u"protType"_s;
    out_(uR"(
        # ifdef CANOPEN_SUPPORTED
        #  ifdef J1939_CAM11_CAM21_SUPPORTED
        	if ((${PROTOCOLS} & ${MASK}CANOPEN) != ${MASK}CANOPEN)  {
        		/* init CANopen OD if CANopen is not active */
        		icoOdAccessVarInit();
        )",
         {{"PROTOCOLS", protocols}, {"MASK", dialect_.protocol}});
    if (startUp_.multiLine)
        out_(u"\t\tcoOdInitOdPtr(canLine, &od_assign[${START}], ${COUNT}, od_description, ${ROWS}, NULL, "
             "&od_data_variables);",
             {{"START", dec(line.dictionary ? line.dictionary->assignStart : 0)},
              {"COUNT", dec(line.dictionary ? line.dictionary->assignCount : 0)},
              {"ROWS", dec(line.dictionary ? line.dictionary->descriptionCount : 0)}});
    else
        out_(u"\t\tcoOdInitOdPtr(&od_assign[0], CO_OD_ASSIGN_CNT, od_description, CO_OBJ_DESC_CNT, NULL, "
             "&od_data_variables);");
    out_(uR"(
        	}
        #  endif /*J1939_CAM11_CAM21_SUPPORTED */
        # endif /* CANOPEN_SUPPORTED */
        )");
}

void MpStartUpWriter::writeRawCan(const MpStartUp::Line &line) const
{
    if (!startUp_.multiLine && !startUp_.protocols.rawCanOnly())
        out_(u"rawcanStackInit_common(&rawcanInitVars);");
    statements_.call({}, u"rawcanStackInit_line(&rawcanConfig%1)"_s.arg(line.messages->suffix));
}
