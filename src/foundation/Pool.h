#pragma once

#include <cstddef>

/// Memory given out in small pieces and taken back all at once. No destructor runs for what lies in a pool.
/// Chunks that a pool gives up go to the next pool that needs one, never back to the heap. Not for several
/// threads.
class Pool {
public:
    Pool() = default;
    ~Pool() { clear(); }
    Pool(const Pool&) = delete;
    Pool& operator=(const Pool&) = delete;

    /// Memory for `size` bytes, aligned to 8, valid until `clear`. Never null.
    void* allocate(size_t size) {
        const size_t rounded = (size + 7) & ~size_t{7};
        if (m_chunks && rounded <= m_capacity - m_used) {
            char* memory = m_chunks->memory() + m_used;
            m_used += rounded;
            return memory;
        }
        return allocateFromNewChunk(rounded);
    }

    /// Gives up all memory. Every byte that was given out reads as 0xFE until the chunk is used again.
    void clear();

    /// Bytes given out of the chunk that is being filled.
    size_t used() const { return m_used; }
    /// Bytes in the chunk that is being filled; 0 in a new pool.
    size_t capacity() const { return m_capacity; }

    /// Makes `pool`, which may be null, the current one. Returns the former, for the caller to restore.
    static Pool* setCurrentPool(Pool* pool);
    /// The pool that PoolObject::operator new draws on, or null.
    static Pool* currentPool;

private:
    struct Chunk {
        Chunk* next;
        size_t size;
        char* memory() { return reinterpret_cast<char*>(this + 1); }
    };
    static_assert(sizeof(Chunk) % 8 == 0);

    void* allocateFromNewChunk(size_t rounded);
    static Chunk* takeReleased(size_t capacity);

    Chunk* m_chunks = nullptr; ///< the head is the one being filled
    size_t m_used = 0;
    size_t m_capacity = 0;

    static Chunk* releasedChunks;
};

/// Makes a pool the current one for the length of a scope.
class CurrentPool {
public:
    explicit CurrentPool(Pool* pool) : m_former(Pool::setCurrentPool(pool)) {}
    ~CurrentPool() { Pool::setCurrentPool(m_former); }
    CurrentPool(const CurrentPool&) = delete;
    CurrentPool& operator=(const CurrentPool&) = delete;

private:
    Pool* m_former;
};

/// Base of everything that lives in a pool: `new` takes its memory from the current pool, and nothing is
/// deleted.
class PoolObject {
public:
    /// Memory from the current pool. If there is none, a new pool is made and stays current.
    static void* operator new(size_t size);
    static void* operator new(size_t, void* place) { return place; }
    /// The memory goes with its pool.
    static void operator delete(void*) {}
    static void operator delete(void*, void*) {}
};
