#define GREETING "Hello from an MSP430"
