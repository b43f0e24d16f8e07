#include <string.h>

void* memcpy(void* to, const void* from, size_t size) {
    char* d = to;
    const char* s = from;
    while (size--)
        *d++ = *s++;
    return to;
}

void* memmove(void* to, const void* from, size_t size) {
    char* d = to;
    const char* s = from;
    if (d <= s || d >= s + size) {
        while (size--)
            *d++ = *s++;
    } else {
        while (size--)
            d[size] = s[size];
    }
    return to;
}

void* memset(void* to, int value, size_t size) {
    char* d = to;
    while (size--)
        *d++ = (char)value;
    return to;
}

int memcmp(const void* a, const void* b, size_t size) {
    const unsigned char *x = a, *y = b;
    for (; size; --size, ++x, ++y)
        if (*x != *y)
            return *x - *y;
    return 0;
}

void* memchr(const void* in, int value, size_t size) {
    const unsigned char* s = in;
    for (; size; --size, ++s)
        if (*s == (unsigned char)value)
            return (void*)s;
    return NULL;
}

size_t strlen(const char* text) {
    const char* s = text;
    while (*s)
        ++s;
    return (size_t)(s - text);
}

char* strcpy(char* to, const char* from) {
    char* d = to;
    while ((*d++ = *from++))
        ;
    return to;
}

char* strncpy(char* to, const char* from, size_t size) {
    char* d = to;
    for (; size && *from; --size)
        *d++ = *from++;
    while (size--)
        *d++ = 0;
    return to;
}

char* strcat(char* to, const char* from) {
    strcpy(to + strlen(to), from);
    return to;
}

char* strncat(char* to, const char* from, size_t size) {
    char* d = to + strlen(to);
    while (size-- && *from)
        *d++ = *from++;
    *d = 0;
    return to;
}

int strcmp(const char* a, const char* b) {
    while (*a && *a == *b)
        ++a, ++b;
    return (unsigned char)*a - (unsigned char)*b;
}

int strncmp(const char* a, const char* b, size_t size) {
    for (; size; --size, ++a, ++b) {
        if (*a != *b)
            return (unsigned char)*a - (unsigned char)*b;
        if (!*a)
            break;
    }
    return 0;
}

char* strchr(const char* text, int c) {
    for (;; ++text) {
        if (*text == (char)c)
            return (char*)text;
        if (!*text)
            return NULL;
    }
}

char* strrchr(const char* text, int c) {
    const char* found = NULL;
    for (;; ++text) {
        if (*text == (char)c)
            found = text;
        if (!*text)
            return (char*)found;
    }
}

char* strstr(const char* text, const char* part) {
    const size_t size = strlen(part);
    for (;; ++text) {
        if (strncmp(text, part, size) == 0)
            return (char*)text;
        if (!*text)
            return NULL;
    }
}

size_t strspn(const char* text, const char* set) {
    const char* s = text;
    while (*s && strchr(set, *s))
        ++s;
    return (size_t)(s - text);
}

size_t strcspn(const char* text, const char* set) {
    const char* s = text;
    while (*s && !strchr(set, *s))
        ++s;
    return (size_t)(s - text);
}

char* strpbrk(const char* text, const char* set) {
    text += strcspn(text, set);
    return *text ? (char*)text : NULL;
}

char* strtok(char* text, const char* separators) {
    static char* rest;
    char* token;
    if (!text)
        text = rest;
    if (!text)
        return NULL;
    token = text + strspn(text, separators);
    if (!*token) {
        rest = NULL;
        return NULL;
    }
    rest = token + strcspn(token, separators);
    if (*rest)
        *rest++ = 0;
    else
        rest = NULL;
    return token;
}
