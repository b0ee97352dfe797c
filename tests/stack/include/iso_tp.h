#ifndef ISO_TP_H
#define ISO_TP_H 1

#include <core_isotp.h>

#endif /* ISO_TP_H */
