#include "foundation/Pool.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <gtest/gtest.h>
#include <memory>

TEST(Pool, RoundsUpToEightAndFillsOneChunk) {
    Pool pool;
    EXPECT_EQ(pool.capacity(), 0u);
    auto* first = static_cast<char*>(pool.allocate(1));
    auto* second = static_cast<char*>(pool.allocate(9));
    EXPECT_EQ(second - first, 8);
    EXPECT_EQ(pool.used(), 24u);
    EXPECT_GE(pool.capacity(), 8192u);
    EXPECT_NE(pool.allocate(0), nullptr);
    EXPECT_EQ(pool.used(), 24u);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(first) % 8, 0u);
}

TEST(Pool, GivesALargePieceItsOwnChunk) {
    Pool pool;
    pool.allocate(8);
    pool.allocate(100'001);
    EXPECT_EQ(pool.capacity(), 100'008u);
    EXPECT_EQ(pool.used(), 100'008u);
    pool.allocate(1); // what was left of the first chunk is abandoned
    EXPECT_EQ(pool.used(), 8u);
}

TEST(Pool, ReleasedChunksReadAsFilledAndAreUsedAgain) {
    Pool first;
    auto* memory = static_cast<unsigned char*>(first.allocate(200'000));
    std::memset(memory, 1, 200'000);
    first.clear();
    EXPECT_EQ(first.capacity(), 0u);
    EXPECT_TRUE(std::all_of(memory, memory + 200'000, [](unsigned char byte) { return byte == 0xFE; }));
    Pool second;
    EXPECT_EQ(second.allocate(150'000), memory);
    EXPECT_EQ(second.capacity(), 200'000u);
}

TEST(Pool, ObjectsComeFromTheCurrentPool) {
    struct Thing : PoolObject {
        int value = 7;
    };
    Pool pool;
    Pool* former = Pool::setCurrentPool(&pool);
    {
        Pool inner;
        const CurrentPool current(&inner);
        EXPECT_EQ((new Thing)->value, 7);
        EXPECT_EQ(inner.used(), 8u);
        EXPECT_EQ(pool.used(), 0u);
    }
    new Thing;
    EXPECT_EQ(pool.used(), 8u);
    EXPECT_EQ(Pool::setCurrentPool(nullptr), &pool);
    new Thing; // makes a pool and leaves it current
    const std::unique_ptr<Pool> made(Pool::setCurrentPool(former));
    EXPECT_NE(made, nullptr);
}
