#ifndef CORE_MAPPING_H
#define CORE_MAPPING_H 1

/* How the signals of a message are told: their place, their kind and the variables they stand in. */

#include <co_odaccess.h>
#include <core_common.h>

/* X(types that only signals have) */
/* clang-format off */
#define STACK_SIGNAL_TYPES(X) \
    X(B) X(U2) X(U3) X(U4) X(U5) X(U6) X(U7) X(U9) X(U10) X(U11) X(U12) X(U13) X(U14) X(U15) X(U17) X(U18) \
    X(U19) X(U20) X(U21) X(U22) X(U23) X(STRING_ASTERIKS)
/* clang-format on */

#ifdef STACK_V4
typedef enum
{
    STACK_FIRST_SIGNAL_TYPE = 0x100,
#define X(name) CORE_DTYPE_##name,
    STACK_SIGNAL_TYPES(X)
#undef X
        STACK_SIGNAL_TYPE_END
} STACK_SIGNAL_TYPE_T;
#endif

#define STACK_MAP_NONE 0u
#define STACK_MAP_NUMERIC 1u
/* The classic flags are the same for all protocols. */
#define J1939_MAP_FLAG_NONE STACK_MAP_NONE
#define J1939_MAP_FLAG_NUMERIC STACK_MAP_NUMERIC

/* A row of a mapping. The V4 stack has the pointers in a table of their own. */
typedef struct
{
    UNSIGNED32 number;
    UNSIGNED16 bitPosition;
    UNSIGNED16 bits;
    UNSIGNED16 type;
#ifndef STACK_V4
    UNSIGNED8 *pVar;
#endif
#ifdef J1939_DYNAMIC_PGN
    UNSIGNED8 state;
#endif
} STACK_MAPPING_T;

typedef STACK_MAPPING_T CORE_MAPPING_T;
typedef STACK_MAPPING_T CO_MAPPING_T;

#endif /* CORE_MAPPING_H */
