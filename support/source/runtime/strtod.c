/*
 * Decimal numbers into doubles. The digits that the width of a double can hold are taken exactly; then comes
 * one multiplication or division by a power of ten, or a few if the exponent is large. Within its exact
 * powers (10 to the 10th in 32 bits, to the 22nd in 64) the result is the nearest one.
 */
#include <ctype.h>
#include <stdint.h>
#include <stdlib.h>

#if __SIZEOF_DOUBLE__ == 4
typedef uint32_t Digits;
#define DIGITS_MAX 99999999UL
#define EXACT_POWER 10
#define POWER_MAX 100
#else
typedef uint64_t Digits;
#define DIGITS_MAX 99999999999999999ULL
#define EXACT_POWER 22
#define POWER_MAX 700
#endif

static double powerOfTen(int exponent) {
    double power = 1;
    while (exponent-- > 0)
        power *= 10;
    return power;
}

static double scale(double value, int exponent) {
    if (exponent > POWER_MAX)
        exponent = POWER_MAX;
    if (exponent < -POWER_MAX)
        exponent = -POWER_MAX;
    for (; exponent > EXACT_POWER; exponent -= EXACT_POWER)
        value *= powerOfTen(EXACT_POWER);
    for (; exponent < -EXACT_POWER; exponent += EXACT_POWER)
        value /= powerOfTen(EXACT_POWER);
    return exponent < 0 ? value / powerOfTen(-exponent) : value * powerOfTen(exponent);
}

double strtod(const char* text, char** end) {
    const char* s = text;
    Digits digits = 0;
    int exponent = 0;
    char isNegative, hasDigits = 0, hasPoint = 0;
    double value;
    while (isspace(*s))
        ++s;
    isNegative = *s == '-';
    if (*s == '-' || *s == '+')
        ++s;
    for (;; ++s) {
        if (*s == '.' && !hasPoint) {
            hasPoint = 1;
        } else if (isdigit(*s)) {
            hasDigits = 1;
            if (digits <= DIGITS_MAX / 10) {
                digits = digits * 10 + (Digits)(*s - '0');
                exponent -= hasPoint;
            } else {
                exponent += !hasPoint;
            }
        } else {
            break;
        }
    }
    if (!hasDigits) {
        if (end)
            *end = (char*)text;
        return 0;
    }
    if (*s == 'e' || *s == 'E') {
        const char* e = s + 1;
        const char isSmall = *e == '-';
        int more = 0;
        if (*e == '-' || *e == '+')
            ++e;
        if (isdigit(*e)) {
            for (; isdigit(*e); ++e)
                if (more < 3000)
                    more = more * 10 + (*e - '0');
            exponent += isSmall ? -more : more;
            s = e;
        }
    }
    if (end)
        *end = (char*)s;
    value = digits ? scale((double)digits, exponent) : 0;
    return isNegative ? -value : value;
}

double atof(const char* text) { return strtod(text, NULL); }
