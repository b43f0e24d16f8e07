// Expansion of a text without a reference and with three, in a map of the size that a build uses. Allocations
// are counted, since a text without a reference must cost none.

#include "macros/MacroSystem.h"

#include <benchmark/benchmark.h>
#include <cstdlib>
#include <new>

namespace {

size_t allocations = 0;

MacroMap buildMacros() {
    MacroMap macros = macroSystem.systemMacros();
    for (const char* name : {"ProjectDir", "ProjectName", "Configuration", "OutDir", "IntDir", "InputName",
                             "InputPath", "OBJ", "EXE", "LIB", "TarnDir", "TargetsDir", "PackagesDir",
                             "SolutionDir", "RelInputPath", "InputFileName"})
        macros[name] = QString("/home/user/demo/") + name;
    return macros;
}

void expand(benchmark::State& state, const char* text) {
    const MacroMap macros = buildMacros();
    const QString input(text);
    const size_t before = allocations;
    for (auto _ : state)
        benchmark::DoNotOptimize(MacroSystem::replaceMacros(macros, input));
    state.counters["allocations"] =
        benchmark::Counter(static_cast<double>(allocations - before), benchmark::Counter::kAvgIterations);
}

} // namespace

// Qt takes the memory of its texts from malloc; the benchmark itself allocates nothing while it is timed.
extern "C" void* __libc_malloc(size_t size);
extern "C" void* malloc(size_t size) {
    ++allocations;
    return __libc_malloc(size);
}

BENCHMARK_CAPTURE(expand, withoutReference, "src/driver/uart/interrupts_and_buffers.c");
BENCHMARK_CAPTURE(expand, oneReference, "$(ProjectDir)/main.c");
BENCHMARK_CAPTURE(expand, threeReferences, "$(IntDir)/$(InputName)$(OBJ)");
BENCHMARK_CAPTURE(expand, threeReferencesWithDefaults, "$(RootOutDir:$(OutDir))/$(ProjectName)$(EXE)");
