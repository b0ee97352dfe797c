#ifndef APPLICATION_H
#define APPLICATION_H 1

/* The process data of the coupler, which both lines show. */

typedef struct
{
    UNSIGNED8 mode;
    UNSIGNED16 speed;
    INTEGER16 torque;
} SETPOINTS_T;

extern SETPOINTS_T setpoints;
extern UNSIGNED16 actualSpeed;
extern char location[9];

#endif /* APPLICATION_H */
