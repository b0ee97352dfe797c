#ifndef CO_ODACCESS_H
#define CO_ODACCESS_H 1

/* The tables of an object dictionary. */

#include <core_datatype.h>

/* X(short name of a data type) */
/* clang-format off */
#define STACK_TYPES(X) \
    X(U8) X(U16) X(U24) X(U32) X(U40) X(U48) X(U56) X(U64) X(I8) X(I16) X(I24) X(I32) X(I40) X(I48) X(I56) \
    X(I64) X(R32) X(R64) X(BOOL) X(VS) X(OS) X(US) X(TOD) X(TD) X(SN) X(SA) X(UTF8)
/* clang-format on */

/* X(what serves a subindex) */
/* clang-format off */
#define STACK_SPECIFIERS(X) \
    X(CONST) X(VAR) X(PTR) X(SYNC) X(EMCY) X(ERRCTRL) X(STORE) X(TIME) X(NMT) X(SDO_SERVER) X(SDO_CLIENT) X(GFC) \
    X(SRDO) X(RPDO) X(RMAP) X(TPDO) X(TMAP) X(SRD) X(NETWORK) X(FLYMA)
/* clang-format on */

typedef enum
{
#define X(name) STACK_TYPE_##name,
    STACK_TYPES(X)
#undef X
        STACK_TYPE_DOMAIN,
    STACK_TYPE_NON_NUMERIC,
    STACK_TYPE_STRING_NULL,
    STACK_TYPE_OCTET_STRING,
    STACK_TYPE_UNKNOWN
} STACK_TYPE_T;

typedef enum
{
#define X(name) CO_DSPEC_##name,
    STACK_SPECIFIERS(X)
#undef X
        CO_DSPEC
} CO_DSPEC_T;

#ifdef STACK_V4

#define CORE_DTYPE(name) CORE_DTYPE_##name = STACK_TYPE_##name
typedef enum
{
#define X(name) CORE_DTYPE(name),
    STACK_TYPES(X)
#undef X
        CORE_DTYPE(DOMAIN),
    CORE_DTYPE(NON_NUMERIC),
    CORE_DTYPE(STRING_NULL),
    CORE_DTYPE(OCTET_STRING),
    CORE_DTYPE_ = STACK_TYPE_UNKNOWN
} CORE_DATATYPE_T;

#else

/* One number for both: a data type and what serves it. */
#define STACK_COMBINED(type, specifier) ((type)*32 + (specifier))
typedef enum
{
#define X(name)                                                                                                        \
    CO_DTYPE_##name##_CONST = STACK_COMBINED(STACK_TYPE_##name, CO_DSPEC_CONST),                                       \
    CO_DTYPE_##name##_VAR = STACK_COMBINED(STACK_TYPE_##name, CO_DSPEC_VAR),                                           \
    CO_DTYPE_##name##_PTR = STACK_COMBINED(STACK_TYPE_##name, CO_DSPEC_PTR),                                           \
    CO_DTYPE_##name##_SYNC = STACK_COMBINED(STACK_TYPE_##name, CO_DSPEC_SYNC),                                         \
    CO_DTYPE_##name##_EMCY = STACK_COMBINED(STACK_TYPE_##name, CO_DSPEC_EMCY),                                         \
    CO_DTYPE_##name##_ERRCTRL = STACK_COMBINED(STACK_TYPE_##name, CO_DSPEC_ERRCTRL),                                   \
    CO_DTYPE_##name##_STORE = STACK_COMBINED(STACK_TYPE_##name, CO_DSPEC_STORE),                                       \
    CO_DTYPE_##name##_TIME = STACK_COMBINED(STACK_TYPE_##name, CO_DSPEC_TIME),                                         \
    CO_DTYPE_##name##_NMT = STACK_COMBINED(STACK_TYPE_##name, CO_DSPEC_NMT),                                           \
    CO_DTYPE_##name##_SDO_SERVER = STACK_COMBINED(STACK_TYPE_##name, CO_DSPEC_SDO_SERVER),                             \
    CO_DTYPE_##name##_SDO_CLIENT = STACK_COMBINED(STACK_TYPE_##name, CO_DSPEC_SDO_CLIENT),                             \
    CO_DTYPE_##name##_GFC = STACK_COMBINED(STACK_TYPE_##name, CO_DSPEC_GFC),                                           \
    CO_DTYPE_##name##_SRDO = STACK_COMBINED(STACK_TYPE_##name, CO_DSPEC_SRDO),                                         \
    CO_DTYPE_##name##_RPDO = STACK_COMBINED(STACK_TYPE_##name, CO_DSPEC_RPDO),                                         \
    CO_DTYPE_##name##_RMAP = STACK_COMBINED(STACK_TYPE_##name, CO_DSPEC_RMAP),                                         \
    CO_DTYPE_##name##_TPDO = STACK_COMBINED(STACK_TYPE_##name, CO_DSPEC_TPDO),                                         \
    CO_DTYPE_##name##_TMAP = STACK_COMBINED(STACK_TYPE_##name, CO_DSPEC_TMAP),                                         \
    CO_DTYPE_##name##_SRD = STACK_COMBINED(STACK_TYPE_##name, CO_DSPEC_SRD),                                           \
    CO_DTYPE_##name##_NETWORK = STACK_COMBINED(STACK_TYPE_##name, CO_DSPEC_NETWORK),                                   \
    CO_DTYPE_##name##_FLYMA = STACK_COMBINED(STACK_TYPE_##name, CO_DSPEC_FLYMA),                                       \
    CO_DTYPE_##name = STACK_COMBINED(STACK_TYPE_##name, CO_DSPEC),
    STACK_TYPES(X)
#undef X
        CO_DTYPE_DOMAIN = STACK_COMBINED(STACK_TYPE_DOMAIN, CO_DSPEC)
} CO_DATATYPE_T;

#endif /* STACK_V4 */

typedef enum
{
    CO_ODTYPE_DOM,
    CO_ODTYPE_VAR,
    CO_ODTYPE_ARRAY,
    CO_ODTYPE_STRUCT,
    invalid
} CO_OD_TYPE_T;

#define CO_ATTR_NUM 0x0001u
#define CO_ATTR_READ 0x0002u
#define CO_ATTR_WRITE 0x0004u
#define CO_ATTR_MAP_TR 0x0008u
#define CO_ATTR_MAP_REC 0x0010u
#define CO_ATTR_DEFVAL 0x0020u
#define CO_ATTR_LIMIT 0x0040u
#define CO_ATTR_STORE 0x0080u
#define CO_ATTR_COMPACT 0x0100u
#define CO_ATTR_DYNOD 0x0200u

typedef struct
{
    UNSIGNED16 index;
    UNSIGNED16 numberOfDesc;
    UNSIGNED8 highestSub;
    CO_OD_TYPE_T odType;
    UNSIGNED16 firstDesc;
} CO_OD_ASSIGN_T;

typedef struct
{
    UNSIGNED8 subIndex;
#ifdef STACK_V4
    CORE_DATATYPE_T type;
    CO_DSPEC_T specifier;
#else
    CO_DATATYPE_T type;
#endif
    UNSIGNED16 value;
    UNSIGNED16 attributes;
    UNSIGNED16 defaultValue;
#ifdef CO_CONFIG_LIMIT_CHECK
    UNSIGNED16 lowerLimit;
    UNSIGNED16 upperLimit;
#endif
} CO_OBJECT_DESC_T;

typedef struct
{
    const UNSIGNED8 *od_const_u8;
    const UNSIGNED16 *od_const_u16;
    const UNSIGNED32 *od_const_u32;
    const REAL32 *od_const_r32;
#ifdef CO_EXTENDED_DATA_TYPES
    const UNSIGNED24 *od_const_u24;
    const UNSIGNED40 *od_const_u40;
    const UNSIGNED48 *od_const_u48;
    const UNSIGNED64 *od_const_u64;
#endif
    UNSIGNED8 *od_u8;
    UNSIGNED16 *od_u16;
    UNSIGNED32 *od_u32;
    REAL32 *od_r32;
#ifdef CO_EXTENDED_DATA_TYPES
    UNSIGNED24 *od_u24;
    UNSIGNED40 *od_u40;
    UNSIGNED48 *od_u48;
    UNSIGNED64 *od_u64;
#endif
    const INTEGER8 *od_const_i8;
    const INTEGER16 *od_const_i16;
    const INTEGER32 *od_const_i32;
    INTEGER8 *od_i8;
    INTEGER16 *od_i16;
    INTEGER32 *od_i32;
    UNSIGNED8 *const *od_ptr_u8;
    UNSIGNED16 *const *od_ptr_u16;
    UNSIGNED32 *const *od_ptr_u32;
#ifdef CO_EXTENDED_DATA_TYPES
    UNSIGNED24 *const *od_ptr_u24;
    UNSIGNED40 *const *od_ptr_u40;
    UNSIGNED48 *const *od_ptr_u48;
    UNSIGNED64 *const *od_ptr_u64;
#endif
    INTEGER8 *const *od_ptr_i8;
    INTEGER16 *const *od_ptr_i16;
    INTEGER32 *const *od_ptr_i32;
    REAL32 *const *od_ptr_r32;
    const VIS_STRING *od_const_vis_string;
    const UNSIGNED32 *od_const_vis_string_len;
    VIS_STRING *od_vis_string;
    UNSIGNED32 *od_vis_string_len;
    UNSIGNED32 *od_vis_string_actLen;
#ifdef CO_UTF8_DATA_TYPE
    const UTF8_STRING *od_const_utf8_string;
    const UNSIGNED32 *od_const_utf8_string_len;
    VIS_STRING *od_utf8_string;
    UNSIGNED32 *od_utf8_string_len;
    UNSIGNED32 *od_utf8_string_actLen;
#endif
    OCTET_STRING **od_octet_string;
    UNSIGNED32 *od_octet_string_len;
    UNSIGNED32 *od_octet_string_actLen;
    CO_DOMAIN_PTR *od_domain;
    UNSIGNED32 *od_domain_len;
    UNSIGNED32 *od_domain_actLen;
} CO_OD_DATA_VARIABLES_T;

RET_T coOdInitOdPtr(STACK_LINE_FIRST const CO_OD_ASSIGN_T *pAssign, UNSIGNED16 assignCnt, const CO_OBJECT_DESC_T *pDesc,
                    UNSIGNED16 descCnt, void *pReserved, const CO_OD_DATA_VARIABLES_T *pVariables);

#endif /* CO_ODACCESS_H */
