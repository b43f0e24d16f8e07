#include "foundation/Pool.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>
#include <utility>

namespace {
constexpr size_t chunkSize = 8192;
constexpr int releasedByte = 0xFE;
} // namespace

Pool* Pool::currentPool = nullptr;
Pool::Chunk* Pool::releasedChunks = nullptr;

void* Pool::allocateFromNewChunk(size_t rounded) {
    const size_t wanted = std::max(chunkSize, rounded);
    Chunk* chunk = takeReleased(wanted);
    if (!chunk) {
        chunk = static_cast<Chunk*>(std::malloc(sizeof(Chunk) + wanted));
        if (!chunk)
            throw std::bad_alloc();
        chunk->size = wanted;
    }
    chunk->next = m_chunks;
    m_chunks = chunk;
    m_capacity = chunk->size;
    m_used = rounded;
    return chunk->memory();
}

Pool::Chunk* Pool::takeReleased(size_t capacity) {
    for (Chunk** link = &releasedChunks; *link; link = &(*link)->next) {
        if ((*link)->size >= capacity)
            return std::exchange(*link, (*link)->next);
    }
    return nullptr;
}

void Pool::clear() {
    size_t given = m_used; // of the first chunk; those behind it were given out to their end, or nearly
    while (m_chunks) {
        Chunk* chunk = std::exchange(m_chunks, m_chunks->next);
        std::memset(chunk->memory(), releasedByte, given);
        chunk->next = std::exchange(releasedChunks, chunk);
        given = m_chunks ? m_chunks->size : 0;
    }
    m_used = 0;
    m_capacity = 0;
}

Pool* Pool::setCurrentPool(Pool* pool) { return std::exchange(currentPool, pool); }

void* PoolObject::operator new(size_t size) {
    if (!Pool::currentPool)
        Pool::currentPool = new Pool;
    return Pool::currentPool->allocate(size);
}
