/* Registers of the MSP430F1611: what its data sheet calls them, where they are. */
#ifndef _MSP430F1611_H
#define _MSP430F1611_H

/* Special function registers */
#define IE1 (*(volatile unsigned char*)0x0000)
#define IE2 (*(volatile unsigned char*)0x0001)
#define IFG1 (*(volatile unsigned char*)0x0002)
#define IFG2 (*(volatile unsigned char*)0x0003)
#define WDTIE 0x01
#define WDTIFG 0x01

/* Watchdog */
#define WDTCTL (*(volatile unsigned int*)0x0120)
#define WDTPW 0x5A00
#define WDTHOLD 0x0080
#define WDTTMSEL 0x0010
#define WDTCNTCL 0x0008

/* Ports */
#define P1IN (*(volatile unsigned char*)0x0020)
#define P1OUT (*(volatile unsigned char*)0x0021)
#define P1DIR (*(volatile unsigned char*)0x0022)
#define P1IFG (*(volatile unsigned char*)0x0023)
#define P1IES (*(volatile unsigned char*)0x0024)
#define P1IE (*(volatile unsigned char*)0x0025)
#define P1SEL (*(volatile unsigned char*)0x0026)
#define P2IN (*(volatile unsigned char*)0x0028)
#define P2OUT (*(volatile unsigned char*)0x0029)
#define P2DIR (*(volatile unsigned char*)0x002A)
#define P2IFG (*(volatile unsigned char*)0x002B)
#define P2IES (*(volatile unsigned char*)0x002C)
#define P2IE (*(volatile unsigned char*)0x002D)
#define P2SEL (*(volatile unsigned char*)0x002E)
#define P3IN (*(volatile unsigned char*)0x0018)
#define P3OUT (*(volatile unsigned char*)0x0019)
#define P3DIR (*(volatile unsigned char*)0x001A)
#define P3SEL (*(volatile unsigned char*)0x001B)
#define P4IN (*(volatile unsigned char*)0x001C)
#define P4OUT (*(volatile unsigned char*)0x001D)
#define P4DIR (*(volatile unsigned char*)0x001E)
#define P4SEL (*(volatile unsigned char*)0x001F)
#define P5IN (*(volatile unsigned char*)0x0030)
#define P5OUT (*(volatile unsigned char*)0x0031)
#define P5DIR (*(volatile unsigned char*)0x0032)
#define P5SEL (*(volatile unsigned char*)0x0033)
#define P6IN (*(volatile unsigned char*)0x0034)
#define P6OUT (*(volatile unsigned char*)0x0035)
#define P6DIR (*(volatile unsigned char*)0x0036)
#define P6SEL (*(volatile unsigned char*)0x0037)

/* Timer A */
#define TACTL (*(volatile unsigned int*)0x0160)
#define TAR (*(volatile unsigned int*)0x0170)
#define TACCTL0 (*(volatile unsigned int*)0x0162)
#define TACCTL1 (*(volatile unsigned int*)0x0164)
#define TACCTL2 (*(volatile unsigned int*)0x0166)
#define TACCR0 (*(volatile unsigned int*)0x0172)
#define TACCR1 (*(volatile unsigned int*)0x0174)
#define TACCR2 (*(volatile unsigned int*)0x0176)
#define TAIV (*(volatile unsigned int*)0x012E)
#define TASSEL_1 0x0100
#define TASSEL_2 0x0200
#define ID_3 0x00C0
#define MC_1 0x0010
#define MC_2 0x0020
#define TACLR 0x0004
#define TAIE 0x0002
#define CCIE 0x0010

/* Hardware multiplier */
#define MPY (*(volatile unsigned int*)0x0130)
#define MPYS (*(volatile unsigned int*)0x0132)
#define MAC (*(volatile unsigned int*)0x0134)
#define MACS (*(volatile unsigned int*)0x0136)
#define OP2 (*(volatile unsigned int*)0x0138)
#define RESLO (*(volatile unsigned int*)0x013A)
#define RESHI (*(volatile unsigned int*)0x013C)
#define SUMEXT (*(volatile unsigned int*)0x013E)

/* Vectors: words from the lowest address on */
#define DACDMA_VECTOR 0
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
