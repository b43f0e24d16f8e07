#ifndef CELSIUS_H
#define CELSIUS_H

/* Tenths of a degree from a reading of the internal sensor at the 1.5 V reference. */
int celsius_tenths(unsigned reading);

#endif
