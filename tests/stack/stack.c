/* The stack as the tests know it: it records what it is called with, and fails on demand. */

#include "stack.h"

#include <core_isotp.h>
#include <ico_odaccess.h>
#include <stdarg.h>
#include <stdio.h>

#include <uds_uds.h>

STACK_DICTIONARY_T stackDictionaries[STACK_LINES];
int stackTrace = 0;
int stackFailAt = 0;

static int callCount = 0;

static RET_T record(const char *format, ...)
{
    va_list arguments;

    if (stackTrace) {
        va_start(arguments, format);
        vprintf(format, arguments);
        va_end(arguments);
        putchar('\n');
    }
    ++callCount;
    return callCount == stackFailAt ? RET_SERVICE_FAILED : RET_OK;
}

/* With several lines each call has its line first. */
#ifdef STACK_MULTI_LINE
#define LINE_FORMAT "%u: "
#define LINE_VALUE canLine,
#define LINE_NUMBER canLine
#else
#define LINE_FORMAT "%s"
#define LINE_VALUE "",
#define LINE_NUMBER 0
#endif
#define RECORD0(name) record(LINE_FORMAT "%s", LINE_VALUE name)
#define RECORD(format, ...) record(LINE_FORMAT format, LINE_VALUE __VA_ARGS__)

static void printCounts(const char *name, const UNSIGNED16 *counts)
{
    unsigned last = STACK_LINES;
    unsigned line;

    if (!stackTrace)
        return;
    while (last > 1 && counts[last - 1] == 0)
        --last;
    printf("  %s:", name);
    for (line = 0; line < last; ++line)
        printf(" %u", counts[line]);
    putchar('\n');
}

static RET_T commonInit(const CORE_COMMON_INIT_VAL_T *pInit)
{
    UNSIGNED16 protocols[STACK_LINES];
    UNSIGNED16 modes[STACK_LINES];
    RET_T ret = record("common initialisation, %s", pInit->multiLine ? "several lines" : "one line");
    unsigned line;

    for (line = 0; line < STACK_LINES; ++line) {
        protocols[line] = pInit->protocolType[line];
#ifdef STACK_FD
        modes[line] = pInit->fdMode[line];
#else
        modes[line] = 0;
#endif
    }
    printCounts("receive buffers", pInit->recBufferCnt);
    printCounts("transmit buffers", pInit->trBufferCnt);
    printCounts("protocols", protocols);
#ifdef ISOTP_SUPPORTED
    printCounts("ISO-TP clients", pInit->isoTpClientCnt);
    printCounts("ISO-TP servers", pInit->isoTpServerCnt);
#endif
    printCounts("FD modes", modes);
    return ret;
}

RET_T coreStackInit(const CORE_COMMON_INIT_VAL_T *pInit)
{
    return commonInit(pInit);
}

RET_T commonStackInit(const CO_COMMON_INIT_VAL_T *pInit)
{
    return commonInit(pInit);
}

RET_T coCanOpenStackVarInit(const CO_SERVICE_INIT_VAL_T *pInit)
{
    UNSIGNED16 nodeIds[STACK_LINES];
    RET_T ret = record("service variables");
    unsigned line;

    for (line = 0; line < STACK_LINES; ++line)
        nodeIds[line] = pInit->nodeId[line];
    printCounts("objects", pInit->objectCnt);
    printCounts("TPDOs", pInit->txPdoCnt);
    printCounts("RPDOs", pInit->rxPdoCnt);
#ifdef CO_SRDO_SUPPORTED
    printCounts("SRDOs", pInit->srdoCnt);
#endif
    printCounts("SDO servers", pInit->sdoServerCnt);
    printCounts("SDO clients", pInit->sdoClientCnt);
    printCounts("error control", pInit->errCtrlCnt);
    printCounts("error history", pInit->errHistCnt);
    printCounts("active errors", pInit->actErrHistCnt);
    printCounts("emergency consumers", pInit->emcyConsCnt);
    printCounts("assigned slaves", pInit->assignCnt);
    printCounts("guarded slaves", pInit->guardingCnt);
    printCounts("node ids", nodeIds);
    return ret;
}

RET_T coOdInitOdPtr(STACK_LINE_FIRST const CO_OD_ASSIGN_T *pAssign, UNSIGNED16 assignCnt, const CO_OBJECT_DESC_T *pDesc,
                    UNSIGNED16 descCnt, void *pReserved, const CO_OD_DATA_VARIABLES_T *pVariables)
{
    STACK_DICTIONARY_T *pDictionary = &stackDictionaries[LINE_NUMBER];

    (void)pReserved;
    pDictionary->present = 1;
    pDictionary->pAssign = pAssign;
    pDictionary->assignCnt = assignCnt;
    pDictionary->pDesc = pDesc;
    pDictionary->descCnt = descCnt;
    pDictionary->pVariables = pVariables;
    return RECORD("dictionary of %u objects, %u rows", assignCnt, descCnt);
}

/* The calls without an argument. */
#define CALL(function, text)                                                                                           \
    RET_T function(STACK_LINE_ONLY)                                                                                    \
    {                                                                                                                  \
        return RECORD0(text);                                                                                          \
    }
CALL(coLedInit, "LED")
CALL(coUsdoServerInit, "USDO server")
CALL(coUsdoClientInit, "USDO client")
CALL(coEmcyProducerInit, "emergency producer")
CALL(coSrdInit, "SRD")
CALL(isoTpInit, "ISO-TP")
CALL(coIdNegoInit, "ID negotiation")
CALL(coGuardingInit, "guarding")
CALL(coLssMasterInit, "LSS master")
CALL(coLssInit, "LSS slave")

void icoOdAccessVarInit(void)
{
    (void)record("dictionary without CANopen");
}

RET_T coSdoServerInit(STACK_LINE_FIRST UNSIGNED8 number)
{
    return RECORD("SDO server %u", number);
}

RET_T coSdoClientInit(STACK_LINE_FIRST UNSIGNED8 number)
{
    return RECORD("SDO client %u", number);
}

RET_T coErrorCtrlInit(STACK_LINE_FIRST UNSIGNED16 heartbeatTime, UNSIGNED8 consumerCnt)
{
    return RECORD("error control, heartbeat %u ms, %u consumers", heartbeatTime, consumerCnt);
}

RET_T coSyncInit(STACK_LINE_FIRST UNSIGNED32 cobId, UNSIGNED32 period, UNSIGNED8 overflow)
{
    return RECORD("sync 0x%lx, %lu us, overflow %u", (unsigned long)cobId, (unsigned long)period, overflow);
}

RET_T coEmcyConsumerInit(STACK_LINE_FIRST UNSIGNED8 consumerCnt)
{
    return RECORD("emergency consumer of %u", consumerCnt);
}

RET_T coTimeInit(STACK_LINE_FIRST BOOL_T producer, BOOL_T consumer)
{
    return RECORD("time, producer %u, consumer %u", producer, consumer);
}

RET_T coPdoTransmitInit(STACK_LINE_FIRST UNSIGNED16 number, UNSIGNED8 type, UNSIGNED16 inhibitTime,
                        UNSIGNED16 eventTime, UNSIGNED8 syncStart, const PDO_TR_MAP_TABLE_T *pTable)
{
    RET_T ret = RECORD("TPDO %u, type %u, inhibit %u, event %u, sync start %u", number, type, inhibitTime, eventTime,
                       syncStart);
    unsigned i;

    for (i = 0; stackTrace && pTable != NULL && i < pTable->count && i < STACK_MAP_ENTRIES; ++i)
        printf("  maps 0x%08lx, length %u, %s\n", (unsigned long)pTable->entry[i].value, pTable->entry[i].length,
               pTable->entry[i].pVar == NULL ? "nothing" : "data");
    return ret;
}

RET_T coPdoReceiveInit(STACK_LINE_FIRST UNSIGNED16 number, UNSIGNED8 type, UNSIGNED16 inhibitTime, UNSIGNED16 eventTime,
                       const PDO_REC_MAP_TABLE_T *pTable)
{
    RET_T ret = RECORD("RPDO %u, type %u, inhibit %u, event %u", number, type, inhibitTime, eventTime);
    unsigned i;

    for (i = 0; stackTrace && pTable != NULL && i < pTable->count && i < STACK_MAP_ENTRIES; ++i) {
        printf("  maps 0x%08lx, length %u, %s", (unsigned long)pTable->entry[i].value, pTable->entry[i].length,
               pTable->entry[i].pVar == NULL ? "nothing" : "data");
#ifdef CO_NETWORK_ROUTING_CNT
        printf(", routed to %u %u", pTable->entry[i].routing[0], pTable->entry[i].routing[1]);
#endif
        putchar('\n');
    }
    return ret;
}

RET_T coGfcInit(STACK_LINE_FIRST BOOL_T producer, BOOL_T consumer)
{
    return RECORD("GFC, producer %u, consumer %u", producer, consumer);
}

RET_T coSrdoInit(STACK_LINE_FIRST UNSIGNED16 number, UNSIGNED8 direction, UNSIGNED16 refreshTime,
                 UNSIGNED8 validationTime, UNSIGNED8 type, UNSIGNED32 cobId1, UNSIGNED32 cobId2)
{
    return RECORD("SRDO %u, direction %u, refresh %u, validation %u, type %u, 0x%lx and 0x%lx", number, direction,
                  refreshTime, validationTime, type, (unsigned long)cobId1, (unsigned long)cobId2);
}

RET_T coEventRegister_LOAD_PARA(CO_EVENT_STORE_T pLoadFunction)
{
    return record("load parameters %s", pLoadFunction == NULL ? "unset" : "set");
}

RET_T coNmtInit(STACK_LINE_FIRST UNSIGNED8 master)
{
    return RECORD("NMT %s", master ? "master" : "slave");
}

RET_T coPdoNetworkRouting(void)
{
    return record("PDO routing");
}

UNSIGNED8 coNmtGetNodeId(STACK_LINE_ONLY)
{
    (void)RECORD0("node id");
    return 0x20;
}

/* A default that tells the object which it was asked of. */
RET_T coOdGetDefaultVal_u32(STACK_LINE_FIRST UNSIGNED16 index, UNSIGNED8 subIndex, UNSIGNED32 *pValue)
{
    *pValue = (UNSIGNED32)index << 8 | subIndex;
    return RECORD("default of 0x%04x:%u", index, subIndex);
}

RET_T coOdSetCobid(STACK_LINE_FIRST UNSIGNED16 index, UNSIGNED8 subIndex, UNSIGNED32 cobId)
{
    return RECORD("COB-ID of 0x%04x:%u is 0x%lx", index, subIndex, (unsigned long)cobId);
}

#ifdef GEN_UDS_INIT_STRUCT_VERSION

UNSIGNED32 CFG_UDS_REQ_ID(void)
{
    return 0x701;
}

UNSIGNED32 CFG_UDS_RES_ID(void)
{
    return 0x702;
}

UNSIGNED32 CFG_UDS_FUNC_ID(void)
{
    return 0x703;
}

RET_T udsStackInit_common(const UDS_SERVICE_INIT_VAL_T *pInit)
{
    return record("UDS version %u, %u clients", pInit->version, pInit->clientCnt[0]);
}

RET_T udsStackInit_line(STACK_LINE_FIRST const UDS_CONFIG_INIT_VAL_T *pConfig)
{
    RET_T ret = RECORD("UDS 0x%lx 0x%lx 0x%lx", (unsigned long)pConfig->serverPhysAddrReqCanID,
                       (unsigned long)pConfig->serverPhysAddrRespCanID, (unsigned long)pConfig->serverFuncAddrReqCanID);

#if GEN_UDS_INIT_STRUCT_VERSION >= 2
    unsigned i;

    if (stackTrace)
        printf("  format %d, %s, %u authentications\n", (int)pConfig->format,
               pConfig->serverActive ? "active" : "inactive", pConfig->authenticationCnt);
    for (i = 0; stackTrace && i < pConfig->sessionCnt; ++i)
        printf("  service 0x%02x: %u sub-functions, %u sessions, %u levels\n", pConfig->pSessions[i].sid,
               pConfig->pSessions[i].subFunctionCnt, pConfig->pSessions[i].sessionCnt,
               pConfig->pSecurityLevels[i].levelCnt);
#endif
    return ret;
}

#endif /* GEN_UDS_INIT_STRUCT_VERSION */
