#include <ctype.h>
#include <limits.h>
#include <stdlib.h>

int abs(int a) { return a < 0 ? -a : a; }
long labs(long a) { return a < 0 ? -a : a; }

div_t div(int dividend, int divisor) {
    div_t result;
    result.quot = dividend / divisor;
    result.rem = dividend % divisor;
    return result;
}

ldiv_t ldiv(long dividend, long divisor) {
    ldiv_t result;
    result.quot = dividend / divisor;
    result.rem = dividend % divisor;
    return result;
}

static int digit(char c) {
    if (isdigit(c))
        return c - '0';
    return isalpha(c) ? tolower(c) - 'a' + 10 : 36;
}

/* The magnitude; what does not fit is ULONG_MAX. No digits leave the end at the text. */
static unsigned long magnitude(const char* text, char** end, int base, char* isNegative) {
    const char* s = text;
    unsigned long value = 0, limit;
    char isTooLarge = 0;
    while (isspace(*s))
        ++s;
    *isNegative = *s == '-';
    if (*s == '-' || *s == '+')
        ++s;
    if ((base == 0 || base == 16) && s[0] == '0' && (s[1] == 'x' || s[1] == 'X') && digit(s[2]) < 16) {
        base = 16;
        s += 2;
    } else if (base == 0) {
        base = *s == '0' ? 8 : 10;
    }
    if (digit(*s) >= base) {
        if (end)
            *end = (char*)text;
        return 0;
    }
    limit = ULONG_MAX / (unsigned)base;
    for (; digit(*s) < base; ++s) {
        const unsigned long next = value * (unsigned)base + (unsigned)digit(*s);
        if (value > limit || next < value * (unsigned)base)
            isTooLarge = 1;
        value = next;
    }
    if (end)
        *end = (char*)s;
    return isTooLarge ? ULONG_MAX : value;
}

unsigned long strtoul(const char* text, char** end, int base) {
    char isNegative;
    const unsigned long value = magnitude(text, end, base, &isNegative);
    return isNegative && value != ULONG_MAX ? -value : value;
}

long strtol(const char* text, char** end, int base) {
    char isNegative;
    const unsigned long value = magnitude(text, end, base, &isNegative);
    if (isNegative)
        return value > LONG_MAX ? LONG_MIN : -(long)value;
    return value > LONG_MAX ? LONG_MAX : (long)value;
}

int atoi(const char* text) { return (int)strtol(text, NULL, 10); }
long atol(const char* text) { return strtol(text, NULL, 10); }

static unsigned long randomState = 1;

void srand(unsigned seed) { randomState = seed; }

int rand(void) {
    randomState = randomState * 1103515245UL + 12345;
    return (int)(randomState >> 16) & RAND_MAX;
}

void* bsearch(const void* key, const void* base, size_t count, size_t size,
              int (*compare)(const void*, const void*)) {
    const char* first = base;
    while (count) {
        const char* middle = first + count / 2 * size;
        const int order = compare(key, middle);
        if (order == 0)
            return (void*)middle;
        if (order > 0) {
            first = middle + size;
            --count;
        }
        count /= 2;
    }
    return NULL;
}

static void swap(char* a, char* b, size_t size) {
    while (size--) {
        const char c = *a;
        *a++ = *b;
        *b++ = c;
    }
}

static void sink(char* base, size_t root, size_t count, size_t size,
                 int (*compare)(const void*, const void*)) {
    size_t child;
    while ((child = 2 * root + 1) < count) {
        if (child + 1 < count && compare(base + child * size, base + (child + 1) * size) < 0)
            ++child;
        if (compare(base + root * size, base + child * size) >= 0)
            return;
        swap(base + root * size, base + child * size, size);
        root = child;
    }
}

/* A heap sort: no recursion, and so a bounded stack. */
void qsort(void* base, size_t count, size_t size, int (*compare)(const void*, const void*)) {
    char* const first = base;
    size_t i;
    for (i = count / 2; i-- > 0;)
        sink(first, i, count, size, compare);
    for (i = count; i-- > 1;) {
        swap(first, first + i * size, size);
        sink(first, 0, i, size, compare);
    }
}
