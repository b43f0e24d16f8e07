/* The MSP430G2553: its registers and its vectors. */
#ifndef _MSP430G2553_H
#define _MSP430G2553_H

#include <devices/basic.h>

/* Vectors: words from the lowest address on */
#define PORT1_VECTOR 2
#define PORT2_VECTOR 3
#define ADC10_VECTOR 5
#define USCIAB0TX_VECTOR 6
#define USCIAB0RX_VECTOR 7
#define TIMER0_A1_VECTOR 8
#define TIMER0_A0_VECTOR 9
#define WDT_VECTOR 10
#define COMPARATORA_VECTOR 11
#define TIMER1_A1_VECTOR 12
#define TIMER1_A0_VECTOR 13
#define NMI_VECTOR 14

#endif
