/* What can be said of a series of numbers; of an empty one all is 0. */
#ifndef SERIES_H
#define SERIES_H

int mean(const int* values, unsigned count);
int smallest(const int* values, unsigned count);
int largest(const int* values, unsigned count);

#endif
