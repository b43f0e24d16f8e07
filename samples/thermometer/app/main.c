#include "adc.h"
#include "celsius.h"

static volatile int latest;

int main(void) {
    adc_start(SAMPLE_RATE);
    for (;;)
        latest = celsius_tenths(adc_read());
}
