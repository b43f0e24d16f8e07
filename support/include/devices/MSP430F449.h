/* The MSP430F449: its registers and its vectors. */
#ifndef _MSP430F449_H
#define _MSP430F449_H

#include <devices/large.h>

/* Vectors: words from the lowest address on */
#define BASICTIMER_VECTOR 0
#define PORT2_VECTOR 1
#define USART1TX_VECTOR 2
#define USART1RX_VECTOR 3
#define PORT1_VECTOR 4
#define TIMERA1_VECTOR 5
#define TIMERA0_VECTOR 6
#define ADC12_VECTOR 7
#define USART0TX_VECTOR 8
#define USART0RX_VECTOR 9
#define WDT_VECTOR 10
#define COMPARATORA_VECTOR 11
#define TIMERB1_VECTOR 12
#define TIMERB0_VECTOR 13
#define NMI_VECTOR 14

#endif
