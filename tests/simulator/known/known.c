/*
 * Computes with everything that the runtime has and prints what comes out: once on this machine, with its
 * compiler and its libraries, and once in the simulator. The two texts have to be equal. REAL is the type
 * that a double of the target is like. Checksums stand for what would be thousands of lines.
 */
#include <ctype.h>
#include <math.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

typedef REAL real;

static uint32_t sum;

static void add(uint64_t value) {
    uint8_t i;
    for (i = 0; i < 8; ++i, value >>= 8) {
        sum ^= (uint8_t)value;
        sum = (sum >> 5 | sum << 27) + 0x9E3779B9;
    }
}

static void report(const char* name) {
    printf("%-10s %08lX\n", name, (unsigned long)sum);
    sum = 0;
}

static const int16_t ints[] = {1,    2,     3,  7,  10, 100, 255,  256,   1000,
                               4096, 32767, -1, -2, -9, -10, -255, -1000, -32767};
static const int32_t longs[] = {1,      3,          10,         65535,       65536,      100000, -7,
                                -65536, -123456789, 2147483647, -2147483647, 0x12345678, 99999,  -1000000};
static const int64_t wides[] = {
    1,  10,          4294967295LL,   4294967296LL,          1000000000000LL,
    -3, -4294967297, -99999999999LL, 9223372036854775807LL, -9223372036854775807LL};
#define COUNT(A) (sizeof(A) / sizeof *(A))

#define INTEGERS(NAME, S, U, VALUES, BITS)                                                                   \
    static void NAME(void) {                                                                                 \
        volatile S a, b;                                                                                     \
        unsigned i, j;                                                                                       \
        for (i = 0; i < COUNT(VALUES); ++i)                                                                  \
            for (j = 0; j < COUNT(VALUES); ++j) {                                                            \
                a = VALUES[i];                                                                               \
                b = VALUES[j];                                                                               \
                add((uint64_t)(U)((U)a * (U)b));                                                             \
                add((uint64_t)(int64_t)(S)(a / b));                                                          \
                add((uint64_t)(int64_t)(S)(a % b));                                                          \
                add((uint64_t)(U)((U)a / (U)b));                                                             \
                add((uint64_t)(U)((U)a % (U)b));                                                             \
                add((uint64_t)(U)((U)a << ((U)b & (BITS - 1))));                                             \
                add((uint64_t)(U)((U)a >> ((U)b & (BITS - 1))));                                             \
                add((uint64_t)(int64_t)(a >> ((U)b & (BITS - 1))));                                          \
                add((a < b) + 2 * ((U)a < (U)b) + 4 * (a == b));                                             \
            }                                                                                                \
        report(#NAME);                                                                                       \
    }
INTEGERS(ints16, int16_t, uint16_t, ints, 16)
INTEGERS(ints32, int32_t, uint32_t, longs, 32)
INTEGERS(ints64, int64_t, uint64_t, wides, 64)

static void products(void) {
    unsigned i, j;
    for (i = 0; i < COUNT(ints); ++i)
        for (j = 0; j < COUNT(ints); ++j) {
            volatile int16_t a = ints[i], b = ints[j];
            add((uint64_t)((int32_t)a * b));
            add((uint64_t)((uint32_t)(uint16_t)a * (uint16_t)b));
        }
    for (i = 0; i < COUNT(longs); ++i)
        for (j = 0; j < COUNT(longs); ++j) {
            volatile int32_t a = longs[i], b = longs[j];
            add((uint64_t)((int64_t)a * b));
            add((uint64_t)(uint32_t)a * (uint32_t)b);
        }
    report("products");
}

/* Each width of floating point: halves, ties, subnormal numbers, infinities and what is no number. */
static const uint32_t floats[] = {0x00000000, 0x80000000, 0x3F800000, 0xBF800000, 0x40490FDB,
                                  0x3EAAAAAB, 0x00000001, 0x807FFFFF, 0x00800000, 0x7F7FFFFF,
                                  0xFF7FFFFF, 0x7F800000, 0xFF800000, 0x7FC00000, 0x4B7FFFFF,
                                  0x4B800001, 0x3F7FFFFF, 0x33800000, 0xC2F6E979, 0x1F000003};
static const uint64_t doubles[] = {0,
                                   0x8000000000000000,
                                   0x3FF0000000000000,
                                   0xBFF0000000000000,
                                   0x400921FB54442D18,
                                   0x3FD5555555555555,
                                   0x0000000000000001,
                                   0x800FFFFFFFFFFFFF,
                                   0x0010000000000000,
                                   0x7FEFFFFFFFFFFFFF,
                                   0xFFF0000000000000,
                                   0x7FF8000000000000,
                                   0x433FFFFFFFFFFFFF,
                                   0x3CA0000000000001,
                                   0x36A0000000000001,
                                   0x47EFFFFFF0000000,
                                   0xC05EDD2F1A9FBE77};

#define FLOATS(NAME, F, U, VALUES, NOT)                                                                      \
    static F NAME##From(U bits) {                                                                            \
        F value;                                                                                             \
        memcpy(&value, &bits, sizeof value);                                                                 \
        return value;                                                                                        \
    }                                                                                                        \
    static void NAME##Add(volatile F value) {                                                                \
        F copy = value;                                                                                      \
        U bits;                                                                                              \
        memcpy(&bits, &copy, sizeof bits);                                                                   \
        add(copy != copy ? NOT : bits);                                                                      \
    }                                                                                                        \
    static void NAME(void) {                                                                                 \
        unsigned i, j;                                                                                       \
        for (i = 0; i < COUNT(VALUES); ++i) {                                                                \
            volatile F a = NAME##From(VALUES[i]);                                                            \
            for (j = 0; j < COUNT(VALUES); ++j) {                                                            \
                volatile F b = NAME##From(VALUES[j]);                                                        \
                NAME##Add(a + b);                                                                            \
                NAME##Add(a - b);                                                                            \
                NAME##Add(a* b);                                                                             \
                NAME##Add(a / b);                                                                            \
                add((a == b) + 2 * (a < b) + 4 * (a <= b) + 8 * __builtin_isunordered(a, b));                \
                if (a == a && b == b)                                                                        \
                    add((a > b) + 2 * (a >= b));                                                             \
            }                                                                                                \
            if (a > -2147483648.0f && a < 2147483648.0f)                                                     \
                add((uint64_t)(int32_t)a);                                                                   \
            if (a > -9.2e18f && a < 9.2e18f)                                                                 \
                add((uint64_t)(int64_t)a);                                                                   \
            if (a >= 0 && a < 4294967296.0f)                                                                 \
                add((uint32_t)a);                                                                            \
            if (a >= 0 && a < 1.8e19f)                                                                       \
                add((uint64_t)a);                                                                            \
        }                                                                                                    \
        for (i = 0; i < COUNT(longs); ++i) {                                                                 \
            NAME##Add((F)longs[i]);                                                                          \
            NAME##Add((F)(uint32_t)longs[i]);                                                                \
        }                                                                                                    \
        for (i = 0; i < COUNT(wides); ++i) {                                                                 \
            NAME##Add((F)wides[i]);                                                                          \
            NAME##Add((F)(uint64_t)wides[i]);                                                                \
        }                                                                                                    \
        for (i = 0; i < COUNT(ints); ++i) {                                                                  \
            NAME##Add((F)ints[i]);                                                                           \
            NAME##Add((F)(uint16_t)ints[i]);                                                                 \
        }                                                                                                    \
        report(#NAME);                                                                                       \
    }
FLOATS(single, float, uint32_t, floats, 0x7FC00000)

#ifdef WIDE_REAL
FLOATS(wide, double, uint64_t, doubles, 0x7FF8000000000000)

static void widths(void) {
    unsigned i;
    for (i = 0; i < COUNT(floats); ++i)
        wideAdd((double)singleFrom(floats[i]));
    for (i = 0; i < COUNT(doubles); ++i)
        singleAdd((float)wideFrom(doubles[i]));
    report("widths");
}
#endif

static void integersAsText(void) {
    printf("[%d] [%5d] [%-5d] [%05d] [%+d] [% d] [%.3d] [%8.3d]\n", 42, 42, 42, 42, 42, 42, 7, -7);
    printf("[%u] [%x] [%X] [%#x] [%o] [%#o] [%c] [%%] [%5c]\n", 65535u, 0xBEEF, 0xBEEF, 0xBEEF, 8, 8, 'A',
           'B');
    printf("[%ld] [%lu] [%lx] [%12ld] [%-12ld]\n", -2147483647L, 4294967295UL, 0x89ABCDEFUL, 123456789L, -1L);
    printf("[%lld] [%llu] [%llx]\n", -9223372036854775807LL, 18446744073709551615ULL, 0x123456789ABCDEF0ULL);
    printf("[%s] [%8s] [%-8s] [%.2s] [%*d] [%-*d] [%.*s]\n", "text", "text", "text", "text", 6, 1, 6, 2, 3,
           "abcdef");
    printf("[%hhd] [%hhu] [%d] [%.0d]\n", 300, 300, 0, 0);
}

static const float shown[] = {0.0f,     1.0f,       0.5f,  1.5f,   2.5f,    0.1f,
                              123.456f, 9.9999995f, 1e10f, 1e-10f, 3.4e38f, 1e-45f};

static void realsAsText(void) {
    unsigned i;
    for (i = 0; i < COUNT(shown); ++i) {
        const real value = (real)shown[i];
        printf("[%f] [%.0f] [%.3e] [%g] [%.10g]\n", (double)value, (double)value, (double)value,
               (double)value, (double)-value);
    }
    printf("[%10.2f] [%-10.2f] [%010.2f] [%+.1f] [%#.0f] [%G] [%E]\n", 3.14159, 3.14159, -3.14159, 2.25, 3.0,
           1e-7, 1.0);
    printf("[%f] [%5.1f] [%e]\n", (double)INFINITY, (double)-INFINITY, (double)NAN);
}

static void textsAsNumbers(void) {
    char word[16], letters[16];
    int a = 0, b = 0, n, at = 0;
    long l = 0;
    long long ll = 0;
    float f = 0;
    double d = 0;
    n = sscanf(" 12 -34 hello 0x1F", "%d %d %s %i%n", &a, &b, word, &n, &at);
    printf("%d %d %d %s %d\n", n, a, b, word, at);
    n = sscanf("123456789 -99999999999 77", "%ld %lld %o", &l, &ll, (unsigned*)&a);
    printf("%d %ld %lld %d\n", n, l, ll, a);
    n = sscanf("abc123,45.25 1e3", "%[a-z]%d,%f %lf", letters, &a, &f, &d);
    printf("%d %s %d %.2f %.1f\n", n, letters, a, (double)f, d);
    n = sscanf("7;x", "%d,%d", &a, &b);
    printf("%d %d\n", n, sscanf("", "%d", &a));
    printf("%ld %lu %ld %d\n", strtol("-0x7fffffff", NULL, 0), strtoul("4294967295", NULL, 10),
           strtol("z", NULL, 36), atoi("  -32767x"));
    printf("%.4f %.4f %.3e\n", strtod("-3.1416", NULL), atof(".5"), strtod("1.5e-20", NULL));
}

static int ascending(const void* a, const void* b) {
    const int16_t x = *(const int16_t*)a, y = *(const int16_t*)b;
    return (x > y) - (x < y);
}

static unsigned ackermann(unsigned m, unsigned n) {
    return m == 0 ? n + 1 : n == 0 ? ackermann(m - 1, 1) : ackermann(m - 1, ackermann(m, n - 1));
}

static uint16_t crc16(const char* text) {
    uint16_t crc = 0xFFFF;
    uint8_t i;
    for (; *text; ++text)
        for (crc ^= (uint16_t)((uint8_t)*text << 8), i = 0; i < 8; ++i)
            crc = (uint16_t)(crc & 0x8000 ? crc << 1 ^ 0x1021 : crc << 1);
    return crc;
}

static void programs(void) {
    static int16_t sorted[COUNT(ints)];
    int16_t key = -255;
    unsigned i;
    char text[32], *token;
    memcpy(sorted, ints, sizeof ints);
    qsort(sorted, COUNT(sorted), sizeof *sorted, ascending);
    for (i = 0; i < COUNT(sorted); ++i)
        printf("%d ", sorted[i]);
    printf("at %d\n",
           (int)((int16_t*)bsearch(&key, sorted, COUNT(sorted), sizeof *sorted, ascending) - sorted));
    printf("ackermann %u, crc %04X\n", ackermann(2, 5), crc16("123456789"));
    strcpy(text, "one,two;;three");
    for (token = strtok(text, ",;"); token; token = strtok(NULL, ",;"))
        printf("<%s>", token);
    strncat(strcpy(text, "ab"), "cdef", 2);
    memmove(text + 1, text, 4);
    printf(" %s %d %d %s %d\n", text, (int)strspn("aabc", "ab"), (int)strcspn("xyz", "z"),
           strstr("needle", "ed"), strcmp("a", "b") < 0);
    for (i = 0; i < 128; ++i)
        add((uint64_t)(!!isalpha((int)i) + 2 * !!isdigit((int)i) + 4 * !!isspace((int)i) +
                       8 * !!ispunct((int)i) + 16 * toupper((int)i) + 2048 * !!isxdigit((int)i) +
                       4096 * !!iscntrl((int)i)));
    report("ctype");
}

static void heap(void) {
    char *a = malloc(100), *b = malloc(50), *c = calloc(20, 2);
    memset(a, 1, 100);
    memset(b, 2, 50);
    free(a);
    a = malloc(30);
    memset(a, 3, 30);
    b = realloc(b, 120);
    printf("heap %d %d %d\n", a[29], b[49], c[39]);
    free(c);
    free(b);
    free(a);
    a = malloc(300); /* all that there is, but for a header */
    printf("%s\n", a ? "whole" : "in pieces");
    free(a);
}

static void functions(void) {
    static const float at[] = {0.1f, 0.5f, 1.0f, 2.0f, 3.7f, 10.0f};
    unsigned i;
    int e;
    double whole;
    for (i = 0; i < COUNT(at); ++i) {
        const real x = (real)at[i];
        printf("%.4f %.4f %.4f %.4f %.4e %.4f %.4f\n", (double)(real)sqrt(x), (double)(real)sin(x),
               (double)(real)cos(x), (double)(real)atan(x), (double)(real)exp(x), (double)(real)log(x),
               (double)(real)pow(x, (real)1.5));
    }
    printf("%.1f %.1f %.1f %.1f %.2f\n", floor(-2.5), ceil(-2.5), fabs(-1.0), fmod(7.5, 2.0), ldexp(0.75, 3));
    printf("%.3f %d", frexp(48.0, &e), e);
    {
        const double part = modf(-3.25, &whole);
        printf(" %.2f %.0f\n", part, whole);
    }
}

static int initialised = 0x1234;
static int zeroed[4];

int main(void) {
    printf("data %x %d\n", (unsigned)initialised, zeroed[0] + zeroed[3]);
    ints16();
    ints32();
    ints64();
    products();
    single();
#ifdef WIDE_REAL
    wide();
    widths();
#endif
    integersAsText();
    realsAsText();
    textsAsNumbers();
    programs();
    heap();
    functions();
    puts("end");
    return 0;
}
