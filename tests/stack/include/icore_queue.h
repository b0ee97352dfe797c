#ifndef ICORE_QUEUE_H
#define ICORE_QUEUE_H 1

#include <core_common.h>

#endif /* ICORE_QUEUE_H */
