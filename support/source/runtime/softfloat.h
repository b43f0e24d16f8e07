/*
 * Floating-point arithmetic of one width, on the bits of the numbers: IEEE 754, to the nearest, with
 * subnormal numbers. A file that includes this has defined
 *
 *   Bits             the unsigned integer of the width          FRACTION_BITS   23 or 52
 *   EXPONENT_MAX     the exponent of infinity, 0xFF or 0x7FF    multiplyWide    two fractions into two words
 *
 * In between a number is a sign, an exponent and a fraction that has its highest bit at ROUND_BITS +
 * FRACTION_BITS; the lowest bit is set if anything was lost below it.
 */
#define BIAS (EXPONENT_MAX >> 1)
#define ROUND_BITS 3
#define ONE ((Bits)1)
#define HIDDEN (ONE << FRACTION_BITS)
#define TOP (HIDDEN << ROUND_BITS)
#define SIGN (ONE << (sizeof(Bits) * 8 - 1))
#define INFINITE ((Bits)EXPONENT_MAX << FRACTION_BITS)
#define QUIET (INFINITE | HIDDEN >> 1)

static int isNan(Bits a) { return (a & ~SIGN) > INFINITE; }
static int isInfinite(Bits a) { return (a & ~SIGN) == INFINITE; }
static int isZero(Bits a) { return (a & ~SIGN) == 0; }

static Bits shiftRight(Bits fraction, int count) {
    if (count > FRACTION_BITS + ROUND_BITS + 2)
        return fraction != 0;
    while (count-- > 0)
        fraction = fraction >> 1 | (fraction & 1);
    return fraction;
}

/* The exponent; the fraction gets its hidden bit. A subnormal number has the exponent 1 and no hidden bit. */
static int unpack(Bits a, Bits* fraction) {
    const int exponent = (int)(a >> FRACTION_BITS) & EXPONENT_MAX;
    *fraction = a & (HIDDEN - 1);
    if (exponent == 0)
        return 1;
    *fraction |= HIDDEN;
    return exponent;
}

static int unpackNormal(Bits a, Bits* fraction) {
    int exponent = unpack(a, fraction);
    while (!(*fraction & HIDDEN)) {
        *fraction <<= 1;
        --exponent;
    }
    return exponent;
}

static Bits pack(Bits sign, int exponent, Bits fraction) {
    uint8_t lost;
    if (exponent < 1) {
        fraction = shiftRight(fraction, 1 - exponent);
        exponent = 1;
    }
    lost = (uint8_t)fraction & 7;
    fraction >>= ROUND_BITS;
    if (lost > 4 || (lost == 4 && (fraction & 1)))
        ++fraction;
    /* The hidden bit adds one to the exponent, and so does a carry out of the fraction. */
    if (exponent >= EXPONENT_MAX || (exponent == EXPONENT_MAX - 1 && fraction >= HIDDEN << 1))
        return sign | INFINITE;
    return sign | (((Bits)(exponent - 1) << FRACTION_BITS) + fraction);
}

static Bits normalise(Bits sign, int exponent, Bits fraction) {
    while (fraction >= TOP << 1) {
        fraction = fraction >> 1 | (fraction & 1);
        ++exponent;
    }
    while (exponent > 1 && !(fraction & TOP)) {
        fraction <<= 1;
        --exponent;
    }
    return pack(sign, exponent, fraction);
}

static Bits addBits(Bits a, Bits b) {
    Bits fractionA, fractionB;
    int exponentA, exponentB;
    if (isNan(a) || isNan(b))
        return QUIET;
    if ((a & ~SIGN) < (b & ~SIGN)) {
        const Bits c = a;
        a = b;
        b = c;
    }
    if (isInfinite(a))
        return isInfinite(b) && a != b ? QUIET : a;
    if (isZero(b))
        return isZero(a) ? a & b : a;
    exponentA = unpack(a, &fractionA);
    exponentB = unpack(b, &fractionB);
    fractionA <<= ROUND_BITS;
    fractionB = shiftRight(fractionB << ROUND_BITS, exponentA - exponentB);
    if ((a ^ b) & SIGN) {
        fractionA -= fractionB;
        if (fractionA == 0)
            return 0;
    } else {
        fractionA += fractionB;
    }
    return normalise(a & SIGN, exponentA, fractionA);
}

static Bits multiplyBits(Bits a, Bits b) {
    const Bits sign = (a ^ b) & SIGN;
    Bits fractionA, fractionB, high, low;
    int exponent;
    if (isNan(a) || isNan(b))
        return QUIET;
    if (isInfinite(a) || isInfinite(b))
        return isZero(a) || isZero(b) ? QUIET : sign | INFINITE;
    if (isZero(a) || isZero(b))
        return sign;
    exponent = unpackNormal(a, &fractionA);
    exponent += unpackNormal(b, &fractionB) - BIAS;
    multiplyWide(fractionA, fractionB, &high, &low);
#define LOW_BITS (FRACTION_BITS - ROUND_BITS)
    fractionA = high << (sizeof(Bits) * 8 - LOW_BITS) | low >> LOW_BITS;
    if (low & ((ONE << LOW_BITS) - 1))
        fractionA |= 1;
    if (fractionA >= TOP << 1) {
        fractionA = fractionA >> 1 | (fractionA & 1);
        ++exponent;
    }
    return pack(sign, exponent, fractionA);
}

static Bits divideBits(Bits a, Bits b) {
    const Bits sign = (a ^ b) & SIGN;
    Bits fractionA, fractionB, quotient = 0;
    int exponent;
    uint8_t i;
    if (isNan(a) || isNan(b))
        return QUIET;
    if (isInfinite(a))
        return isInfinite(b) ? QUIET : sign | INFINITE;
    if (isZero(b))
        return isZero(a) ? QUIET : sign | INFINITE;
    if (isZero(a) || isInfinite(b))
        return sign;
    exponent = unpackNormal(a, &fractionA);
    exponent += BIAS - unpackNormal(b, &fractionB);
    if (fractionA < fractionB) {
        fractionA <<= 1;
        --exponent;
    }
    for (i = 0; i <= FRACTION_BITS + ROUND_BITS; ++i) {
        quotient <<= 1;
        if (fractionA >= fractionB) {
            fractionA -= fractionB;
            quotient |= 1;
        }
        fractionA <<= 1;
    }
    return pack(sign, exponent, fractionA ? quotient | 1 : quotient);
}

/* Less than 0, 0, greater than 0. What can't be compared is greater: neither equal, nor less. */
static int compareBits(Bits a, Bits b) {
    if (isNan(a) || isNan(b))
        return 1;
    if (isZero(a) && isZero(b))
        return 0;
    if ((a ^ b) & SIGN)
        return a & SIGN ? -1 : 1;
    if (a == b)
        return 0;
    return (a < b) != ((a & SIGN) != 0) ? -1 : 1;
}

/* The whole part of the magnitude, as far as it is below 2^bits; else, and for what is no number, 2^bits - 1.
 */
#define WHOLE(NAME, T)                                                                                       \
    static T NAME(Bits a, uint8_t bits) {                                                                    \
        Bits fraction;                                                                                       \
        int exponent = unpack(a, &fraction) - BIAS;                                                          \
        T whole;                                                                                             \
        if (exponent < 0)                                                                                    \
            return 0;                                                                                        \
        if (exponent >= bits)                                                                                \
            return bits == sizeof(T) * 8 ? ~(T)0 : ~(T)0 >> 1;                                               \
        exponent -= FRACTION_BITS;                                                                           \
        for (; exponent < 0; ++exponent)                                                                     \
            fraction >>= 1;                                                                                  \
        whole = (T)fraction;                                                                                 \
        for (; exponent > 0; --exponent)                                                                     \
            whole <<= 1;                                                                                     \
        return whole;                                                                                        \
    }
WHOLE(wholeLong, uint32_t)
WHOLE(wholeWide, uint64_t)

/* Conversions to integers; what does not fit becomes the nearest that does. */
#define TO_SIGNED(NAME, T, WHOLE_OF)                                                                         \
    T NAME(Bits a) {                                                                                         \
        if (a & SIGN)                                                                                        \
            return (Bits)(a & ~SIGN) >> FRACTION_BITS >= BIAS + sizeof(T) * 8 - 1                            \
                       ? (T)(~(u##T)0 >> 1) * -1 - 1                                                         \
                       : -(T)WHOLE_OF(a, sizeof(T) * 8 - 1);                                                 \
        return (T)WHOLE_OF(a, sizeof(T) * 8 - 1);                                                            \
    }
#define TO_UNSIGNED(NAME, T, WHOLE_OF)                                                                       \
    T NAME(Bits a) { return a & SIGN ? 0 : WHOLE_OF(a, sizeof(T) * 8); }

static Bits fromWide(Bits sign, uint64_t a) {
    int exponent = BIAS + FRACTION_BITS + ROUND_BITS;
    if (a == 0)
        return 0;
    while (a >= (uint64_t)TOP << 1) {
        a = a >> 1 | (a & 1);
        ++exponent;
    }
    while (!(a & TOP)) {
        a <<= 1;
        --exponent;
    }
    return pack(sign, exponent, (Bits)a);
}

#define FROM_SIGNED(NAME, T)                                                                                 \
    Bits NAME(T a) { return a < 0 ? fromWide(SIGN, -(uint64_t)a) : fromWide(0, (uint64_t)a); }
#define FROM_UNSIGNED(NAME, T)                                                                               \
    Bits NAME(T a) { return fromWide(0, a); }
