#pragma once

#include "foundation/HString.h"
#include "foundation/Pool.h"

#include <list>
#include <utility>
#include <vector>

/// Lets the standard containers live in a pool: an object of a pool is never destroyed, so whatever its lists
/// hold must go with the pool too. Remembers the pool that was current when the container was made.
template<class T>
class PoolAllocator {
public:
    using value_type = T;

    PoolAllocator() : m_pool(Pool::currentPool) {}
    explicit PoolAllocator(Pool* pool) : m_pool(pool) {}
    template<class U>
    PoolAllocator(const PoolAllocator<U>& other) : m_pool(other.pool()) {}

    T* allocate(size_t count) {
        const size_t bytes = count * sizeof(T);
        return static_cast<T*>(m_pool ? m_pool->allocate(bytes) : PoolObject::operator new(bytes));
    }
    void deallocate(T*, size_t) {}
    Pool* pool() const { return m_pool; }

    template<class U>
    bool operator==(const PoolAllocator<U>& other) const {
        return m_pool == other.pool();
    }

private:
    Pool* m_pool;
};

template<class T>
using PoolVector = std::vector<T, PoolAllocator<T>>;
template<class T>
using PoolList = std::list<T, PoolAllocator<T>>;

/// A map from names in the order of their first entry. That order is the one in which a file states the
/// names, so what is written from the map and read again comes in the same order. Equal texts have equal
/// pointers, so the pointer is the key; but nothing is ever ordered by it, for it differs from run to run.
template<class Value>
class SOBFNameMap {
public:
    using Entry = std::pair<HString*, Value>;

    SOBFNameMap() = default;
    explicit SOBFNameMap(Pool* pool)
        : m_entries(PoolAllocator<Entry>(pool)), m_slots(PoolAllocator<uint32_t>(pool)) {}

    /// Enters `value` under `name`; if there is an entry of that name, `value` takes it.
    void set(HString* name, Value value) {
        if (Entry* entry = find(name)) {
            entry->second = value;
            return;
        }
        m_entries.emplace_back(name, value);
        if (m_entries.size() > mostWithoutIndex)
            index();
    }
    /// The value under `name`, or a default one.
    Value value(HString* name) const {
        const Entry* entry = const_cast<SOBFNameMap*>(this)->find(name);
        return entry ? entry->second : Value{};
    }
    bool contains(HString* name) const { return const_cast<SOBFNameMap*>(this)->find(name); }

    size_t size() const { return m_entries.size(); }
    bool empty() const { return m_entries.empty(); }
    auto begin() const { return m_entries.begin(); }
    auto end() const { return m_entries.end(); }

private:
    /// A handful of names is searched faster without an index than with one, and most maps hold no more.
    static constexpr size_t mostWithoutIndex = 8;

    Entry* find(HString* name) {
        if (m_slots.empty()) {
            for (Entry& entry : m_entries)
                if (entry.first == name)
                    return &entry;
            return nullptr;
        }
        for (size_t slot = slotOf(name); m_slots[slot]; slot = (slot + 1) & (m_slots.size() - 1))
            if (m_entries[m_slots[slot] - 1].first == name)
                return &m_entries[m_slots[slot] - 1];
        return nullptr;
    }
    size_t slotOf(HString* name) const { return (name ? name->hash() : 0) & (m_slots.size() - 1); }
    void insert(size_t position) {
        size_t slot = slotOf(m_entries[position].first);
        while (m_slots[slot])
            slot = (slot + 1) & (m_slots.size() - 1);
        m_slots[slot] = static_cast<uint32_t>(position + 1);
    }
    /// Open addressing; a slot holds the number of its entry and 0 if it is free. At most half the slots are
    /// taken.
    void index() {
        if (m_entries.size() * 2 <= m_slots.size())
            return insert(m_entries.size() - 1);
        m_slots.assign(m_slots.empty() ? mostWithoutIndex * 4 : m_slots.size() * 2, 0);
        for (size_t position = 0; position < m_entries.size(); ++position)
            insert(position);
    }

    PoolVector<Entry> m_entries;
    PoolVector<uint32_t> m_slots;
};
