/* The arithmetic of a double of 64 bits. wide_calls.s43 calls those of two operands. */
#include "helpers.h"

typedef uint64_t Bits;
#define FRACTION_BITS 52
#define EXPONENT_MAX 0x7FF

static void multiplyWide(uint64_t a, uint64_t b, uint64_t* high, uint64_t* low) {
    const uint32_t a0 = (uint32_t)a, a1 = (uint32_t)(a >> 32);
    const uint32_t b0 = (uint32_t)b, b1 = (uint32_t)(b >> 32);
    const uint64_t bottom = __mspabi_mpyull(a0, b0);
    const uint64_t cross = __mspabi_mpyull(a1, b0) + (bottom >> 32);
    const uint64_t other = __mspabi_mpyull(a0, b1) + (uint32_t)cross;
    *high = __mspabi_mpyull(a1, b1) + (cross >> 32) + (other >> 32);
    *low = other << 32 | (uint32_t)bottom;
}

#include "softfloat.h"

Bits __addDouble(Bits a, Bits b) { return addBits(a, b); }
Bits __subtractDouble(Bits a, Bits b) { return addBits(a, b ^ SIGN); }
Bits __multiplyDouble(Bits a, Bits b) { return multiplyBits(a, b); }
Bits __divideDouble(Bits a, Bits b) { return divideBits(a, b); }
int __compareDouble(Bits a, Bits b) { return compareBits(a, b); }
int __unorddf2(Bits a, Bits b) { return isNan(a) || isNan(b); }

TO_SIGNED(__mspabi_fixdli, int32_t, wholeLong)
TO_SIGNED(__mspabi_fixdlli, int64_t, wholeWide)
TO_UNSIGNED(__mspabi_fixdul, uint32_t, wholeLong)
TO_UNSIGNED(__mspabi_fixdull, uint64_t, wholeWide)
int __mspabi_fixdi(Bits a) { return (int)__mspabi_fixdli(a); }
unsigned __mspabi_fixdu(Bits a) { return (unsigned)__mspabi_fixdul(a); }

FROM_SIGNED(__mspabi_fltid, int)
FROM_SIGNED(__mspabi_fltlid, int32_t)
FROM_SIGNED(__mspabi_fltllid, int64_t)
FROM_UNSIGNED(__mspabi_fltud, unsigned)
FROM_UNSIGNED(__mspabi_fltuld, uint32_t)
FROM_UNSIGNED(__mspabi_fltulld, uint64_t)

/* The two widths differ by 29 bits of fraction and 896 of exponent. */
Bits __mspabi_cvtfd(uint32_t a) {
    const Bits sign = (Bits)(a >> 31) << 63;
    const Bits rest = a & 0x7FFFFFFF;
    Bits fraction = rest;
    int exponent = 897;
    if (rest == 0)
        return sign;
    if (rest >= 0x7F800000)
        return rest > 0x7F800000 ? QUIET : sign | INFINITE;
    if (rest >= 0x00800000)
        return sign | ((rest << 29) + ((Bits)896 << 52));
    while (!(fraction & 0x00800000)) {
        fraction <<= 1;
        --exponent;
    }
    return sign | ((Bits)(exponent - 1) << 52) + (fraction << 29);
}

uint32_t __mspabi_cvtdf(Bits a) {
    const uint32_t sign = (uint32_t)(a >> 63) << 31;
    Bits fraction;
    int exponent;
    uint32_t kept;
    uint8_t lost;
    if (isNan(a))
        return 0x7FC00000;
    exponent = unpack(a, &fraction) - 896;
    if (exponent >= 0xFF)
        return sign | 0x7F800000;
    if (exponent < 1) {
        fraction = shiftRight(fraction, 1 - exponent);
        exponent = 1;
    }
    lost = (uint8_t)(fraction >> 26) & 7;
    if (fraction & 0x03FFFFFF)
        lost |= 1;
    kept = (uint32_t)(fraction >> 29);
    if (lost > 4 || (lost == 4 && (kept & 1)))
        ++kept;
    return sign | (((uint32_t)(exponent - 1) << 23) + kept);
}
