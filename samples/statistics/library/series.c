#include "series.h"

int mean(const int* values, unsigned count) {
    long sum = 0;
    unsigned i;
    for (i = 0; i < count; ++i)
        sum += values[i];
    return count ? (int)(sum / (long)count) : 0;
}

int smallest(const int* values, unsigned count) {
    int found = count ? values[0] : 0;
    while (count--)
        if (values[count] < found)
            found = values[count];
    return found;
}

int largest(const int* values, unsigned count) {
    int found = count ? values[0] : 0;
    while (count--)
        if (values[count] > found)
            found = values[count];
    return found;
}
