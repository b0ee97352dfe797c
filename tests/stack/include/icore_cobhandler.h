#ifndef ICORE_COBHANDLER_H
#define ICORE_COBHANDLER_H 1

#include <core_common.h>

#endif /* ICORE_COBHANDLER_H */
