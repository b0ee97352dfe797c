#ifndef CORE_DATATYPE_H
#define CORE_DATATYPE_H 1

/* The basic types of the generated sources, as the tests of this program need them. */

#include <stddef.h>
#include <stdint.h>
#include <string.h>

#include <gen_define.h>

/* A V4 header counts its buffers with names of the core, a classic one with names of its own. */
#if defined(CORE_REC_BUFFER_COUNTS) || defined(CORE_REC_BUFFER_CNT)
#define STACK_V4 1
#endif

/* A J1939 device of several lines may have a dictionary that knows of one line only. */
#if (defined(CAN_MULTI_LINE) || defined(CO_MULTI_LINE)) && !defined(STACK_ONE_DICTIONARY)
#define STACK_MULTI_LINE 1
#endif

#if defined(CORE_CANFD_SUPPORTED) || defined(CO_CANFD_SUPPORTED)
#define STACK_FD 1
#endif

/* Lines that the common structures have room for. */
#define STACK_LINES 32

#ifndef CORE_CONST
#define CORE_CONST const
#endif
#ifndef CORE_CONST_STORAGE_CLASS
#define CORE_CONST_STORAGE_CLASS
#endif
#ifndef CO_CONST
#define CO_CONST const
#endif

typedef uint8_t UNSIGNED8;
typedef uint16_t UNSIGNED16;
typedef uint32_t UNSIGNED32;
typedef int8_t INTEGER8;
typedef int16_t INTEGER16;
typedef int32_t INTEGER32;
typedef float REAL32;
typedef UNSIGNED8 BOOL_T;

#define CO_FALSE 0u
#define CO_TRUE 1u

/* Types without a counterpart in C: their bytes, the most significant one first. */
typedef struct
{
    UNSIGNED8 byte[3];
} UNSIGNED24;
typedef struct
{
    UNSIGNED8 byte[3];
} INTEGER24;
typedef struct
{
    UNSIGNED8 byte[5];
} UNSIGNED40;
typedef struct
{
    UNSIGNED8 byte[6];
} UNSIGNED48;
typedef struct
{
    UNSIGNED8 byte[8];
} UNSIGNED64;

/* clang-format off */
#define BYTES_SET(...) { { __VA_ARGS__ } }
/* clang-format on */
#define U24_SET BYTES_SET
#define I24_SET BYTES_SET
#define U40_SET BYTES_SET
#define U48_SET BYTES_SET
#define U64_SET BYTES_SET

typedef const char *VIS_STRING;
typedef const char *UTF8_STRING;
typedef UNSIGNED8 OCTET_STRING;
typedef UNSIGNED8 *CO_DOMAIN_PTR;

typedef enum
{
    RET_OK,
    RET_PARAMETER_INVALID,
    RET_INVALID_PARAMETER,
    RET_NOT_INITIALIZED,
    RET_SERVICE_FAILED /* what the recorder fails a call with */
} RET_T;

typedef UNSIGNED8 CAN_LINE_TYPE;
typedef UNSIGNED8 CO_LINE_TYPE;
#define CAN_LINE_ARRAY_DECL STACK_LINES
#define CO_LINE_ARRAY_DECL STACK_LINES

/* What the functions of a stack of several lines have before their own parameters. */
#ifdef STACK_MULTI_LINE
#define STACK_LINE_FIRST UNSIGNED8 canLine,
#define STACK_LINE_ONLY UNSIGNED8 canLine
#else
#define STACK_LINE_FIRST
#define STACK_LINE_ONLY void
#endif

#endif /* CORE_DATATYPE_H */
