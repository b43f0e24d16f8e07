#include <stdarg.h>
#include <stdint.h>

#define CONSOLE (*(volatile unsigned char *)0xFF)

struct point {
    int x;
    char tag;
    unsigned small : 3, large : 13;
};

static int numbers[] = {42, -7, 1000, 0, -32768, 32767, 5, 5};
static const char *const names[] = {"zero", "one", "two"};
struct point points[2] = {{1, 'a', 5, 4000}, {2, 'b', 7, 8191}};
volatile unsigned ticks;
int (*hook)(int);

static void text(const char *s) {
    while (*s)
        CONSOLE = (unsigned char)*s++;
}

static void number(unsigned long value) {
    char digits[10];
    int count = 0;
    do
        digits[count++] = (char)('0' + value % 10);
    while (value /= 10);
    while (count)
        CONSOLE = (unsigned char)digits[--count];
}

static void line(const char *name, long value) {
    text(name);
    text(value < 0 ? " -" : " ");
    number(value < 0 ? -(unsigned long)value : (unsigned long)value);
    text("\n");
}

static int fibonacci(int n) { return n < 2 ? n : fibonacci(n - 1) + fibonacci(n - 2); }

static void sort(int *items, int count) {
    for (int i = 1; i < count; ++i)
        for (int j = i; j > 0 && items[j - 1] > items[j]; --j) {
            int other = items[j];
            items[j] = items[j - 1];
            items[j - 1] = other;
        }
}

static uint16_t crc(const char *bytes) {
    uint16_t value = 0xFFFF;
    while (*bytes) {
        value ^= (uint16_t)(*bytes++ << 8);
        for (int bit = 0; bit < 8; ++bit)
            value = (uint16_t)(value & 0x8000 ? value << 1 ^ 0x1021 : value << 1);
    }
    return value;
}

static int choose(int n) {
    switch (n) {
    case 0: return 11;
    case 1: return 7;
    case 2: return 305;
    case 3: return -4;
    case 4: return 99;
    case 5: return 1;
    default: return n;
    }
}

static long total(int count, ...) {
    va_list list;
    va_start(list, count);
    long sum = 0;
    while (count--)
        sum += va_arg(list, long);
    va_end(list);
    return sum;
}

static int twice(int x) { return 2 * x; }

int main(void) {
    sort(numbers, 8);
    line("least", numbers[0]);
    line("sixth", numbers[5]);
    line("fibonacci", fibonacci(15));
    line("crc", crc("123456789"));
    long product = 1;
    for (int i = 1; i <= 12; ++i)
        product *= i;
    line("factorial", product);
    line("quotient", -1000000L / 7);
    line("rest", -1000000L % 7);
    line("shift", (0x12345678L >> 9) ^ (long)(int16_t)0x8001 * 8);
    int sum = 0;
    for (int i = -1; i < 8; ++i)
        sum += choose(i);
    line("choices", sum);
    line("varied", total(3, 100000L, -1L, 70000L));
    hook = twice;
    line("hook", hook(points[1].large));
    points[0].small += points[1].small;
    line("bits", points[0].small);
    line("zeroed", ticks);
    text(names[points[0].x]);
    text("\n");
    return 0;
}
