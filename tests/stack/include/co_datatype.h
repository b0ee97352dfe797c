#ifndef CO_DATATYPE_H
#define CO_DATATYPE_H 1

#include <core_datatype.h>

#endif /* CO_DATATYPE_H */
