#ifndef RAWCAN_RAWCAN_H
#define RAWCAN_RAWCAN_H 1

/* The raw CAN-IDs of a device and its start-up. */

#include <core_mapping.h>

typedef struct
{
    UNSIGNED32 id;
    const STACK_MAPPING_T *pMapping;
#ifdef STACK_V4
    UNSIGNED8 **pData;
#endif
    UNSIGNED16 cycleTime;
    UNSIGNED16 inhibitTime;
    UNSIGNED16 mappingCnt;
} RAWCAN_TR_CONFIG_T;

typedef struct
{
    UNSIGNED32 id;
    UNSIGNED32 ignoreMask;
    const STACK_MAPPING_T *pMapping;
#ifdef STACK_V4
    UNSIGNED8 **pData;
#endif
    UNSIGNED16 monitoringTime;
    UNSIGNED16 mappingCnt;
} RAWCAN_REC_CONFIG_T;

typedef struct
{
    const RAWCAN_TR_CONFIG_T *pTransmit;
    UNSIGNED16 transmitCnt;
    const RAWCAN_REC_CONFIG_T *pReceive;
    UNSIGNED16 receiveCnt;
} RAWCAN_CONFIG_T;

typedef struct
{
    UNSIGNED16 receiveCnt[STACK_LINES];
    UNSIGNED16 transmitCnt[STACK_LINES];
} RAWCAN_SERVICE_INIT_VAL_T;

#ifdef STACK_FD
RET_T rawcanStackInit(BOOL_T *pModes);
#else
RET_T rawcanStackInit(void);
#endif

RET_T rawcanStackInit_common(const RAWCAN_SERVICE_INIT_VAL_T *pInit);
RET_T rawcanStackInit_line(const RAWCAN_CONFIG_T *pConfig);

#endif /* RAWCAN_RAWCAN_H */
