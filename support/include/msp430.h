/* The processor and, by the choice of the target, the registers of the device. */
#ifndef _MSP430_H
#define _MSP430_H

#define GIE 0x0008
#define CPUOFF 0x0010
#define OSCOFF 0x0020
#define SCG0 0x0040
#define SCG1 0x0080
#define LPM0_bits CPUOFF
#define LPM1_bits (SCG0 | CPUOFF)
#define LPM2_bits (SCG1 | CPUOFF)
#define LPM3_bits (SCG1 | SCG0 | CPUOFF)
#define LPM4_bits (SCG1 | SCG0 | OSCOFF | CPUOFF)

#define BIT0 0x01
#define BIT1 0x02
#define BIT2 0x04
#define BIT3 0x08
#define BIT4 0x10
#define BIT5 0x20
#define BIT6 0x40
#define BIT7 0x80

#define __enable_interrupt() __asm__ volatile("eint\n nop" : : : "memory")
#define __disable_interrupt() __asm__ volatile("dint\n nop" : : : "memory")
#define __no_operation() __asm__ volatile("nop")
/* Sets bits of the status register: __bis_SR_register(LPM0_bits | GIE) sleeps until an interrupt. */
#define __bis_SR_register(bits) __asm__ volatile("bis %0, sr\n nop" : : "ri"(bits) : "memory")

/* INTERRUPT(PORT1_VECTOR) void button(void) { ... } */
#define INTERRUPT(vector) __attribute__((interrupt(vector)))

#define _TEXT_OF(x) #x
#define _HEADER_OF(x) _TEXT_OF(x)

#if defined(__TARGET_PROCESSOR)
/* Blanks would be part of the name. */
/* clang-format off */
#define _HEADER _HEADER_OF(devices/__TARGET_PROCESSOR.h)
/* clang-format on */
#include _HEADER
#else
#error "no target: choose an entry of the property group Target"
#endif

#endif
