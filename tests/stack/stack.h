#ifndef STACK_H
#define STACK_H 1

/* What the recorder keeps of the calls of a start-up. */

#include <co_canopen.h>

typedef struct
{
    int present;
    const CO_OD_ASSIGN_T *pAssign;
    unsigned assignCnt;
    const CO_OBJECT_DESC_T *pDesc;
    unsigned descCnt;
    const CO_OD_DATA_VARIABLES_T *pVariables;
} STACK_DICTIONARY_T;

/* The dictionaries that the start-up has handed over, by line. */
extern STACK_DICTIONARY_T stackDictionaries[STACK_LINES];

/* Prints each call with its arguments. */
extern int stackTrace;
/* The call that fails, counted from 1; 0 for none. */
extern int stackFailAt;

/* Prints each subindex of each dictionary. */
void dumpDictionaries(void);

#endif /* STACK_H */
