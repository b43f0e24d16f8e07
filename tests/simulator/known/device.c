/* What the header of every device has. */
#include <msp430.h>

INTERRUPT(WDT_VECTOR) void beat(void) { P1OUT ^= BIT0; }

int main(void) {
    WDTCTL = WDTPW | WDTHOLD;
    P1DIR |= BIT0;
    P1IE |= BIT3;
    __enable_interrupt();
    for (;;)
        __bis_SR_register(LPM0_bits);
}
