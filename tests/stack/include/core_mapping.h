#ifndef CORE_MAPPING_H
#define CORE_MAPPING_H 1

/* How the signals of a message are told: their place, their kind and the variables they stand in. */

#include <co_odaccess.h>
#include <core_common.h>

#ifdef STACK_V4
/* Types that only signals have. */
typedef enum {
	CORE_DTYPE_B = 0x100,
	CORE_DTYPE_U2, CORE_DTYPE_U3, CORE_DTYPE_U4, CORE_DTYPE_U5, CORE_DTYPE_U6, CORE_DTYPE_U7,
	CORE_DTYPE_U9, CORE_DTYPE_U10, CORE_DTYPE_U11, CORE_DTYPE_U12, CORE_DTYPE_U13, CORE_DTYPE_U14, CORE_DTYPE_U15,
	CORE_DTYPE_U17, CORE_DTYPE_U18, CORE_DTYPE_U19, CORE_DTYPE_U20, CORE_DTYPE_U21, CORE_DTYPE_U22, CORE_DTYPE_U23,
	CORE_DTYPE_STRING_ASTERIKS
} STACK_SIGNAL_TYPE_T;
#endif

/* A row of a mapping. The V4 stack has the pointers in a table of their own. */
typedef struct {
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
