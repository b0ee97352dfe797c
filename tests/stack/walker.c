/*
 * Starts a device whose sources were generated, and prints what came of it.
 *
 * walker dump          prints each subindex of each line (dictionary_walker.c)
 * walker start [N]     prints the calls of the start-up, of which the Nth fails, and what that returns
 * walker predefined    prints the calls that overwrite the predefined connection set
 */

#include "stack.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#if defined(WALK_MP)
#include <mp_mp.h>
#elif defined(WALK_SERVER_MODE)
#ifdef STACK_MULTI_LINE
RET_T j1939OdInit(UNSIGNED8 canLine);
#else
RET_T j1939OdInit(void);
#endif
#else
#ifdef WALK_OPTIONS
#define START_NAME coCanOpenStackInitPara
#define OPTIONS_PARAMETER , CO_INIT_OPTION_T *pCoOptions
#define OPTIONS_ARGUMENT , options
#else
#define START_NAME coCanOpenStackInit
#define OPTIONS_PARAMETER
#define OPTIONS_ARGUMENT
#endif
#ifdef STACK_FD
#define MODES_PARAMETER , BOOL_T *pModes
#define MODES_ARGUMENT , NULL
#else
#define MODES_PARAMETER
#define MODES_ARGUMENT
#endif
RET_T START_NAME(CO_EVENT_STORE_T pLoadFunction OPTIONS_PARAMETER MODES_PARAMETER);
#endif

#ifdef WALK_LOAD_INDICATION
#ifdef STACK_MULTI_LINE
RET_T genLoadIndication(UNSIGNED8 canLine, UNSIGNED8 subIndex);
#else
RET_T genLoadIndication(UNSIGNED8 subIndex);
#endif
#endif
#ifdef WALK_OVERWRITE_FUNCTION
RET_T userOverwriteCobIdSettings(void);
#endif

static RET_T start(void)
{
#if defined(WALK_MP)
    /* Of a device of several protocols only CANopen is asked for. */
    CORE_PROTOCOL_TYPE_T protocols[STACK_LINES];

    memset(protocols, CORE_PROT_TYPE_CANOPEN, sizeof(protocols));
#ifdef STACK_FD
    return mpStackInit(protocols, NULL, NULL);
#else
    return mpStackInit(protocols, NULL);
#endif
#elif defined(WALK_SERVER_MODE) && defined(STACK_MULTI_LINE)
    UNSIGNED8 line;

    for (line = 0; line < STACK_LINES; ++line)
        j1939OdInit(line);
    return RET_OK;
#elif defined(WALK_SERVER_MODE)
    return j1939OdInit();
#else
#ifdef WALK_OPTIONS
    CO_INIT_OPTION_T options[STACK_LINES];

    memset(options, 0, sizeof(options));
    options[0].master = 1;
#endif
    return START_NAME(NULL OPTIONS_ARGUMENT MODES_ARGUMENT);
#endif
}

#if defined(WALK_LOAD_INDICATION) || defined(WALK_OVERWRITE_FUNCTION)
static void report(RET_T ret)
{
    if (ret != RET_OK)
        printf("returns %d\n", (int)ret);
}
#endif

static void predefined(void)
{
#if defined(WALK_LOAD_INDICATION) && defined(STACK_MULTI_LINE)
    UNSIGNED8 line;

    for (line = 0; line < 3; ++line)
        report(genLoadIndication(line, 1));
    report(genLoadIndication(0, 3));
#elif defined(WALK_LOAD_INDICATION)
    report(genLoadIndication(2));
    report(genLoadIndication(3));
#elif defined(WALK_OVERWRITE_FUNCTION)
    report(userOverwriteCobIdSettings());
#endif
}

int main(int argc, char **argv)
{
    const char *mode = argc > 1 ? argv[1] : "";
    RET_T ret;

    if (strcmp(mode, "dump") == 0) {
        ret = start();
        if (ret != RET_OK)
            return 1;
        dumpDictionaries();
        return 0;
    }
    stackTrace = 1;
    stackFailAt = argc > 2 ? atoi(argv[2]) : 0;
    if (strcmp(mode, "predefined") == 0) {
        predefined();
        return 0;
    }
    ret = start();
    printf("returns %s\n", ret == RET_OK ? "OK" : ret == RET_SERVICE_FAILED ? "the error" : "another error");
    return 0;
}
