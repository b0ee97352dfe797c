#include "generate/startup/stackinit.h"

#include "generate/base/codewriter.h"
#include "generate/base/dialect.h"
#include "generate/common/commongeneratorhelper.h"
#include "generate/model/dictionarytables.h"
#include "generate/startup/loadindication.h"
#include "generate/startup/stringdefaults.h"
#include "store/objectdatabase.h"
#include "store/settings.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr auto indent = "    "_L1;

void writeServerModeInit(CodeWriter &out, const DictionaryTables &tables)
{
    if (!tables.multiLine) {
        out(uR"(
            RET_T	j1939OdInit(void)
            {
            	coOdInitOdPtr(${ASSIGN}, CO_OD_ASSIGN_CNT, &od_description[0], CO_OBJ_DESC_CNT, NULL, &od_data_variables);

            	return(RET_OK);
            }
            )",
            {{"ASSIGN", tables.lines.empty() ? u"NULL"_s : u"&od_assign[0]"_s}});
        return;
    }
    out(uR"(
        RET_T	j1939OdInit(
        	UNSIGNED8 canLine
        )
        {
        	switch (canLine) {
        )");
    for (const DictionaryLine &line : tables.lines)
        out(uR"(
            		case ${LINE}:
            		/* initialize object dictionary variables and pointers */
            		coOdInitOdPtr(canLine, &od_assign[${START}], ${COUNT}, od_description,${ROWS}, NULL, &od_data_variables);
            		break;
            )",
            {{"LINE", Code::dec(line.number)},
             {"START", Code::dec(line.assignStart)},
             {"COUNT", Code::dec(line.assignCount)},
             {"ROWS", Code::dec(line.descriptionCount)}});
    out(uR"(
        	default:
        	break;
        	}
        	return(RET_OK);
        }
        )");
}

} // namespace

StackInit StackInit::collect(ObjectDataBase &store, const DictionaryTables &tables)
{
    StackInit init;
    init.multiLine = tables.multiLine;
    init.fd = tables.canFd;
    init.pdoRouting = tables.pdoRouting;
    const Settings settings(store);
    init.hasServiceVariables = settings.isOn(u"new_init_structure"_s);
    init.storeFunction = !settings.text(u"fct_store"_s).trimmed().isEmpty();
    for (const quint8 line : tables.lineList) {
        init.lines.push_back(LineServices::collect(store, tables, line));
        if (!init.multiLine)
            break;
    }
    return init;
}

bool StackInit::takesOptions() const
{
    return std::ranges::any_of(lines, [](const LineServices &line) { return line.nmt == NmtRole::Dynamic; });
}

void StackInitWriter::writeStartUp() const
{
    common_.writeCommonInit(out_);
    common_.writeUdsBlocks(out_);
    writeServiceVariables();
    if (!init_.multiLine) {
        writeSingleLine();
        return;
    }
    writeLineTable();
    writeWrapper();
    writeCommonFunction();
    writeLineSelection();
    for (const LineServices &line : init_.lines)
        writeLineFunction(line);
    writeFinish();
}

void StackInitWriter::writeServiceVariables() const
{
    if (!init_.hasServiceVariables) {
        out_(u"extern CO_SERVICE_INIT_VAL_T\tserviceInitVars;\n");
        return;
    }
    out_(uR"(
        /* CANopen service initialization variables */
        CO_SERVICE_INIT_VAL_T	serviceInitVars = {
        { CO_OBJECT_COUNTS },
        { CO_TXPDO_COUNTS },
        { CO_RXPDO_COUNTS },
        #ifdef CO_SRDO_SUPPORTED
        { CO_SRDO_COUNTS },
        #endif /* CO_SRDO_SUPPORTED */
        { CO_SSDO_COUNTS },
        { CO_CSDO_COUNTS },
        #ifdef CO_USDO_SERVER_MAX_CONN_CNT
        { CO_USDO_SERVER_MAX_CONN_COUNTS },
        #endif /* CO_USDO_SERVER_MAX_CONN_CNT */
        #ifdef CO_USDO_CLIENT_MAX_CONN_CNT
        { CO_USDO_CLIENT_MAX_CONN_COUNTS },
        #endif /* CO_USDO_CLIENT_MAX_CONN_CNT */
        { CO_ERR_CTRL_COUNTS },
        { CO_ERR_HIST_COUNTS },
        { CO_ACT_ERR_HIST_COUNTS },
        { CO_EMCY_CONS_COUNTS },
        #ifdef CO_NETWORK_ROUTING_CNT
        { CO_NETWORK_ROUTING_COUNTS }, 
        #endif /* CO_NETWORK_ROUTING_CNT */
        { CO_ASSIGN_COUNTS },
        { CO_GUARDING_COUNTS },
        { CO_NODE_IDS }, 
        )");
    if (init_.fd)
        out_(uR"(
            { CO_NODE_ID_FUNCTIONS }, 
            { CO_TRUE }
            )");
    else
        out_(u"{ CO_NODE_ID_FUNCTIONS } ");
    out_(u"};");
}

QString StackInitWriter::entryName() const
{
    return init_.takesOptions() ? u"coCanOpenStackInitPara"_s : u"coCanOpenStackInit"_s;
}

QString StackInitWriter::entryParameters() const
{
    QString parameters = u"    CO_EVENT_STORE_T pLoadFunction"_s;
    if (init_.takesOptions())
        parameters += u",\n    CO_INIT_OPTION_T *pCoOptions"_s;
    if (init_.fd)
        parameters += u"\n    , BOOL_T *pModes"_s;
    return parameters;
}

QString StackInitWriter::modesParameter() const
{
    return init_.fd ? u", BOOL_T *pModes"_s : QString();
}

QString StackInitWriter::modesArgument() const
{
    return init_.fd ? u", pModes"_s : QString();
}

QString StackInitWriter::lineParameters() const
{
    return u"UNSIGNED8 canLine, CO_INIT_OPTION_T *pCoOptions"_s + modesParameter();
}

void StackInitWriter::writeSingleLine() const
{
    out_(uR"(
        RET_T ${NAME}(
        ${PARAMETERS}
        )
        {
            RET_T retVal;

        )",
         {{"NAME", entryName()}, {"PARAMETERS", entryParameters()}});
    if (init_.fd) {
        statements_.modes(indent, indent, {u"commonInitVars"_s, u"serviceInitVars"_s}, {u"0"_s});
        out_(u"");
    }
    out_(u"    /* common initialization */");
    statements_.call(indent, dialect_.stackInit + u"(&commonInitVars)"_s);
    out_(u"    /* variable initialization */");
    statements_.call(indent, u"coCanOpenStackVarInit(&serviceInitVars)"_s);
    for (const LineServices &line : init_.lines)
        writeServices(line);
    common_.writeUdsInitCalls(out_);
    out_(uR"(

            return(RET_OK);
        }
        )");
}

void StackInitWriter::writeLineTable() const
{
    QStringList numbers;
    for (const LineServices &line : init_.lines)
        numbers.append(Code::dec(line.line));
    out_(uR"(

        UNSIGNED8 canLineTable[${CAN}LINE_ARRAY_DECL] = {${LINES}};

        )",
         {{"CAN", dialect_.line}, {"LINES", numbers.join(", "_L1)}});
}

void StackInitWriter::writeWrapper() const
{
    out_(uR"(
        RET_T ${NAME}(
        ${PARAMETERS}
        )
        {
            CO_INIT_OPTION_T *pCoInitOpt = NULL;
            RET_T retVal;

            retVal = coCanOpenStackInit_common(pLoadFunction${MODES});
        )",
         {{"NAME", entryName()}, {"PARAMETERS", entryParameters()}, {"MODES", modesArgument()}});
    for (std::size_t i = 0; i < init_.lines.size(); ++i) {
        out_(u"    if (retVal == RET_OK) {");
        if (init_.takesOptions())
            out_(u"        pCoInitOpt = &pCoOptions[${POSITION}];", {{"POSITION", Code::dec(i)}});
        out_(uR"(
                    retVal = coCanOpenStackInit_line${LINE}(${LINE}, pCoInitOpt${MODES});
                }
            )",
             {{"LINE", Code::dec(init_.lines.at(i).line)}, {"MODES", modesArgument()}});
    }
    out_(uR"(
            if (retVal == RET_OK) {
                retVal = coCanOpenStackInit_finish();
            }
            return(retVal);
        }
        )");
}

void StackInitWriter::writeCommonFunction() const
{
    out_(uR"(

        RET_T coCanOpenStackInit_common(CO_EVENT_STORE_T pLoadFunction${MODES})
        {
            ${CAN}LINE_TYPE    ${CAN}LINE;
            RET_T retVal = RET_OK;

        )",
         {{"MODES", modesParameter()}, {"CAN", dialect_.line}});
    if (init_.fd) {
        out_(uR"(
                for (${CAN}LINE = 0; ${CAN}LINE < ${CAN}MULTI_LINE_CNT; ${CAN}LINE ++)
                {
            )",
             {{"CAN", dialect_.line}});
        const QString line = dialect_.line + u"LINE"_s;
        for (const QString &structure : {u"commonInitVars"_s, u"serviceInitVars"_s}) {
            out_(u"        ${STRUCTURE}.fdMode[${LINE}] = CO_TRUE;", {{"STRUCTURE", structure}, {"LINE", line}});
            statements_.modes(QString(8, u' '), indent, {structure}, {line});
        }
        out_(u"    }");
    } else {
        out_(u"    (void)${CAN}LINE;", {{"CAN", dialect_.line}});
    }
    out_(uR"(
            /* common initialization */
            retVal = ${INIT}(&commonInitVars);
            if (retVal != RET_OK) {
                return (retVal);
            }
            /* multi-line initialization */
            retVal = coCanOpenStackVarInit(&serviceInitVars);
            if (retVal != RET_OK) {
                return(retVal);
            }
        )",
         {{"INIT", dialect_.stackInit}});
    writeLoadParameter();
    out_(uR"(

            return(retVal);
        }
        )");
}

void StackInitWriter::writeLineSelection() const
{
    out_(uR"(

        RET_T coCanOpenStackInit_line(${PARAMETERS})
        {
            RET_T retVal;

            switch(canLine) {
        )",
         {{"PARAMETERS", lineParameters()}});
    for (const LineServices &line : init_.lines)
        out_(uR"(
            	case ${LINE}:
            		retVal = coCanOpenStackInit_line${LINE}(canLine, pCoOptions${MODES});
            		break;
            )",
             {{"LINE", Code::dec(line.line)}, {"MODES", modesArgument()}});
    out_(uR"(
        	default:
        		retVal = ${ERROR};
        	break;
            }

            return(retVal);
        }
        )",
         {{"ERROR", dialect_.parameterError}});
}

void StackInitWriter::writeLineFunction(const LineServices &line) const
{
    out_(uR"(

        /* ****************************************************************************************** */
        /* Initialize line <<${LINE}>> */
        RET_T coCanOpenStackInit_line${LINE}(${PARAMETERS})
        {
            RET_T retVal;

        )",
         {{"LINE", Code::dec(line.line)}, {"PARAMETERS", lineParameters()}});
    if (line.nmt != NmtRole::Dynamic)
        out_(u"    (void) pCoOptions; /* currently unused */\n");
    writeServices(line);
    out_(uR"(

            return(RET_OK);
        }
        )");
}

void StackInitWriter::writeFinish() const
{
    out_(uR"(

        RET_T coCanOpenStackInit_finish(void)
        {
        )");
    if (init_.pdoRouting || common_.hasUds())
        out_(u"    RET_T retVal;\n");
    if (init_.pdoRouting) {
        out_(u"    /* initialize PDO routing */ ");
        statements_.call(indent, u"coPdoNetworkRouting()"_s);
    } else {
        out_(uR"(
            /*
            * Currently this function is only required to initialize PDO Routing.
            * Without it the function is empty, but may be used later for additional
            * purposes.
            */
            )");
    }
    common_.writeUdsInitCalls(out_);
    out_(uR"(

            return(RET_OK);
        }
        )");
}

void writeStartUpSections(CodeWriter &out, const std::shared_ptr<ObjectDataBase> &store, const DictionaryTables &tables,
                          const Dialect &dialect)
{
    if (tables.options.serverMode) {
        writeServerModeInit(out, tables);
        return;
    }
    const CommonGeneratorHelper common(store, dialect);
    const StackInit init = StackInit::collect(*store, tables);
    StackInitWriter(out, init, common, dialect).writeStartUp();
    writePredefinedSet(out, PredefinedSet::collect(*store, tables), dialect);
    if (tables.stringDefaults)
        writeStringDefaultFunction(out, tables);
}
