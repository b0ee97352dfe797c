#ifndef J1939_SDG_H
#define J1939_SDG_H 1

/* Safety data groups (SAE J1939-76): what gen_sdg.c configures and the functions it defines. */

#include <core_common.h>

typedef enum
{
    SDG_TYPE_0,
    SDG_TYPE_1,
    SDG_TYPE_2
} SDG_TYPE_T;

#define SDG_FUSA_PROFILE_1 1u

typedef struct
{
    UNSIGNED32 pgn;
    UNSIGNED32 cycleTime;
    UNSIGNED32 validationTime;
    SDG_TYPE_T type;
    UNSIGNED8 profile;
} SDG_REC_CONFIG_T;

typedef struct
{
    UNSIGNED32 pgn;
    UNSIGNED32 cycleTime;
    SDG_TYPE_T type;
} SDG_TR_CONFIG_T;

typedef struct
{
    UNSIGNED8 sequence;
    UNSIGNED32 timer;
} SDG_REC_T;

typedef struct
{
    UNSIGNED8 sequence;
    UNSIGNED32 timer;
} SDG_TR_T;

/* The count of a line in a list such as J1939_SDG_REC_COUNTS, for conditions; 0 behind its end. */
#define SDG_LINE_0_OF(a, ...) a
#define SDG_LINE_1_OF(a, b, ...) b
#define SDG_LINE_2_OF(a, b, c, ...) c
#define SDG_LINE_3_OF(a, b, c, d, ...) d
#define SDG_LINE_COUNT_0(...) SDG_LINE_0_OF(__VA_ARGS__, 0, 0)
#define SDG_LINE_COUNT_1(...) SDG_LINE_1_OF(__VA_ARGS__, 0, 0)
#define SDG_LINE_COUNT_2(...) SDG_LINE_2_OF(__VA_ARGS__, 0, 0, 0)
#define SDG_LINE_COUNT_3(...) SDG_LINE_3_OF(__VA_ARGS__, 0, 0, 0, 0)

UNSIGNED32 genSdgGetTxPgn(STACK_LINE_FIRST UNSIGNED16 sdgNr);
UNSIGNED32 genSdgGetTxSct(STACK_LINE_FIRST UNSIGNED16 sdgNr);
SDG_TR_T *getTrSdg(STACK_LINE_FIRST UNSIGNED16 sdgNr);
UNSIGNED32 genSdgGetRxPgn(STACK_LINE_FIRST UNSIGNED16 sdgNr);
UNSIGNED16 getRecSdgIdx(STACK_LINE_FIRST UNSIGNED32 pgn);
SDG_REC_T *getRecSdg(STACK_LINE_FIRST UNSIGNED16 recIdx);
const SDG_REC_CONFIG_T *getRecSdgConfig(STACK_LINE_FIRST UNSIGNED16 sdgNr);
UNSIGNED8 genSdgTransmitMapping(STACK_LINE_FIRST UNSIGNED16 sdgNr, UNSIGNED8 *pData);
RET_T genSdgReceiveMapping(STACK_LINE_FIRST UNSIGNED16 sdgNr, UNSIGNED16 addrIdx, const UNSIGNED8 *pBuffer);

#endif /* J1939_SDG_H */
