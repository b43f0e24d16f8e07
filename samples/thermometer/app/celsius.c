#include "celsius.h"

int celsius_tenths(unsigned reading) {
#ifdef CELSIUS_CHECKS
    if (reading > 4095)
        return -2730;
#endif
    return (int)(((long)reading - 2692) * 4230 / 4096);
}
