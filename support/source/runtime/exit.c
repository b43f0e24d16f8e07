#include <stdlib.h>

/* Interrupts go on. */
void exit(int status) {
    volatile int left = status;
    for (;;)
        (void)left;
}

void abort(void) { exit(EXIT_FAILURE); }
