#include <debugio.h>
#include <stdio.h>

__attribute__((weak)) int __putchar(int c) {
    debug_putchar(c);
    return (unsigned char)c;
}

__attribute__((weak)) int __getchar(void) { return EOF; }
