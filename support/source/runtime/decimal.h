/*
 * The exact decimal digits of a double, whichever width that has. Four digits a word; the digit of the units
 * is the last one of word UNITS. Doubling and halving is all that it takes, so nothing is lost, and rounding
 * is correct.
 */
#include <stdint.h>

#if __SIZEOF_DOUBLE__ == 4
typedef uint32_t DoubleBits;
#define FRACTION_BITS 23
#define EXPONENT_MAX 0xFF
#define UNITS 9
#define WORDS 48
#else
typedef uint64_t DoubleBits;
#define FRACTION_BITS 52
#define EXPONENT_MAX 0x7FF
#define UNITS 77
#define WORDS 347
#endif
#define UNITS_DIGIT (UNITS * 4 + 3)

typedef struct {
    uint16_t word[WORDS];
    int first, last; /* words outside are 0 */
} Decimal;

static void expandDecimal(Decimal* d, DoubleBits fraction, int exponent) {
    int i;
    for (i = 0; i < WORDS; ++i)
        d->word[i] = 0;
    d->first = d->last = UNITS;
    if (exponent)
        fraction |= (DoubleBits)1 << FRACTION_BITS;
    else
        exponent = 1;
    for (i = UNITS; fraction; --i) {
        d->word[i] = (uint16_t)(fraction % 10000);
        fraction /= 10000;
        d->first = i;
    }
    exponent -= (EXPONENT_MAX >> 1) + FRACTION_BITS;
    for (; exponent > 0; --exponent) {
        uint16_t carry = 0;
        for (i = UNITS; i >= d->first; --i) {
            const uint16_t twice = (uint16_t)(d->word[i] * 2 + carry);
            carry = twice >= 10000;
            d->word[i] = carry ? twice - 10000 : twice;
        }
        if (carry)
            d->word[--d->first] = 1;
    }
    for (; exponent < 0 && d->first <= d->last; ++exponent) {
        uint16_t carry = 0;
        for (i = d->first; i <= d->last; ++i) {
            const uint16_t value = (uint16_t)(d->word[i] + carry);
            carry = value & 1 ? 10000 : 0;
            d->word[i] = value >> 1;
        }
        if (carry && d->last + 1 < WORDS)
            d->word[++d->last] = 5000;
        while (d->first < UNITS && d->word[d->first] == 0)
            ++d->first;
    }
}

static const uint16_t powers[5] = {1, 10, 100, 1000, 10000};

static char decimalDigit(const Decimal* d, int index) {
    if (index < 0 || index >= WORDS * 4)
        return '0';
    return (char)('0' + d->word[index >> 2] / powers[3 - (index & 3)] % 10);
}

/* The index of the first digit that is not 0; that of the units if there is none. */
static int leadingDigit(const Decimal* d) {
    int i;
    for (i = d->first * 4 - 4; i <= d->last * 4 + 3; ++i)
        if (decimalDigit(d, i) != '0')
            return i;
    return UNITS_DIGIT;
}

/* Drops the digits from the index on, to the nearest, of two the even one. */
static void roundDecimal(Decimal* d, int index) {
    const int at = index >> 2;
    const uint16_t unit = powers[4 - (index & 3)];
    uint16_t rest;
    char isOdd, isMore = 0;
    int i;
    if (index < 1 || at >= WORDS)
        return;
    rest = d->word[at] % unit;
    isOdd = (unit == 10000 ? d->word[at - 1] : d->word[at] / unit) & 1;
    for (i = at + 1; i <= d->last; ++i) {
        isMore |= d->word[i] != 0;
        d->word[i] = 0;
    }
    d->word[at] -= rest;
    if (rest < unit / 2 || (rest == unit / 2 && !isMore && !isOdd))
        return;
    i = at;
    if (unit == 10000)
        d->word[--i] += 1;
    else
        d->word[i] += unit;
    for (; d->word[i] >= 10000; --i) {
        d->word[i] -= 10000;
        d->word[i - 1] += 1;
    }
    if (i < d->first)
        d->first = i;
}
