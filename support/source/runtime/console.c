#include <stdio.h>

int putchar(int c) { return __putchar(c); }
int getchar(void) { return __getchar(); }

int puts(const char* text) {
    while (*text)
        putchar(*text++);
    return putchar('\n');
}
