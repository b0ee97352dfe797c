#ifndef ICORE_COMMTASK_H
#define ICORE_COMMTASK_H 1

#include <core_common.h>

#endif /* ICORE_COMMTASK_H */
