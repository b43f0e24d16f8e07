/* A light on the lowest pin of port 1 blinks; the watchdog's timer gives the beat, and the processor sleeps
 * in between. */
#include <msp430.h>

#define LIGHT BIT0
#define BEATS 8

static volatile unsigned char beats;

INTERRUPT(WDT_VECTOR) void beat(void) {
    if (++beats == BEATS) {
        beats = 0;
        P1OUT ^= LIGHT;
    }
}

int main(void) {
    P1DIR |= LIGHT;
    P1OUT &= (unsigned char)~LIGHT;
    WDTCTL = WDTPW | WDTTMSEL | WDTCNTCL; /* an interrupt each 32,768 clocks */
    IE1 |= WDTIE;
    __enable_interrupt();
    for (;;)
        __bis_SR_register(LPM0_bits);
}
