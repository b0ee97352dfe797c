#ifndef EB_ENERGYBUS_H
#define EB_ENERGYBUS_H 1

#include <co_canopen.h>

#endif /* EB_ENERGYBUS_H */
