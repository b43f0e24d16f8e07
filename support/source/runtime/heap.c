/* A list of all blocks of the heap, free or not, in the order of their addresses. */
#include "locks.h"
#include <stdlib.h>
#include <string.h>

typedef struct {
    size_t size; /* of what stands behind the header, even; the lowest bit is set in one that is taken */
} Header;

extern char __HEAP_start__[], __HEAP_end__[];
#define TAKEN ((size_t)1)
#define FIRST ((Header*)(((size_t)__HEAP_start__ + 1) & ~TAKEN))
#define END ((char*)((size_t)__HEAP_end__ & ~TAKEN))
#define LAST_SIZE ((size_t)0xFFFC)

static char isMade;

static Header* behind(Header* block) { return (Header*)((char*)(block + 1) + (block->size & ~TAKEN)); }

static void joinFree(Header* block) {
    while ((char*)behind(block) < END && !(behind(block)->size & TAKEN))
        block->size += sizeof(Header) + behind(block)->size;
}

static void split(Header* block, size_t size) {
    if (block->size >= size + sizeof(Header) + 2) {
        const size_t rest = block->size - size - sizeof(Header);
        block->size = size;
        behind(block)->size = rest;
    }
}

static void* take(size_t size) {
    Header* block;
    if (size == 0 || size > LAST_SIZE || (size_t)(END - (char*)FIRST) > LAST_SIZE || (char*)FIRST >= END)
        return NULL;
    size = (size + 1) & ~TAKEN;
    if (!isMade) {
        FIRST->size = (size_t)(END - (char*)FIRST) - sizeof(Header);
        isMade = 1;
    }
    for (block = FIRST; (char*)block < END; block = behind(block)) {
        if (block->size & TAKEN)
            continue;
        joinFree(block);
        if (block->size >= size) {
            split(block, size);
            block->size |= TAKEN;
            return block + 1;
        }
    }
    return NULL;
}

void* malloc(size_t size) {
    void* block;
    __heap_lock();
    block = take(size);
    __heap_unlock();
    return block;
}

void* calloc(size_t count, size_t size) {
    const unsigned long bytes = (unsigned long)count * size;
    void* block = bytes > LAST_SIZE ? NULL : malloc((size_t)bytes);
    return block ? memset(block, 0, (size_t)bytes) : NULL;
}

void free(void* block) {
    if (!block)
        return;
    __heap_lock();
    ((Header*)block - 1)->size &= ~TAKEN;
    __heap_unlock();
}

void* realloc(void* old, size_t size) {
    size_t oldSize;
    void* block;
    if (!old)
        return malloc(size);
    oldSize = ((Header*)old - 1)->size & ~TAKEN;
    if (size && size <= oldSize)
        return old;
    block = malloc(size);
    if (block)
        memcpy(block, old, oldSize);
    if (block || !size)
        free(old);
    return block;
}
