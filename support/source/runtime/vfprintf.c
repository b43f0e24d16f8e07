/*
 * printf by variant: LEVEL 0, 1, 2 is the largest integer, int, long, long long; WIDTHS says whether width
 * and precision count, FLOATS whether there are floating-point numbers. A conversion that the variant does
 * not have is put as it stands, and its argument is passed over.
 */
#include "format.h"
#include <stddef.h>
#include <stdint.h>
#include <string.h>

#if LEVEL == 2
typedef unsigned long long Unsigned;
typedef long long Signed;
#elif LEVEL == 1
typedef unsigned long Unsigned;
typedef long Signed;
#else
typedef unsigned Unsigned;
typedef int Signed;
#endif

enum { Left = 1, Plus = 2, Blank = 4, Zeros = 8, Alternate = 16 };

typedef struct {
    Output* out;
    int count;
    uint8_t flags;
    int width, precision; /* a precision below 0 is none */
} State;

static void put(State* state, char c) {
    state->out->put(state->out, c);
    ++state->count;
}

static void putAll(State* state, const char* text, size_t size) {
    while (size--)
        put(state, *text++);
}

static void pad(State* state, char c, int count) {
    while (count-- > 0)
        put(state, c);
}

/* What stands before the digits, and what fills the width; the caller puts `size` characters, then calls end.
 */
static void begin(State* state, const char* prefix, int size) {
    const int prefixSize = (int)strlen(prefix);
    state->width -= size + prefixSize;
    if (!(state->flags & (Left | Zeros))) {
        pad(state, ' ', state->width);
        state->width = 0;
    }
    putAll(state, prefix, (size_t)prefixSize);
    if (!(state->flags & Left)) {
        pad(state, '0', state->width);
        state->width = 0;
    }
}

static void end(State* state) { pad(state, ' ', state->width); }

static void putText(State* state, const char* text, size_t size) {
    state->flags &= (uint8_t)~Zeros;
    begin(state, "", (int)size);
    putAll(state, text, size);
    end(state);
}

static const char* signText(const State* state, char isNegative) {
    return isNegative ? "-" : state->flags & Plus ? "+" : state->flags & Blank ? " " : "";
}

static void putInteger(State* state, Unsigned value, uint8_t base, char letters, const char* prefix) {
    char digits[sizeof(Unsigned) * 8 / 3 + 1];
    uint8_t size = 0;
    int zeros;
    do {
        const uint8_t digit = (uint8_t)(base == 16  ? (uint8_t)value & 15
                                        : base == 8 ? (uint8_t)value & 7
                                                    : (uint8_t)(value % 10));
        digits[size++] = (char)(digit < 10 ? '0' + digit : letters + digit - 10);
        if (base == 16)
            value >>= 4;
        else if (base == 8)
            value >>= 3;
        else
            value /= 10;
    } while (value);
    if (state->precision == 0 && size == 1 && digits[0] == '0')
        size = 0;
    zeros = state->precision - size;
    if (base == 8 && (state->flags & Alternate) && zeros < 1 && (size == 0 || digits[size - 1] != '0'))
        zeros = 1;
    if (zeros < 0)
        zeros = 0;
    if (state->precision >= 0)
        state->flags &= (uint8_t)~Zeros;
    begin(state, prefix, size + zeros);
    pad(state, '0', zeros);
    while (size)
        put(state, digits[--size]);
    end(state);
}

#if FLOATS
#include "decimal.h"

static void putFixed(State* state, const Decimal* d, const char* sign, int precision) {
    int i = leadingDigit(d);
    if (i > UNITS_DIGIT)
        i = UNITS_DIGIT;
    begin(state, sign, UNITS_DIGIT - i + 1 + precision + (precision || state->flags & Alternate));
    for (; i <= UNITS_DIGIT; ++i)
        put(state, decimalDigit(d, i));
    if (precision || state->flags & Alternate)
        put(state, '.');
    for (; precision > 0; --precision)
        put(state, decimalDigit(d, i++));
    end(state);
}

static void putScientific(State* state, const Decimal* d, const char* sign, int precision, char letter) {
    int i = leadingDigit(d);
    int exponent = UNITS_DIGIT - i;
    const char isNegative = exponent < 0;
    if (isNegative)
        exponent = -exponent;
    begin(state, sign, 5 + precision + (precision || state->flags & Alternate) + (exponent > 99));
    put(state, decimalDigit(d, i++));
    if (precision || state->flags & Alternate)
        put(state, '.');
    for (; precision > 0; --precision)
        put(state, decimalDigit(d, i++));
    put(state, letter);
    put(state, isNegative ? '-' : '+');
    if (exponent > 99)
        put(state, (char)('0' + exponent / 100));
    put(state, (char)('0' + exponent / 10 % 10));
    put(state, (char)('0' + exponent % 10));
    end(state);
}

/* As few digits as show the value to the precision. */
static void putGeneral(State* state, Decimal* d, const char* sign, int precision, char letter) {
    int lead, exponent;
    if (precision == 0)
        precision = 1;
    roundDecimal(d, leadingDigit(d) + precision);
    lead = leadingDigit(d);
    exponent = UNITS_DIGIT - lead;
    if (!(state->flags & Alternate))
        while (precision > 1 && decimalDigit(d, lead + precision - 1) == '0')
            --precision;
    if (exponent >= -4 && exponent < (state->precision ? state->precision : 1))
        putFixed(state, d, sign, precision > exponent + 1 ? precision - 1 - exponent : 0);
    else
        putScientific(state, d, sign, precision - 1, letter);
}

static void putDouble(State* state, double value, char conversion) {
    union {
        double value;
        DoubleBits bits;
    } u;
    const char letter = conversion & 0x20 ? 'e' : 'E';
    const char* sign;
    DoubleBits fraction;
    int exponent;
    Decimal decimal;
    u.value = value;
    sign = signText(state, (char)(u.bits >> (sizeof u.bits * 8 - 1)));
    fraction = u.bits & (((DoubleBits)1 << FRACTION_BITS) - 1);
    exponent = (int)(u.bits >> FRACTION_BITS) & EXPONENT_MAX;
    if (exponent == EXPONENT_MAX) {
        state->flags &= (uint8_t)~Zeros;
        begin(state, sign, 3);
        putAll(state, letter == 'e' ? (fraction ? "nan" : "inf") : (fraction ? "NAN" : "INF"), 3);
        end(state);
        return;
    }
    if (state->precision < 0)
        state->precision = 6;
    expandDecimal(&decimal, fraction, exponent);
    switch (conversion | 0x20) {
    case 'f':
        if (state->precision < WORDS * 4)
            roundDecimal(&decimal, UNITS_DIGIT + 1 + state->precision);
        putFixed(state, &decimal, sign, state->precision);
        break;
    case 'e':
        if (state->precision < WORDS * 4)
            roundDecimal(&decimal, leadingDigit(&decimal) + 1 + state->precision);
        putScientific(state, &decimal, sign, state->precision, letter);
        break;
    default:
        putGeneral(state, &decimal, sign, state->precision < WORDS * 4 ? state->precision : WORDS * 4,
                   letter);
    }
}
#endif

static uint8_t flagOf(char c) {
    switch (c) {
    case '-':
        return Left;
    case '+':
        return Plus;
    case ' ':
        return Blank;
    case '0':
        return Zeros;
    case '#':
        return Alternate;
    default:
        return 0;
    }
}

/* A number of the format, or an argument in its place. */
static int number(const char** format, va_list* arguments) {
    int value = 0;
    if (**format == '*') {
        ++*format;
        return va_arg(*arguments, int);
    }
    for (; **format >= '0' && **format <= '9'; ++*format)
        value = value > 3275 ? 32767 : value * 10 + (**format - '0');
    return value;
}

/* Of an unknown conversion and of one that the variant lacks the text is put. */
static char putSigned(State* state, va_list* arguments, int8_t length) {
    Signed value;
    if (length > LEVEL) {
        if (length == 1)
            (void)va_arg(*arguments, long);
        else
            (void)va_arg(*arguments, long long);
        return 0;
    }
    if (length <= 0)
        value = va_arg(*arguments, int);
#if LEVEL > 1
    else if (length == 2)
        value = va_arg(*arguments, long long);
#endif
#if LEVEL > 0
    else
        value = va_arg(*arguments, long);
#endif
    if (length == -2)
        value = (signed char)value;
    putInteger(state, value < 0 ? -(Unsigned)value : (Unsigned)value, 10, 'a', signText(state, value < 0));
    return 1;
}

static char putUnsigned(State* state, va_list* arguments, int8_t length, char conversion) {
    const uint8_t base = conversion == 'u' ? 10 : conversion == 'o' ? 8 : 16;
    const char* prefix = "";
    Unsigned value;
    if (length > LEVEL) {
        if (length == 1)
            (void)va_arg(*arguments, long);
        else
            (void)va_arg(*arguments, long long);
        return 0;
    }
    if (length <= 0)
        value = va_arg(*arguments, unsigned);
#if LEVEL > 1
    else if (length == 2)
        value = va_arg(*arguments, unsigned long long);
#endif
#if LEVEL > 0
    else
        value = va_arg(*arguments, unsigned long);
#endif
    if (length == -2)
        value = (unsigned char)value;
    if (base == 16 && (state->flags & Alternate) && value)
        prefix = conversion == 'X' ? "0X" : "0x";
    putInteger(state, value, base, conversion == 'X' ? 'A' : 'a', prefix);
    return 1;
}

static char convert(State* state, va_list* arguments, int8_t length, char conversion) {
    switch (conversion) {
    case 'd':
    case 'i':
        return putSigned(state, arguments, length);
    case 'u':
    case 'x':
    case 'X':
    case 'o':
        return putUnsigned(state, arguments, length, conversion);
    case 'p':
        state->flags |= Alternate;
        return putUnsigned(state, arguments, 0, 'x');
    case 'c': {
        const char c = (char)va_arg(*arguments, int);
        putText(state, &c, 1);
        return 1;
    }
    case 's': {
        const char* text = va_arg(*arguments, const char*);
        size_t size = 0;
        if (!text)
            text = "(null)";
        while ((state->precision < 0 || size < (size_t)state->precision) && text[size])
            ++size;
        putText(state, text, size);
        return 1;
    }
    case 'n':
        *va_arg(*arguments, int*) = state->count;
        return 1;
    case '%':
        put(state, '%');
        return 1;
    case 'f':
    case 'F':
    case 'e':
    case 'E':
    case 'g':
    case 'G':
#if FLOATS
        putDouble(state, va_arg(*arguments, double), conversion);
        return 1;
#else
        (void)va_arg(*arguments, double);
        return 0;
#endif
    default:
        return 0;
    }
}

static void readWidths(State* state, const char** format, va_list* arguments) {
    state->width = number(format, arguments);
    state->precision = -1;
    if (state->width < 0) {
        state->flags |= Left;
        state->width = state->width < -32767 ? 0 : -state->width;
    }
    if (**format == '.') {
        ++*format;
        state->precision = number(format, arguments);
    }
    if (state->flags & Left)
        state->flags &= (uint8_t)~Zeros;
#if !WIDTHS
    state->width = 0;
    state->precision = -1;
#endif
}

int __vfprintf(Output* out, const char* format, va_list list) {
    State state;
    va_list arguments;
    va_copy(arguments, list);
    state.out = out;
    state.count = 0;
    while (*format) {
        const char* const start = format;
        int8_t length = 0;
        uint8_t flag;
        if (*format != '%') {
            put(&state, *format++);
            continue;
        }
        ++format;
        state.flags = 0;
        while ((flag = flagOf(*format))) {
            state.flags |= flag;
            ++format;
        }
        readWidths(&state, &format, &arguments);
        for (;; ++format) {
            if (*format == 'l')
                ++length;
            else if (*format == 'h')
                --length;
            else if (*format == 'j')
                length = 2;
            else if (*format != 'z' && *format != 't')
                break;
        }
        if (length > 2)
            length = 2;
        if (!convert(&state, &arguments, length, *format))
            putAll(&state, start, (size_t)(format - start) + (*format != 0));
        if (*format)
            ++format;
    }
    va_end(arguments);
    return state.count;
}
