/* Starts a generated J1939 device and prints what the stack is handed: a line for each message and each signal.
 *
 * "symbols.h" lists the variables of the application, SYMBOL(name) each, so that pointers can be told by name. */

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <gen_extern_decl.h>
#include <j1939_j1939.h>

static const struct {
	const char *name;
	const void *address;
} symbols[] = {
#define SYMBOL(name) { #name, &name },
#include "symbols.h"
	{ "NULL", NULL }
};

static const char *typeName(UNSIGNED16 type)
{
#ifdef STACK_V4
	switch ((int)type) {
#define X(name) case CORE_DTYPE_##name: return #name;
	STACK_TYPES(X)
	STACK_SIGNAL_TYPES(X)
#undef X
	case CORE_DTYPE_NON_NUMERIC: return "NON_NUMERIC";
	case CORE_DTYPE_STRING_NULL: return "STRING_NULL";
	default: return "?";
	}
#else
	return type == J1939_MAP_FLAG_NUMERIC ? "NUMERIC" : "NONE";
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

static void printMessage(const char *kind, const J1939_PGN_CONFIG_T *pConfig)
{
	UNSIGNED16 i;
	printf("%s %lu cycle %u inhibit %u priority %u count %u trailer %d %d %u\n", kind, (unsigned long)pConfig->number,
		(unsigned)pConfig->cycleTime, (unsigned)pConfig->inhibitTime, (unsigned)pConfig->priority,
		(unsigned)pConfig->mappingCnt, (int)pConfig->trailerFormat, (int)pConfig->assuranceType,
		(unsigned)pConfig->assuranceSize);
	for (i = 0; i < pConfig->mappingCnt; i++) {
		const J1939_MAPPING_T *pRow = &pConfig->pMapping[i];
		printf("  %lu at %u bits %u %s ", (unsigned long)pRow->number, (unsigned)pRow->bitPosition,
			(unsigned)pRow->bits, typeName(pRow->type));
#ifdef STACK_V4
		printTarget(pConfig->pData[i], pRow->bits);
#else
		printTarget(pRow->pVar, pRow->bits);
#endif
	}
}

RET_T coreStackInit(const CORE_COMMON_INIT_VAL_T *pInit)
{
	printf("common %u protocol %u\n", (unsigned)pInit->multiLine, (unsigned)pInit->protocolType[0]);
	return RET_OK;
}

RET_T commonStackInit(const CO_COMMON_INIT_VAL_T *pInit)
{
	return coreStackInit(pInit);
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

int main(void)
{
#ifdef STACK_FD
	BOOL_T modes[STACK_LINES] = { CO_TRUE };
	return j1939StackInit(modes) == RET_OK ? EXIT_SUCCESS : EXIT_FAILURE;
#else
	return j1939StackInit() == RET_OK ? EXIT_SUCCESS : EXIT_FAILURE;
#endif
}
