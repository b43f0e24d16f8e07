/* Registers that the devices of the families 1, 2 and 4 share: what their data sheets call them, where they are. */
#ifndef _MSP430_BASIC_H
#define _MSP430_BASIC_H

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

#endif
