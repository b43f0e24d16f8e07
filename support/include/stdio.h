/* Console and strings; there are no files. */
#ifndef _STDIO_H
#define _STDIO_H

#include <stdarg.h>
#include <stddef.h>

#define EOF (-1)

int putchar(int c);
int puts(const char* text);
int getchar(void);

int printf(const char* format, ...) __attribute__((format(printf, 1, 2)));
int sprintf(char* to, const char* format, ...) __attribute__((format(printf, 2, 3)));
int snprintf(char* to, size_t size, const char* format, ...) __attribute__((format(printf, 3, 4)));
int vprintf(const char* format, va_list arguments);
int vsprintf(char* to, const char* format, va_list arguments);
int vsnprintf(char* to, size_t size, const char* format, va_list arguments);

int scanf(const char* format, ...) __attribute__((format(scanf, 1, 2)));
int sscanf(const char* text, const char* format, ...) __attribute__((format(scanf, 2, 3)));
int vscanf(const char* format, va_list arguments);
int vsscanf(const char* text, const char* format, va_list arguments);

/*
 * Where characters go and come from. The library has __putchar write to address 00FF, where the simulator
 * listens, and
 * __getchar say that there is nothing. A program that has a device for it defines its own.
 */
int __putchar(int c);
int __getchar(void);

#endif
