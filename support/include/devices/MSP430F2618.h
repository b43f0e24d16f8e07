/* The MSP430F2618: its registers and its vectors. */
#ifndef _MSP430F2618_H
#define _MSP430F2618_H

#include <devices/large.h>

/* Vectors: words from the lowest address on */
#define DAC12_VECTOR 14
#define DMA_VECTOR 15
#define USCIAB1TX_VECTOR 16
#define USCIAB1RX_VECTOR 17
#define PORT1_VECTOR 18
#define PORT2_VECTOR 19
#define ADC12_VECTOR 21
#define USCIAB0TX_VECTOR 22
#define USCIAB0RX_VECTOR 23
#define TIMERA1_VECTOR 24
#define TIMERA0_VECTOR 25
#define WDT_VECTOR 26
#define COMPARATORA_VECTOR 27
#define TIMERB1_VECTOR 28
#define TIMERB0_VECTOR 29
#define NMI_VECTOR 30

#endif
