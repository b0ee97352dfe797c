#ifndef DRIVE_H
#define DRIVE_H 1

/* The process data of the drive. */

typedef struct
{
    UNSIGNED16 controlWord;
    UNSIGNED16 statusWord;
    INTEGER32 position;
    INTEGER32 velocity;
    INTEGER32 targetPosition;
    INTEGER32 targetVelocity;
} DRIVE_T;

extern DRIVE_T drive;
extern INTEGER8 driveMode;
extern UNSIGNED32 drive_serialNumber;
extern char drive_softwareVersion[8];
extern char drive_motorName[7];

/* The object dictionary takes an expression in place of a variable's name. */
#define drive_modeDisplay() (&driveMode)

#endif /* DRIVE_H */
