#include <debugio.h>

void debug_putchar(int c) { *(volatile unsigned char*)0x00FF = (unsigned char)c; }

void debug_puts(const char* text) {
    while (*text)
        debug_putchar(*text++);
    debug_putchar('\n');
}
