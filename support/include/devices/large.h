/* Registers that the larger devices of the families 1, 2 and 4 share. */
#ifndef _MSP430_LARGE_H
#define _MSP430_LARGE_H

#include <devices/basic.h>

/* Further ports */
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

/* Hardware multiplier */
#define MPY (*(volatile unsigned int*)0x0130)
#define MPYS (*(volatile unsigned int*)0x0132)
#define MAC (*(volatile unsigned int*)0x0134)
#define MACS (*(volatile unsigned int*)0x0136)
#define OP2 (*(volatile unsigned int*)0x0138)
#define RESLO (*(volatile unsigned int*)0x013A)
#define RESHI (*(volatile unsigned int*)0x013C)
#define SUMEXT (*(volatile unsigned int*)0x013E)

#endif
