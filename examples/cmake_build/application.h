#ifndef APPLICATION_H
#define APPLICATION_H 1

/* What the object dictionary takes from the application. */

/* Tenths of a degree Celsius. */
extern INTEGER16 temperature;

#endif /* APPLICATION_H */
