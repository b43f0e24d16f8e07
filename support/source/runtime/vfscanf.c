/*
 * scanf by variant: LEVEL 0, 1, 2 is the largest integer, int, long, long long; FLOATS says whether there are
 * floating-point numbers, CLASSES whether there are character classes. What a variant lacks ends the
 * conversion.
 */
#include "format.h"
#include <ctype.h>
#include <stddef.h>
#include <stdint.h>
#include <stdlib.h>

#if LEVEL == 2
typedef unsigned long long Unsigned;
#elif LEVEL == 1
typedef unsigned long Unsigned;
#else
typedef unsigned Unsigned;
#endif

enum { Nothing = -2 };

static int look(Input* in) {
    if (in->held == Nothing)
        in->held = in->get(in);
    return in->held;
}

static void take(Input* in, int* count) {
    in->held = Nothing;
    ++*count;
}

static void skipBlanks(Input* in, int* count) {
    while (isspace(look(in)))
        take(in, count);
}

static int digitOf(int c) {
    if (isdigit(c))
        return c - '0';
    return isxdigit(c) ? tolower(c) - 'a' + 10 : 16;
}

static char readInteger(Input* in, int width, int base, Unsigned* value, int* count) {
    char isNegative = 0, hasDigits = 0;
    *value = 0;
    if (look(in) == '-' || look(in) == '+') {
        isNegative = look(in) == '-';
        take(in, count);
        --width;
    }
    if (width > 0 && look(in) == '0' && (base == 0 || base == 16)) {
        hasDigits = 1;
        take(in, count);
        --width;
        if (width > 0 && (look(in) == 'x' || look(in) == 'X')) {
            base = 16;
            take(in, count);
            --width;
        } else if (base == 0) {
            base = 8;
        }
    }
    if (base == 0)
        base = 10;
    for (; width > 0 && digitOf(look(in)) < base; --width) {
        *value = *value * (Unsigned)base + (Unsigned)digitOf(look(in));
        hasDigits = 1;
        take(in, count);
    }
    if (isNegative)
        *value = -*value;
    return hasDigits;
}

static char storeInteger(va_list* arguments, int8_t length, Unsigned value) {
    if (length > LEVEL)
        return 0;
    if (length == -2)
        *va_arg(*arguments, char*) = (char)value;
    else if (length <= 0)
        *va_arg(*arguments, int*) = (int)value;
#if LEVEL > 1
    else if (length == 2)
        *va_arg(*arguments, long long*) = (long long)value;
#endif
#if LEVEL > 0
    else
        *va_arg(*arguments, long*) = (long)value;
#endif
    return 1;
}

#if FLOATS
/* The longest text that can be a number, as far as the buffer goes. */
static char readDouble(Input* in, int width, double* value, int* count) {
    char text[40];
    uint8_t size = 0;
    char hasPoint = 0, hasExponent = 0, hasDigits = 0;
    char* end;
    for (; width > 0 && size < sizeof text - 1; --width) {
        const int c = look(in);
        if (isdigit(c))
            hasDigits = 1;
        else if (c == '.' && !hasPoint && !hasExponent)
            hasPoint = 1;
        else if ((c == 'e' || c == 'E') && hasDigits && !hasExponent)
            hasExponent = 1;
        else if (!((c == '-' || c == '+') && (size == 0 || (text[size - 1] | 0x20) == 'e')))
            break;
        text[size++] = (char)c;
        take(in, count);
    }
    text[size] = 0;
    *value = strtod(text, &end);
    return hasDigits && *end == 0;
}

static char scanDouble(Input* in, va_list* arguments, int width, int8_t length, char isKept, int* count) {
    double value;
    skipBlanks(in, count);
    if (!readDouble(in, width, &value, count))
        return 0;
    if (isKept) {
        if (length > 0)
            *va_arg(*arguments, double*) = value;
        else
            *va_arg(*arguments, float*) = (float)value;
    }
    return 1;
}
#endif

static char scanText(Input* in, va_list* arguments, int width, char isKept, int* count) {
    char* to = isKept ? va_arg(*arguments, char*) : NULL;
    skipBlanks(in, count);
    if (look(in) < 0)
        return 0;
    for (; width > 0 && look(in) >= 0 && !isspace(look(in)); --width) {
        if (to)
            *to++ = (char)look(in);
        take(in, count);
    }
    if (to)
        *to = 0;
    return 1;
}

static char scanCharacters(Input* in, va_list* arguments, int width, char isKept, int* count) {
    char* to = isKept ? va_arg(*arguments, char*) : NULL;
    for (; width > 0; --width) {
        if (look(in) < 0)
            return 0;
        if (to)
            *to++ = (char)look(in);
        take(in, count);
    }
    return 1;
}

#if CLASSES
/* `set` is what stands between "[" and the "]" that ends it. */
static char isInClass(const char* set, const char* end, int c) {
    const char isOutside = *set == '^';
    char isFound = 0;
    if (isOutside)
        ++set;
    for (; set < end; ++set) {
        if (set + 2 < end && set[1] == '-') {
            isFound |= c >= (unsigned char)set[0] && c <= (unsigned char)set[2];
            set += 2;
        } else {
            isFound |= c == (unsigned char)*set;
        }
    }
    return isFound != isOutside;
}

static char scanClass(Input* in, const char* set, const char* end, va_list* arguments, int width, char isKept,
                      int* count) {
    char* to = isKept ? va_arg(*arguments, char*) : NULL;
    char isAny = 0;
    for (; width > 0 && look(in) >= 0 && isInClass(set, end, look(in)); --width) {
        if (to)
            *to++ = (char)look(in);
        take(in, count);
        isAny = 1;
    }
    if (to && isAny)
        *to = 0;
    return isAny;
}

static const char* endOfClass(const char* format) {
    if (*format == '^')
        ++format;
    if (*format == ']')
        ++format;
    while (*format && *format != ']')
        ++format;
    return format;
}
#endif

static char scanInteger(Input* in, va_list* arguments, int width, int8_t length, char conversion, char isKept,
                        int* count) {
    const int base = conversion == 'i'                        ? 0
                     : conversion == 'o'                      ? 8
                     : conversion == 'x' || conversion == 'X' ? 16
                                                              : 10;
    Unsigned value;
    skipBlanks(in, count);
    return readInteger(in, width, base, &value, count) && (!isKept || storeInteger(arguments, length, value));
}

int __vfscanf(Input* in, const char* format, va_list list) {
    int stored = 0, count = 0;
    va_list arguments;
    va_copy(arguments, list);
    for (; *format; ++format) {
        char isKept = 1, isDone = 0;
        int8_t length = 0;
        int width = 0;
        if (isspace(*format)) {
            skipBlanks(in, &count);
            continue;
        }
        if (*format != '%') {
            if (look(in) != (unsigned char)*format)
                break;
            take(in, &count);
            continue;
        }
        ++format;
        if (*format == '*') {
            isKept = 0;
            ++format;
        }
        for (; isdigit(*format); ++format)
            width = width > 3275 ? 32767 : width * 10 + (*format - '0');
        for (; *format == 'l' || *format == 'h'; ++format)
            length += *format == 'l' ? 1 : -1;
        switch (*format) {
        case 'd':
        case 'i':
        case 'u':
        case 'o':
        case 'x':
        case 'X':
            isDone = scanInteger(in, &arguments, width ? width : 32767, length, *format, isKept, &count);
            break;
#if FLOATS
        case 'f':
        case 'e':
        case 'g':
            isDone = scanDouble(in, &arguments, width ? width : 32767, length, isKept, &count);
            break;
#endif
        case 's':
            isDone = scanText(in, &arguments, width ? width : 32767, isKept, &count);
            break;
        case 'c':
            isDone = scanCharacters(in, &arguments, width ? width : 1, isKept, &count);
            break;
#if CLASSES
        case '[': {
            const char* const set = format + 1;
            format = endOfClass(set);
            if (*format)
                isDone = scanClass(in, set, format, &arguments, width ? width : 32767, isKept, &count);
            break;
        }
#endif
        case 'n':
            *va_arg(arguments, int*) = count;
            continue;
        case '%':
            skipBlanks(in, &count);
            isKept = 0;
            if (look(in) == '%') {
                take(in, &count);
                isDone = 1;
            }
            break;
        default:
            break;
        }
        if (!isDone)
            break;
        stored += isKept;
    }
    va_end(arguments);
    return stored == 0 && look(in) < 0 && *format ? -1 : stored;
}
