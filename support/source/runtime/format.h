/* What printf and scanf are made of. Each library of a variant has one of the two functions. */
#ifndef RUNTIME_FORMAT_H
#define RUNTIME_FORMAT_H

#include <stdarg.h>

typedef struct Output {
    void (*put)(struct Output*, char);
    char *next, *end; /* for strings */
} Output;

/* How many characters were put. */
int __vfprintf(Output* out, const char* format, va_list arguments);

typedef struct Input {
    int (*get)(struct Input*); /* the next character, or below 0 */
    const char* next;          /* for strings */
    int held;                  /* one that was looked at and is not taken yet, else -2 */
} Input;

/* How many values were stored; -1 if the text ends before the first. */
int __vfscanf(Input* in, const char* format, va_list arguments);

#endif
