/* The helpers that other helpers are made of. None of them is called by a program by name. */
#ifndef RUNTIME_HELPERS_H
#define RUNTIME_HELPERS_H

#include <stdint.h>

uint32_t __mspabi_mpyul(uint16_t a, uint16_t b);
uint64_t __mspabi_mpyull(uint32_t a, uint32_t b);
uint64_t __multiply64(uint64_t a, uint64_t b);

#endif
