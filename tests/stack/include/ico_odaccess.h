#ifndef ICO_ODACCESS_H
#define ICO_ODACCESS_H 1

/* The dictionary without the rest of CANopen. */

#include <co_odaccess.h>

void icoOdAccessVarInit(void);

#endif /* ICO_ODACCESS_H */
