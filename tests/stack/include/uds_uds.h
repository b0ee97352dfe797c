#ifndef UDS_UDS_H
#define UDS_UDS_H 1

/* The tables of a diagnostic server and client. */

#include <core_isotp.h>

typedef enum
{
    UDS_SUB_SESSION_DS = 1,
    UDS_SUB_SESSION_PRGS = 2,
    UDS_SUB_SESSION_EXTDS = 3,
    UDS_SUB_SESSION_SSDS = 4,
    UDS_SUB_SESSION_MANU_40 = 64
} UDS_SESSION_T;

typedef enum
{
    UDS_SUB_RESET_HR = 1,
    UDS_SUB_RESET_KOFFONR = 2,
    UDS_SUB_RESET_SR = 3,
    UDS_SUB_RESET_ERPSD = 4,
    UDS_SUB_RESET_DRPSD = 5
} UDS_RESET_T;

typedef enum
{
    UDS_ROUTINE_CTRL_START = 1,
    UDS_ROUTINE_CTRL_STOP = 2,
    UDS_ROUTINE_CTRL_REQ_RESULT = 3
} UDS_ROUTINE_CTRL_T;

#define UDS_MAX_SUB_FUNCTIONS 8
#define UDS_MAX_SESSIONS 128
#define UDS_MAX_LEVELS 128

typedef struct
{
    UNSIGNED8 sid;
    UNSIGNED8 subFunctionCnt;
    UNSIGNED8 subFunctions[UDS_MAX_SUB_FUNCTIONS];
    UNSIGNED8 sessionCnt;
    UNSIGNED8 sessions[UDS_MAX_SESSIONS];
} UDS_REQ_SESSION_TYPE_TABLE_T;

typedef struct
{
    UNSIGNED8 sid;
    UNSIGNED8 subFunctionCnt;
    UNSIGNED8 subFunctions[UDS_MAX_SUB_FUNCTIONS];
    UNSIGNED8 levelCnt;
    UNSIGNED8 levels[UDS_MAX_LEVELS];
} UDS_SECURITY_LEVEL_TABLE_T;

typedef struct
{
    UNSIGNED8 sid;
} UDS_AUTHENT_TABLE_T;

typedef struct
{
    UNSIGNED8 version;
    UNSIGNED8 clientCnt[STACK_LINES];
} UDS_SERVICE_INIT_VAL_T;

typedef struct
{
    UNSIGNED32 serverPhysAddrReqCanID;
    UNSIGNED32 serverPhysAddrRespCanID;
    UNSIGNED32 clientPhysAddrRespCanID;
    UNSIGNED32 clientPhysAddrReqCanID;
    UNSIGNED32 serverFuncAddrReqCanID;
    UNSIGNED32 serverFuncAddrRespCanID;
#if GEN_UDS_INIT_STRUCT_VERSION >= 4
    UNSIGNED32 periodicDataCanID;
#endif
#if GEN_UDS_INIT_STRUCT_VERSION >= 2
    UNSIGNED8 physAddrReq;
    UNSIGNED8 physAddrResp;
    UNSIGNED8 funcAddrReq;
    UNSIGNED8 funcAddrResp;
    ISOTP_FORMAT_T format;
    const UDS_REQ_SESSION_TYPE_TABLE_T *pSessions;
    UNSIGNED16 sessionCnt;
    const UDS_SECURITY_LEVEL_TABLE_T *pSecurityLevels;
    UNSIGNED16 securityLevelCnt;
    BOOL_T serverActive;
    const UDS_AUTHENT_TABLE_T *pAuthentications;
    UNSIGNED16 authenticationCnt;
#endif
} UDS_CONFIG_INIT_VAL_T;

/* What a bootloader knows at run time. */
UNSIGNED32 CFG_UDS_REQ_ID(void);
UNSIGNED32 CFG_UDS_RES_ID(void);
UNSIGNED32 CFG_UDS_FUNC_ID(void);

RET_T udsStackInit_common(const UDS_SERVICE_INIT_VAL_T *pInit);
RET_T udsStackInit_line(STACK_LINE_FIRST const UDS_CONFIG_INIT_VAL_T *pConfig);

#endif /* UDS_UDS_H */
