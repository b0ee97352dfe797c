#ifndef J1939_CAM11_CAM21_H
#define J1939_CAM11_CAM21_H 1

#include <co_odaccess.h>

RET_T j1939OdInit(STACK_LINE_ONLY);

#endif /* J1939_CAM11_CAM21_H */
