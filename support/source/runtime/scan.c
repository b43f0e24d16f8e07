#include "format.h"
#include <stdio.h>

static int getConsole(Input* in) {
    (void)in;
    return getchar();
}

static int getText(Input* in) { return *in->next ? (unsigned char)*in->next++ : -1; }

int vscanf(const char* format, va_list arguments) {
    /* What a call has looked at without taking it is there for the next. */
    static Input in = {getConsole, 0, -2};
    return __vfscanf(&in, format, arguments);
}

int vsscanf(const char* text, const char* format, va_list arguments) {
    Input in;
    in.get = getText;
    in.next = text;
    in.held = -2;
    return __vfscanf(&in, format, arguments);
}

int scanf(const char* format, ...) {
    va_list arguments;
    int count;
    va_start(arguments, format);
    count = vscanf(format, arguments);
    va_end(arguments);
    return count;
}

int sscanf(const char* text, const char* format, ...) {
    va_list arguments;
    int count;
    va_start(arguments, format);
    count = vsscanf(text, format, arguments);
    va_end(arguments);
    return count;
}
