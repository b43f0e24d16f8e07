/*
 * Functions of a double of either width: an argument is brought into a small range, and a series does the
 * rest, until its terms no longer count. Errors are a few units of the last place; for the angles of the
 * circle they grow with the angle.
 */
#include <math.h>
#include <stdint.h>

#if __SIZEOF_DOUBLE__ == 4
typedef uint32_t DoubleBits;
#define FRACTION_BITS 23
#define EXPONENT_MAX 0xFF
#else
typedef uint64_t DoubleBits;
#define FRACTION_BITS 52
#define EXPONENT_MAX 0x7FF
#endif
#define BIAS (EXPONENT_MAX >> 1)
#define SIGN ((DoubleBits)1 << (sizeof(DoubleBits) * 8 - 1))
#define EXPONENT_MASK ((DoubleBits)EXPONENT_MAX << FRACTION_BITS)

#define LN2 0.69314718055994530942
/* The same in two parts: the first has so few bits that a small multiple of it is exact. */
#define LN2_HIGH 0.693359375
#define LN2_LOW -2.12194440054690583e-4
#define HALF_PI_HIGH 1.5703125
#define HALF_PI_LOW 4.83826794896619231e-4

static DoubleBits bitsOf(double x) {
    union {
        double value;
        DoubleBits bits;
    } u;
    u.value = x;
    return u.bits;
}

static double ofBits(DoubleBits bits) {
    union {
        double value;
        DoubleBits bits;
    } u;
    u.bits = bits;
    return u.value;
}

static int exponentOf(double x) { return (int)(bitsOf(x) >> FRACTION_BITS) & EXPONENT_MAX; }

double fabs(double x) { return ofBits(bitsOf(x) & ~SIGN); }

double modf(double x, double* whole) {
    const DoubleBits bits = bitsOf(x);
    int drop = BIAS + FRACTION_BITS - exponentOf(x);
    DoubleBits mask = 0;
    if (drop <= 0) {
        *whole = x;
        return exponentOf(x) == EXPONENT_MAX && (bits & ~SIGN) > EXPONENT_MASK ? x : ofBits(bits & SIGN);
    }
    if (drop > FRACTION_BITS) {
        *whole = ofBits(bits & SIGN);
        return x;
    }
    while (drop-- > 0)
        mask = mask << 1 | 1;
    *whole = ofBits(bits & ~mask);
    return x - *whole;
}

double floor(double x) {
    double whole;
    return modf(x, &whole) < 0 ? whole - 1 : whole;
}

double ceil(double x) { return -floor(-x); }

double frexp(double x, int* exponent) {
    int shift = 0;
    *exponent = 0;
    if (x == 0 || exponentOf(x) == EXPONENT_MAX)
        return x;
    for (; exponentOf(x) == 0; ++shift)
        x *= 2;
    *exponent = exponentOf(x) - (BIAS - 1) - shift;
    return ofBits((bitsOf(x) & ~EXPONENT_MASK) | (DoubleBits)(BIAS - 1) << FRACTION_BITS);
}

static double powerOfTwo(int exponent) { return ofBits((DoubleBits)(exponent + BIAS) << FRACTION_BITS); }

double ldexp(double x, int exponent) {
    if (exponent > 4 * BIAS)
        exponent = 4 * BIAS;
    if (exponent < -4 * BIAS)
        exponent = -4 * BIAS;
    for (; exponent > BIAS; exponent -= BIAS)
        x *= powerOfTwo(BIAS);
    for (; exponent < 1 - BIAS; exponent += BIAS - 1)
        x *= powerOfTwo(1 - BIAS);
    return x * powerOfTwo(exponent);
}

/* Subtracts y times the powers of two that fit, which is exact. */
double fmod(double x, double y) {
    double rest = fabs(x);
    const double step = fabs(y);
    if (!(step > 0) || exponentOf(x) == EXPONENT_MAX || isnan(y))
        return NAN;
    if (isinf(y))
        return x;
    while (rest >= step) {
        int high, low;
        double part;
        frexp(rest, &high);
        frexp(step, &low);
        part = ldexp(step, high - low);
        if (part > rest)
            part = ldexp(step, high - low - 1);
        rest -= part;
    }
    return bitsOf(x) & SIGN ? -rest : rest;
}

double sqrt(double x) {
    double root;
    int exponent;
    uint8_t i;
    if (x == 0 || isnan(x) || (isinf(x) && x > 0))
        return x;
    if (x < 0)
        return NAN;
    x = frexp(x, &exponent);
    if (exponent & 1) {
        x /= 2;
        ++exponent;
    }
    root = 0.5 + x / 2;
    for (i = 0; i < 6; ++i)
        root = (root + x / root) / 2;
    return ldexp(root, exponent / 2);
}

double exp(double x) {
    double sum = 1, term = 1, rest;
    int power, i;
    if (isnan(x))
        return x;
    if (x > BIAS * LN2 + 1)
        return HUGE_VAL;
    if (x < -(BIAS + FRACTION_BITS + 2) * LN2)
        return 0;
    power = (int)(x / LN2 + (x < 0 ? -0.5 : 0.5));
    rest = x - power * LN2_HIGH - power * LN2_LOW;
    for (i = 1; i < 24; ++i) {
        const double next = sum + (term *= rest / i);
        if (next == sum)
            break;
        sum = next;
    }
    return ldexp(sum, power);
}

double log(double x) {
    double t, square, sum, term;
    int exponent, i;
    if (x < 0 || isnan(x))
        return NAN;
    if (x == 0)
        return -HUGE_VAL;
    if (isinf(x))
        return x;
    x = frexp(x, &exponent);
    if (x < 0.70710678118654752440) {
        x *= 2;
        --exponent;
    }
    t = (x - 1) / (x + 1);
    square = t * t;
    sum = t;
    term = t;
    for (i = 3; i < 50; i += 2) {
        double next;
        term *= square;
        next = sum + term / i;
        if (next == sum)
            break;
        sum = next;
    }
    return exponent * LN2_LOW + 2 * sum + exponent * LN2_HIGH;
}

double pow(double x, double y) {
    double whole, result = 1;
    if (y == 0)
        return 1;
    if (modf(y, &whole) == 0 && fabs(y) < 1024) {
        int count = (int)fabs(y);
        for (; count; count >>= 1, x *= x)
            if (count & 1)
                result *= x;
        return y < 0 ? 1 / result : result;
    }
    if (x == 0)
        return y < 0 ? HUGE_VAL : 0;
    if (x < 0)
        return modf(y, &whole) != 0 ? NAN : fmod(whole, 2) != 0 ? -exp(y * log(-x)) : exp(y * log(-x));
    return exp(y * log(x));
}

/* The sine from `quarters` quarters of the circle on, of an angle of at most an eighth. */
static double sineSeries(double x, uint8_t quarters) {
    const double square = -x * x;
    double term = quarters & 1 ? 1 : x;
    double sum = term;
    int i;
    for (i = quarters & 1 ? 1 : 2; i < 30; i += 2) {
        const double next = sum + (term *= square / (i * (i + 1)));
        if (next == sum)
            break;
        sum = next;
    }
    return quarters & 2 ? -sum : sum;
}

static double sineFrom(double x, uint8_t quarters) {
    double turns;
    if (exponentOf(x) == EXPONENT_MAX)
        return NAN;
    turns = floor(x / (HALF_PI_HIGH + HALF_PI_LOW) + 0.5);
    x = x - turns * HALF_PI_HIGH - turns * HALF_PI_LOW;
    return sineSeries(x, (uint8_t)((uint8_t)(turns - 4 * floor(turns / 4)) + quarters));
}

double sin(double x) { return sineFrom(x, 0); }
double cos(double x) { return sineFrom(x, 1); }
double tan(double x) { return sin(x) / cos(x); }

double atan(double x) {
    double square, sum, term, base = 0;
    char isNegative, isInverse;
    int i;
    if (isnan(x))
        return x;
    isNegative = x < 0;
    x = fabs(x);
    isInverse = x > 1;
    if (isInverse)
        x = 1 / x;
    if (x > 0.41421356237309504880) { /* the tangent of an eighth of half a turn */
        base = 0.78539816339744830962;
        x = (x - 1) / (x + 1);
    }
    square = -x * x;
    sum = term = x;
    for (i = 3; i < 60; i += 2) {
        double next;
        term *= square;
        next = sum + term / i;
        if (next == sum)
            break;
        sum = next;
    }
    sum += base;
    if (isInverse)
        sum = 1.57079632679489661923 - sum;
    return isNegative ? -sum : sum;
}
