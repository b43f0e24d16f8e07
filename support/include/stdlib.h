#ifndef _STDLIB_H
#define _STDLIB_H

#include <stddef.h>

#define EXIT_SUCCESS 0
#define EXIT_FAILURE 1
#define RAND_MAX 32767

typedef struct {
    int quot, rem;
} div_t;
typedef struct {
    long quot, rem;
} ldiv_t;

int abs(int a);
long labs(long a);
div_t div(int dividend, int divisor);
ldiv_t ldiv(long dividend, long divisor);

int atoi(const char* text);
long atol(const char* text);
double atof(const char* text);
long strtol(const char* text, char** end, int base);
unsigned long strtoul(const char* text, char** end, int base);
double strtod(const char* text, char** end);

int rand(void);
void srand(unsigned seed);

void qsort(void* base, size_t count, size_t size, int (*compare)(const void*, const void*));
void* bsearch(const void* key, const void* base, size_t count, size_t size,
              int (*compare)(const void*, const void*));

/* The heap is as large as the setting linker_heap_size says. */
void* malloc(size_t size);
void* calloc(size_t count, size_t size);
void* realloc(void* old, size_t size);
void free(void* block);

/* Both stop the program: there is nobody to return to. */
void exit(int status) __attribute__((noreturn));
void abort(void) __attribute__((noreturn));

#endif
