#include "format.h"
#include <stdio.h>

static void putConsole(Output* out, char c) {
    (void)out;
    putchar(c);
}

static void putText(Output* out, char c) {
    if (out->next < out->end)
        *out->next++ = c;
}

int vprintf(const char* format, va_list arguments) {
    Output out;
    out.put = putConsole;
    return __vfprintf(&out, format, arguments);
}

int vsnprintf(char* to, size_t size, const char* format, va_list arguments) {
    Output out;
    int count;
    out.put = putText;
    out.next = to;
    out.end = size ? to + size - 1 : to;
    count = __vfprintf(&out, format, arguments);
    if (size)
        *out.next = 0;
    return count;
}

/* As long as memory goes. */
int vsprintf(char* to, const char* format, va_list arguments) {
    return vsnprintf(to, 0xFFFF - (size_t)to, format, arguments);
}

int printf(const char* format, ...) {
    va_list arguments;
    int count;
    va_start(arguments, format);
    count = vprintf(format, arguments);
    va_end(arguments);
    return count;
}

int snprintf(char* to, size_t size, const char* format, ...) {
    va_list arguments;
    int count;
    va_start(arguments, format);
    count = vsnprintf(to, size, format, arguments);
    va_end(arguments);
    return count;
}

int sprintf(char* to, const char* format, ...) {
    va_list arguments;
    int count;
    va_start(arguments, format);
    count = vsprintf(to, format, arguments);
    va_end(arguments);
    return count;
}
