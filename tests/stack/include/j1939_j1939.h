#ifndef J1939_J1939_H
#define J1939_J1939_H 1

/* The parameter groups of a J1939 device and its start-up. */

#include <core_mapping.h>
#ifdef J1939_SDG_SUPPORTED
#include <j1939_sdg.h>
#endif

/* Configurations may leave out what their stack sets to 0. */
#pragma GCC diagnostic ignored "-Wmissing-field-initializers"

/* The V4 stack counts its lines by another name and keeps this one. */
#if defined(CAN_MULTI_LINE_CNT) && !defined(CO_MULTI_LINE_CNT)
#define CO_MULTI_LINE_CNT CAN_MULTI_LINE_CNT
#endif

typedef STACK_MAPPING_T J1939_MAPPING_T;

/* Formats of the trailer that carries assurance data (SAE J1939-22), and what the data assure. */
typedef enum
{
    J1939_ATF_SAE_NONE,
    J1939_ATF_MANU_CYBERSEC_32,
    J1939_ATF_MANU_CYBERSEC_64,
    J1939_ATF_MANU_FUNC_SAFETY_32,
    J1939_ATF_MANU_FUNC_SAFETY_64,
    J1939_ATF_MANU_FUNC_CYB_SAFE_32
} J1939_ATF_T;

typedef enum
{
    J1939_ADT_MANU_FUNC_CYB_SAFE,
    J1939_ADT_MANU_FUNC_SAFETY,
    J1939_ADT_MANU_CYBERSEC,
    J1939_ADT_NONE
} J1939_ADT_T;

typedef struct
{
    UNSIGNED32 number;
    const J1939_MAPPING_T *pMapping;
#ifdef STACK_V4
    UNSIGNED8 **pData;
#endif
    UNSIGNED16 mappingCnt;
#ifdef J1939_MULTI_SRC_ADDR
    UNSIGNED8 multiSourceAddress;
#endif
    UNSIGNED16 cycleTime;
    UNSIGNED16 inhibitTime;
    UNSIGNED8 priority;
    J1939_ATF_T trailerFormat;
    J1939_ADT_T assuranceType;
    UNSIGNED8 assuranceSize;
} J1939_PGN_CONFIG_T;

typedef struct
{
    const J1939_PGN_CONFIG_T *pTransmit;
    UNSIGNED16 transmitCnt;
    const J1939_PGN_CONFIG_T *pReceive;
    UNSIGNED16 receiveCnt;
    const J1939_PGN_CONFIG_T *pAddressClaim;
    UNSIGNED8 sourceAddress;
} J1939_CONFIG_T;

typedef struct
{
#ifdef STACK_V4
    UNSIGNED16 receiveConfigCnt[STACK_LINES];
#endif
    UNSIGNED16 receiveCnt[STACK_LINES];
    UNSIGNED16 transmitCnt[STACK_LINES];
    UNSIGNED16 sdoServerCnt[STACK_LINES];
    UNSIGNED16 sdoClientCnt[STACK_LINES];
#ifdef J1939_SDG_SUPPORTED
    UNSIGNED16 sdgTransmitCnt[STACK_LINES];
    UNSIGNED16 sdgReceiveCnt[STACK_LINES];
#endif
#ifdef STACK_FD
    UNSIGNED16 destinationBufferCnt[STACK_LINES];
#endif
} J1939_SERVICE_INIT_VAL_T;

#ifdef STACK_FD
RET_T j1939StackInit(BOOL_T *pModes);
#else
RET_T j1939StackInit(void);
#endif

RET_T j1939StackInit_common(const J1939_SERVICE_INIT_VAL_T *pInit);
RET_T j1939StackInit_line(const J1939_CONFIG_T *pConfig);

#endif /* J1939_J1939_H */
