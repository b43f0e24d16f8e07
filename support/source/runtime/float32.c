/* The arithmetic of float, and of double where that has 32 bits. */
#include "helpers.h"

typedef uint32_t Bits;
#define FRACTION_BITS 23
#define EXPONENT_MAX 0xFF

static void multiplyWide(uint32_t a, uint32_t b, uint32_t* high, uint32_t* low) {
    const uint64_t product = __mspabi_mpyull(a, b);
    *high = (uint32_t)(product >> 32);
    *low = (uint32_t)product;
}

#include "softfloat.h"

Bits __mspabi_addf(Bits a, Bits b) { return addBits(a, b); }
Bits __mspabi_subf(Bits a, Bits b) { return addBits(a, b ^ SIGN); }
Bits __mspabi_mpyf(Bits a, Bits b) { return multiplyBits(a, b); }
Bits __mspabi_divf(Bits a, Bits b) { return divideBits(a, b); }
int __mspabi_cmpf(Bits a, Bits b) { return compareBits(a, b); }
int __unordsf2(Bits a, Bits b) { return isNan(a) || isNan(b); }

TO_SIGNED(__mspabi_fixfli, int32_t, wholeLong)
TO_SIGNED(__mspabi_fixflli, int64_t, wholeWide)
TO_UNSIGNED(__mspabi_fixful, uint32_t, wholeLong)
TO_UNSIGNED(__mspabi_fixfull, uint64_t, wholeWide)
int __mspabi_fixfi(Bits a) { return (int)__mspabi_fixfli(a); }
unsigned __mspabi_fixfu(Bits a) { return (unsigned)__mspabi_fixful(a); }

FROM_SIGNED(__mspabi_fltif, int)
FROM_SIGNED(__mspabi_fltlif, int32_t)
FROM_SIGNED(__mspabi_fltllif, int64_t)
FROM_UNSIGNED(__mspabi_fltuf, unsigned)
FROM_UNSIGNED(__mspabi_fltulf, uint32_t)
FROM_UNSIGNED(__mspabi_fltullf, uint64_t)
