#ifndef CO_SRDO_H
#define CO_SRDO_H 1

/* Safety-relevant data objects (EN 50325-5): what gen_srdo.c is made of and the functions it defines. */

#include <co_indication.h>
#include <core_common.h>
#include <stack_indication_types.h>

#ifndef CO_NMT_STATE_PREOP
#define CO_NMT_STATE_PREOP 0x7fu
#define CO_NMT_STATE_OPER 0x05u
#endif

typedef enum
{
    CO_SRDO_DATA_UNKNOWN,
    CO_SRDO_DATA_VALID,
    CO_SRDO_DATA_INVALID
} CO_SRDO_DATA_STATE_T;

typedef struct
{
    UNSIGNED8 direction;
    UNSIGNED16 refreshTime;
    UNSIGNED8 validationTime;
    UNSIGNED32 cobIdNormal;
    UNSIGNED32 cobIdInvers;
    const UNSIGNED32 *pMapTable;
    UNSIGNED8 mapCnt;
    CO_SRDO_DATA_STATE_T dataValid;
} CO_SRDO_DATA_T;

typedef struct
{
    UNSIGNED32 ticks;
} CO_SRDO_TIMER_T;

#ifdef STACK_MULTI_LINE
#define STACK_ENTRY_LINE UNSIGNED8 canLine;
#else
#define STACK_ENTRY_LINE
#endif

#define STACK_SRDO_ENTRY(tag, type)                                                                                    \
    typedef struct                                                                                                     \
    {                                                                                                                  \
        STACK_ENTRY_LINE                                                                                               \
        UNSIGNED16 index;                                                                                              \
        UNSIGNED8 subIndex;                                                                                            \
        type *pData;                                                                                                   \
    } SRDO_OD_ENTRY_##tag##_T

STACK_SRDO_ENTRY(U8, UNSIGNED8);
STACK_SRDO_ENTRY(U16, UNSIGNED16);
STACK_SRDO_ENTRY(U32, UNSIGNED32);
STACK_SRDO_ENTRY(U64, UNSIGNED64);
STACK_SRDO_ENTRY(I8, INTEGER8);
STACK_SRDO_ENTRY(I16, INTEGER16);
STACK_SRDO_ENTRY(I32, INTEGER32);
STACK_SRDO_ENTRY(R32, REAL32);

void *srdoGetObject(STACK_LINE_FIRST UNSIGNED16 index, UNSIGNED8 subIndex);
void srdoInit(STACK_LINE_FIRST UNSIGNED8 ownNodeId, CO_SRDO_TIMER_T *pTimer);
void srdoSetNmtState(STACK_LINE_FIRST CO_NMT_STATE_T state);
void srdoSetConfigurationValid(STACK_LINE_FIRST UNSIGNED8 valid);
CO_SRDO_TIMER_T *srdoGetTimer(STACK_LINE_ONLY);
RET_T srdoReceive(STACK_LINE_FIRST UNSIGNED16 srdoNr, const UNSIGNED8 *pNormal, const UNSIGNED8 *pInvers,
                  UNSIGNED8 len);
RET_T srdoTransmit(STACK_LINE_FIRST UNSIGNED16 srdoNr, UNSIGNED8 *pNormal, UNSIGNED8 *pInvers, UNSIGNED8 len);

#endif /* CO_SRDO_H */
