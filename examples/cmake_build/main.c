/* A thermometer on CANopen: starts the stack, and would then measure. */

#include <stack.h>

#include <gen_define.h>
#include <gen_indices.h>
#include <stdio.h>

#include "application.h"

INTEGER16 temperature = 0;

/* Of gen_objdict.c. */
RET_T coCanOpenStackInit(CO_EVENT_STORE_T pLoadFunction);

int main(void)
{
    stackTrace = 1;
    if (coCanOpenStackInit(NULL) != RET_OK)
        return 1;
    temperature = 215;
    printf("object 0x%04x: %d\n", I_TEMPERATURE, temperature);
    return 0;
}
