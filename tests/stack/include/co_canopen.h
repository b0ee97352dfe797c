#ifndef CO_CANOPEN_H
#define CO_CANOPEN_H 1

/* The CANopen services that generated sources start and are called by. */

#include <co_indication.h>
#include <co_odaccess.h>
#include <core_common.h>
#include <core_isotp.h>
#include <stack_indication_types.h>
#ifdef CO_SRDO_SUPPORTED
#include <co_srdo.h>
#endif

/* One entry of a mapping: the variable, its length, its kind and its mapping value. */
#ifdef STACK_V4
#define STACK_MAP_KIND CORE_DATATYPE_T
#else
#define STACK_MAP_KIND BOOL_T
#endif

#define STACK_MAP_ENTRIES 64

typedef struct
{
    UNSIGNED8 count;
    struct
    {
        const void *pVar;
        UNSIGNED8 length;
        STACK_MAP_KIND kind;
        UNSIGNED32 value;
    } entry[STACK_MAP_ENTRIES];
} PDO_TR_MAP_TABLE_T;

typedef struct
{
    UNSIGNED8 count;
    struct
    {
        const void *pVar;
        UNSIGNED8 length;
        STACK_MAP_KIND kind;
        UNSIGNED32 value;
#ifdef CO_NETWORK_ROUTING_CNT
        UNSIGNED16 routing[STACK_LINES];
#endif
    } entry[STACK_MAP_ENTRIES];
} PDO_REC_MAP_TABLE_T;

typedef UNSIGNED8 (*CO_NODE_ID_FUNCTION_T)(STACK_LINE_ONLY);

typedef struct
{
    UNSIGNED16 objectCnt[STACK_LINES];
    UNSIGNED16 txPdoCnt[STACK_LINES];
    UNSIGNED16 rxPdoCnt[STACK_LINES];
#ifdef CO_SRDO_SUPPORTED
    UNSIGNED16 srdoCnt[STACK_LINES];
#endif
    UNSIGNED16 sdoServerCnt[STACK_LINES];
    UNSIGNED16 sdoClientCnt[STACK_LINES];
#ifdef CO_USDO_SERVER_MAX_CONN_CNT
    UNSIGNED16 usdoServerCnt[STACK_LINES];
#endif
#ifdef CO_USDO_CLIENT_MAX_CONN_CNT
    UNSIGNED16 usdoClientCnt[STACK_LINES];
#endif
    UNSIGNED16 errCtrlCnt[STACK_LINES];
    UNSIGNED16 errHistCnt[STACK_LINES];
    UNSIGNED16 actErrHistCnt[STACK_LINES];
    UNSIGNED16 emcyConsCnt[STACK_LINES];
#ifdef CO_NETWORK_ROUTING_CNT
    UNSIGNED16 networkRoutingCnt[STACK_LINES];
#endif
    UNSIGNED16 assignCnt[STACK_LINES];
    UNSIGNED16 guardingCnt[STACK_LINES];
    UNSIGNED8 nodeId[STACK_LINES];
    CO_NODE_ID_FUNCTION_T nodeIdFunction[STACK_LINES];
#ifdef STACK_FD
    BOOL_T fdMode[STACK_LINES];
#endif
} CO_SERVICE_INIT_VAL_T;

typedef struct
{
    UNSIGNED8 master;
} CO_INIT_OPTION_T;

/* Of the start-up of several lines, which is generated, the part that all lines share. */
#ifdef STACK_FD
RET_T coCanOpenStackInit_common(CO_EVENT_STORE_T pLoadFunction, BOOL_T *pModes);
#else
RET_T coCanOpenStackInit_common(CO_EVENT_STORE_T pLoadFunction);
#endif

RET_T coCanOpenStackVarInit(const CO_SERVICE_INIT_VAL_T *pInit);
RET_T coLedInit(STACK_LINE_ONLY);
RET_T coUsdoServerInit(STACK_LINE_ONLY);
RET_T coSdoServerInit(STACK_LINE_FIRST UNSIGNED8 number);
RET_T coUsdoClientInit(STACK_LINE_ONLY);
RET_T coSdoClientInit(STACK_LINE_FIRST UNSIGNED8 number);
RET_T coErrorCtrlInit(STACK_LINE_FIRST UNSIGNED16 heartbeatTime, UNSIGNED8 consumerCnt);
RET_T coEmcyProducerInit(STACK_LINE_ONLY);
RET_T coSyncInit(STACK_LINE_FIRST UNSIGNED32 cobId, UNSIGNED32 period, UNSIGNED8 overflow);
RET_T coEmcyConsumerInit(STACK_LINE_FIRST UNSIGNED8 consumerCnt);
RET_T coTimeInit(STACK_LINE_FIRST BOOL_T producer, BOOL_T consumer);
RET_T coPdoTransmitInit(STACK_LINE_FIRST UNSIGNED16 number, UNSIGNED8 type, UNSIGNED16 inhibitTime,
                        UNSIGNED16 eventTime, UNSIGNED8 syncStart, const PDO_TR_MAP_TABLE_T *pTable);
RET_T coPdoReceiveInit(STACK_LINE_FIRST UNSIGNED16 number, UNSIGNED8 type, UNSIGNED16 inhibitTime, UNSIGNED16 eventTime,
                       const PDO_REC_MAP_TABLE_T *pTable);
RET_T coSrdInit(STACK_LINE_ONLY);
RET_T coGfcInit(STACK_LINE_FIRST BOOL_T producer, BOOL_T consumer);
RET_T coSrdoInit(STACK_LINE_FIRST UNSIGNED16 number, UNSIGNED8 direction, UNSIGNED16 refreshTime,
                 UNSIGNED8 validationTime, UNSIGNED8 type, UNSIGNED32 cobId1, UNSIGNED32 cobId2);
RET_T coIdNegoInit(STACK_LINE_ONLY);
RET_T coGuardingInit(STACK_LINE_ONLY);
RET_T coEventRegister_LOAD_PARA(CO_EVENT_STORE_T pLoadFunction);
RET_T coLssMasterInit(STACK_LINE_ONLY);
RET_T coLssInit(STACK_LINE_ONLY);
RET_T coNmtInit(STACK_LINE_FIRST UNSIGNED8 master);
RET_T coPdoNetworkRouting(void);
UNSIGNED8 coNmtGetNodeId(STACK_LINE_ONLY);
RET_T coOdGetDefaultVal_u32(STACK_LINE_FIRST UNSIGNED16 index, UNSIGNED8 subIndex, UNSIGNED32 *pValue);
RET_T coOdSetCobid(STACK_LINE_FIRST UNSIGNED16 index, UNSIGNED8 subIndex, UNSIGNED32 cobId);

#endif /* CO_CANOPEN_H */
