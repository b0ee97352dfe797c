#include <co_canopen.h>

#include "application.h"

SETPOINTS_T setpoints;
UNSIGNED16 actualSpeed;
char location[9];
