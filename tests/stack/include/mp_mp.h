#ifndef MP_MP_H
#define MP_MP_H 1

/* A device of several protocols. */

#include <co_indication.h>
#include <core_common.h>
#ifdef CANOPEN_SUPPORTED
#include <co_canopen.h>
#endif
#ifdef J1939_SUPPORTED
#include <j1939_j1939.h>
#endif
#ifdef RAWCAN_SUPPORTED
#include <rawcan_rawcan.h>
#endif

RET_T mpStackInit(CORE_PROTOCOL_TYPE_T *pProtType
#ifdef CANOPEN_SUPPORTED
                  ,
                  CO_EVENT_STORE_T pLoadFunction
#endif
#ifdef STACK_FD
                  ,
                  BOOL_T *pModes
#endif
);
RET_T udsStackInit(void);

#endif /* MP_MP_H */
