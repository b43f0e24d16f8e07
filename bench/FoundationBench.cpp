// Interned strings against a set of strings, pools against malloc. Each pair does the same work.

#include "foundation/HString.h"
#include "foundation/Pool.h"

#include <benchmark/benchmark.h>
#include <cstdlib>
#include <string>
#include <unordered_set>
#include <vector>

namespace {

/// Names as object files hold them: symbols, sections, sources, each met ten times.
std::vector<std::string> names(size_t count) {
    std::vector<std::string> result;
    for (size_t i = 0; i < count; ++i)
        result.push_back((i % 3 == 0   ? "_handler_"
                          : i % 3 == 1 ? "src/driver/module_"
                                       : "L") +
                         std::to_string(i * 7));
    std::vector<std::string> repeated;
    for (int round = 0; round < 10; ++round)
        repeated.insert(repeated.end(), result.begin(), result.end());
    return repeated;
}

void internStrings(benchmark::State& state) {
    const auto texts = names(static_cast<size_t>(state.range(0)));
    for (auto _ : state)
        for (const std::string& text : texts)
            benchmark::DoNotOptimize(
                HString::intern(text.data(), static_cast<int>(text.size()), HString::AsIs));
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(texts.size()));
}

void setOfStrings(benchmark::State& state) {
    const auto texts = names(static_cast<size_t>(state.range(0)));
    std::unordered_set<std::string> set;
    for (auto _ : state)
        for (const std::string& text : texts)
            benchmark::DoNotOptimize(&*set.insert(std::string(text.data(), text.size())).first);
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(texts.size()));
}

constexpr size_t sizes[] = {24, 40, 56, 16, 96, 32, 48, 8};
constexpr int objects = 100'000;

void poolAllocations(benchmark::State& state) {
    for (auto _ : state) {
        Pool pool;
        for (int i = 0; i < objects; ++i)
            benchmark::DoNotOptimize(pool.allocate(sizes[i % 8]));
    }
    state.SetItemsProcessed(state.iterations() * objects);
}

void mallocAllocations(benchmark::State& state) {
    std::vector<void*> pieces(objects);
    for (auto _ : state) {
        for (int i = 0; i < objects; ++i)
            benchmark::DoNotOptimize(pieces[static_cast<size_t>(i)] = std::malloc(sizes[i % 8]));
        for (void* piece : pieces)
            std::free(piece);
    }
    state.SetItemsProcessed(state.iterations() * objects);
}

} // namespace

BENCHMARK(internStrings)->Arg(1000)->Arg(10'000)->Arg(100'000);
BENCHMARK(setOfStrings)->Arg(1000)->Arg(10'000)->Arg(100'000);
BENCHMARK(poolAllocations);
BENCHMARK(mallocAllocations);
