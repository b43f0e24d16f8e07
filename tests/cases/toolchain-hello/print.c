#include "print.h"

#define CONSOLE (*(volatile unsigned char *)0xFF)

static const unsigned powers[] = {10000, 1000, 100, 10, 1};

void print(const char *text) {
    while (*text)
        CONSOLE = *text++;
}

void printNumber(unsigned number) {
    for (int place = 0; place < 5; ++place) {
        char digit = '0';
        for (; number >= powers[place]; number -= powers[place])
            ++digit;
        CONSOLE = digit;
    }
}
