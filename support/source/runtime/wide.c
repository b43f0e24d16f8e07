/* Arithmetic of 64 bits. wide_calls.s43 calls this with the operands where C expects them. */
#include "helpers.h"

#if MULTIPLIER != 32
uint64_t __mspabi_mpyull(uint32_t a, uint32_t b) {
    const uint16_t a0 = (uint16_t)a, a1 = (uint16_t)(a >> 16);
    const uint16_t b0 = (uint16_t)b, b1 = (uint16_t)(b >> 16);
    const uint32_t low = __mspabi_mpyul(a0, b0);
    const uint32_t cross = __mspabi_mpyul(a1, b0);
    const uint32_t middle = (low >> 16) + (uint16_t)cross;
    const uint32_t other = __mspabi_mpyul(a0, b1) + middle; /* at most (2^16-1)^2 + 2^17-2, which fits */
    const uint32_t high = __mspabi_mpyul(a1, b1) + (cross >> 16) + (other >> 16);
    return (uint64_t)high << 32 | (other << 16 | (uint16_t)low);
}
#endif

uint64_t __multiply64(uint64_t a, uint64_t b) {
    const uint32_t a0 = (uint32_t)a, a1 = (uint32_t)(a >> 32);
    const uint32_t b0 = (uint32_t)b, b1 = (uint32_t)(b >> 32);
    return __mspabi_mpyull(a0, b0) + ((uint64_t)(a0 * b1 + a1 * b0) << 32);
}

static uint64_t divide(uint64_t dividend, uint64_t divisor, uint64_t* remainder) {
    uint64_t rest = 0;
    uint8_t i;
    for (i = 0; i < 64; ++i) {
        const uint8_t carry = (int64_t)rest < 0;
        rest <<= 1;
        if ((int64_t)dividend < 0)
            rest |= 1;
        dividend <<= 1;
        if (carry || rest >= divisor) {
            rest -= divisor;
            dividend |= 1;
        }
    }
    *remainder = rest;
    return dividend;
}

uint64_t __divide64(uint64_t a, uint64_t b) {
    uint64_t remainder;
    return divide(a, b, &remainder);
}

uint64_t __remainder64(uint64_t a, uint64_t b) {
    uint64_t remainder;
    divide(a, b, &remainder);
    return remainder;
}

static uint64_t magnitude(int64_t a) { return a < 0 ? -(uint64_t)a : (uint64_t)a; }

int64_t __divideSigned64(int64_t a, int64_t b) {
    const uint64_t quotient = __divide64(magnitude(a), magnitude(b));
    return (int64_t)((a < 0) != (b < 0) ? -quotient : quotient);
}

int64_t __remainderSigned64(int64_t a, int64_t b) {
    const uint64_t remainder = __remainder64(magnitude(a), magnitude(b));
    return (int64_t)(a < 0 ? -remainder : remainder);
}
