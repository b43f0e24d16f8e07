/* Registers of the MSP430F5438: what its data sheet calls them, where they are. */
#ifndef _MSP430F5438_H
#define _MSP430F5438_H

/* Watchdog */
#define WDTCTL (*(volatile unsigned int*)0x015C)
#define WDTPW 0x5A00
#define WDTHOLD 0x0080
#define WDTTMSEL 0x0010
#define WDTCNTCL 0x0008

/* Ports: the registers of two ports stand in turns */
#define P1IN (*(volatile unsigned char*)0x0200)
#define P2IN (*(volatile unsigned char*)0x0201)
#define P1OUT (*(volatile unsigned char*)0x0202)
#define P2OUT (*(volatile unsigned char*)0x0203)
#define P1DIR (*(volatile unsigned char*)0x0204)
#define P2DIR (*(volatile unsigned char*)0x0205)
#define P1REN (*(volatile unsigned char*)0x0206)
#define P2REN (*(volatile unsigned char*)0x0207)
#define P1DS (*(volatile unsigned char*)0x0208)
#define P2DS (*(volatile unsigned char*)0x0209)
#define P1SEL (*(volatile unsigned char*)0x020A)
#define P2SEL (*(volatile unsigned char*)0x020B)
#define P1IES (*(volatile unsigned char*)0x0218)
#define P2IES (*(volatile unsigned char*)0x0219)
#define P1IE (*(volatile unsigned char*)0x021A)
#define P2IE (*(volatile unsigned char*)0x021B)
#define P1IFG (*(volatile unsigned char*)0x021C)
#define P2IFG (*(volatile unsigned char*)0x021D)

/* Hardware multiplier */
#define MPY (*(volatile unsigned int*)0x04C0)
#define MPYS (*(volatile unsigned int*)0x04C2)
#define MAC (*(volatile unsigned int*)0x04C4)
#define MACS (*(volatile unsigned int*)0x04C6)
#define OP2 (*(volatile unsigned int*)0x04C8)
#define RESLO (*(volatile unsigned int*)0x04CA)
#define RESHI (*(volatile unsigned int*)0x04CC)
#define SUMEXT (*(volatile unsigned int*)0x04CE)
#define MPY32L (*(volatile unsigned int*)0x04D0)
#define MPY32H (*(volatile unsigned int*)0x04D2)
#define MPYS32L (*(volatile unsigned int*)0x04D4)
#define MPYS32H (*(volatile unsigned int*)0x04D6)
#define MAC32L (*(volatile unsigned int*)0x04D8)
#define MAC32H (*(volatile unsigned int*)0x04DA)
#define MACS32L (*(volatile unsigned int*)0x04DC)
#define MACS32H (*(volatile unsigned int*)0x04DE)
#define OP2L (*(volatile unsigned int*)0x04E0)
#define OP2H (*(volatile unsigned int*)0x04E2)
#define RES0 (*(volatile unsigned int*)0x04E4)
#define RES1 (*(volatile unsigned int*)0x04E6)
#define RES2 (*(volatile unsigned int*)0x04E8)
#define RES3 (*(volatile unsigned int*)0x04EA)

/* Vectors: words from the lowest address on */
#define RTC_VECTOR 41
#define PORT2_VECTOR 42
#define PORT1_VECTOR 47
#define DMA_VECTOR 50
#define WDT_VECTOR 58
#define UNMI_VECTOR 61
#define SYSNMI_VECTOR 62

#endif
