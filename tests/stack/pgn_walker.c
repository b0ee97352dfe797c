/* Starts a generated device with J1939, raw CAN or both and prints what the stack is handed: a line for each message
 * and each signal. WALK_MP is defined for gen_mp.c, whose CANopen part is not asked for, WALK_RAWCAN for gen_rawcan.c.
 *
 * "symbols.h" lists the variables of the application, SYMBOL(name) each, so that pointers can be told by name. */

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <gen_extern_decl.h>
#if defined(WALK_MP)
#include <mp_mp.h>
#elif defined(WALK_RAWCAN)
#include <rawcan_rawcan.h>
#else
#include <j1939_j1939.h>
#endif

static const struct
{
    const char *name;
    const void *address;
} symbols[] = {
#define SYMBOL(name) {#name, &name},
#include "symbols.h"
    {"NULL", NULL}};

static const char *typeName(UNSIGNED16 type)
{
#ifdef STACK_V4
    switch ((int)type) {
#define X(name)                                                                                                        \
    case CORE_DTYPE_##name:                                                                                            \
        return #name;
        STACK_TYPES(X)
        STACK_SIGNAL_TYPES(X)
#undef X
    case CORE_DTYPE_NON_NUMERIC:
        return "NON_NUMERIC";
    case CORE_DTYPE_STRING_NULL:
        return "STRING_NULL";
    default:
        return "?";
    }
#else
    return type == STACK_MAP_NUMERIC ? "NUMERIC" : "NONE";
#endif
}

/* The value of a variable of the generated file, which is as wide as the next C type. */
static void printValue(const void *pVar, UNSIGNED16 bits)
{
    UNSIGNED8 u8;
    UNSIGNED16 u16;
    UNSIGNED32 u32;

    if (bits <= 8) {
        memcpy(&u8, pVar, sizeof u8);
        printf("%u", (unsigned)u8);
    } else if (bits <= 16) {
        memcpy(&u16, pVar, sizeof u16);
        printf("%u", (unsigned)u16);
    } else if (bits <= 32) {
        memcpy(&u32, pVar, sizeof u32);
        printf("%lu", (unsigned long)u32);
    } else {
        const UNSIGNED8 *pByte = ((const UNSIGNED64 *)pVar)->byte;
        UNSIGNED16 i;
        for (i = 0; i < 8; i++) {
            printf("%02x", (unsigned)pByte[i]);
        }
    }
}

static void printTarget(const void *pVar, UNSIGNED16 bits)
{
    size_t i;
    for (i = 0; i < sizeof symbols / sizeof symbols[0]; i++) {
        if (symbols[i].address == pVar) {
            printf("%s\n", symbols[i].name);
            return;
        }
    }
    printf("managed ");
    printValue(pVar, bits);
    printf("\n");
}

static void printRows(const STACK_MAPPING_T *pRows, UNSIGNED8 **pData, UNSIGNED16 count)
{
    UNSIGNED16 i;
    (void)pData;
    for (i = 0; i < count; i++) {
        printf("  %lu at %u bits %u %s ", (unsigned long)pRows[i].number, (unsigned)pRows[i].bitPosition,
               (unsigned)pRows[i].bits, typeName(pRows[i].type));
#ifdef STACK_V4
        printTarget(pData[i], pRows[i].bits);
#else
        printTarget(pRows[i].pVar, pRows[i].bits);
#endif
    }
}

#ifdef STACK_V4
#define POINTERS(config) ((config).pData)
#else
#define POINTERS(config) NULL
#endif

#ifdef J1939_SUPPORTED
static void printMessage(const char *kind, const J1939_PGN_CONFIG_T *pConfig)
{
    printf("%s %lu cycle %u inhibit %u priority %u count %u trailer %d %d %u\n", kind, (unsigned long)pConfig->number,
           (unsigned)pConfig->cycleTime, (unsigned)pConfig->inhibitTime, (unsigned)pConfig->priority,
           (unsigned)pConfig->mappingCnt, (int)pConfig->trailerFormat, (int)pConfig->assuranceType,
           (unsigned)pConfig->assuranceSize);
    printRows(pConfig->pMapping, POINTERS(*pConfig), pConfig->mappingCnt);
}

RET_T j1939StackInit_common(const J1939_SERVICE_INIT_VAL_T *pInit)
{
    printf("services transmit %u receive %u\n", (unsigned)pInit->transmitCnt[0], (unsigned)pInit->receiveCnt[0]);
    return RET_OK;
}

RET_T j1939StackInit_line(const J1939_CONFIG_T *pConfig)
{
    UNSIGNED16 i;
    printf("line address %u\n", (unsigned)pConfig->sourceAddress);
    for (i = 0; i < pConfig->receiveCnt; i++) {
        printMessage("RX", &pConfig->pReceive[i]);
    }
    for (i = 0; i < pConfig->transmitCnt; i++) {
        printMessage("TX", &pConfig->pTransmit[i]);
    }
    printMessage("NAME", pConfig->pAddressClaim);
    return RET_OK;
}
#endif

#ifdef RAWCAN_SUPPORTED
RET_T rawcanStackInit_common(const RAWCAN_SERVICE_INIT_VAL_T *pInit)
{
    printf("raw transmit %u receive %u\n", (unsigned)pInit->transmitCnt[0], (unsigned)pInit->receiveCnt[0]);
    return RET_OK;
}

RET_T rawcanStackInit_line(const RAWCAN_CONFIG_T *pConfig)
{
    UNSIGNED16 i;
    printf("raw line\n");
    for (i = 0; i < pConfig->receiveCnt; i++) {
        const RAWCAN_REC_CONFIG_T *pReceive = &pConfig->pReceive[i];
        printf("RXID %lu monitoring %u count %u\n", (unsigned long)pReceive->id, (unsigned)pReceive->monitoringTime,
               (unsigned)pReceive->mappingCnt);
        printRows(pReceive->pMapping, POINTERS(*pReceive), pReceive->mappingCnt);
    }
    for (i = 0; i < pConfig->transmitCnt; i++) {
        const RAWCAN_TR_CONFIG_T *pTransmit = &pConfig->pTransmit[i];
        printf("TXID %lu cycle %u inhibit %u count %u\n", (unsigned long)pTransmit->id, (unsigned)pTransmit->cycleTime,
               (unsigned)pTransmit->inhibitTime, (unsigned)pTransmit->mappingCnt);
        printRows(pTransmit->pMapping, POINTERS(*pTransmit), pTransmit->mappingCnt);
    }
    return RET_OK;
}
#endif

int main(void)
{
#ifdef STACK_FD
    BOOL_T modes[STACK_LINES] = {CO_TRUE};
#endif
    RET_T result;
#if defined(WALK_MP)
    unsigned line = 0;
    CORE_PROTOCOL_TYPE_T protocols[STACK_LINES];
    (void)line;
    memset(protocols, 0, sizeof protocols);
#ifdef J1939_SUPPORTED
    memset(protocols, CORE_PROT_TYPE_J1939, sizeof protocols);
#endif
#ifdef RAWCAN_SUPPORTED
    for (line = 0; line < STACK_LINES; line++) {
        protocols[line] |= CORE_PROT_TYPE_RAWCAN;
    }
#endif
#ifdef STACK_FD
#define MODES , modes
#else
#define MODES
#endif
#ifdef CANOPEN_SUPPORTED
    if (mpStackInit(NULL, NULL MODES) == RET_OK) {
        return EXIT_FAILURE;
    }
    result = mpStackInit(protocols, NULL MODES);
#else
    if (mpStackInit(NULL MODES) == RET_OK) {
        return EXIT_FAILURE;
    }
    result = mpStackInit(protocols MODES);
#endif
#else
#if defined(WALK_RAWCAN) && defined(STACK_FD)
    result = rawcanStackInit(modes);
#elif defined(WALK_RAWCAN)
    result = rawcanStackInit();
#elif defined(STACK_FD)
    result = j1939StackInit(modes);
#else
    result = j1939StackInit();
#endif
#endif
    return result == RET_OK ? EXIT_SUCCESS : EXIT_FAILURE;
}
