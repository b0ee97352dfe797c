#include <co_canopen.h>

#include "drive.h"

DRIVE_T drive;
INTEGER8 driveMode;
UNSIGNED32 drive_serialNumber;
char drive_softwareVersion[8];
char drive_motorName[7];
