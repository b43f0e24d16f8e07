// The time around a tool that does nothing, in a small process and in one with 500 MB in use, beside the
// plainest ways to start one: posix_spawn, and fork with exec. What else our way does: two pipes, the
// signals, the lines.

#include "driver/Spawn.h"
#include "driver/ToolOutput.h"

#include <benchmark/benchmark.h>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr size_t megabyte = 1'000'000;

/// Memory in use, every page of it, for as long as a benchmark runs.
class Resident {
public:
    explicit Resident(int64_t megabytes) : m_size(static_cast<size_t>(megabytes) * megabyte) {
        m_bytes.reset(static_cast<char*>(std::malloc(m_size + 1)));
        std::memset(m_bytes.get(), 1, m_size + 1);
        benchmark::DoNotOptimize(m_bytes.get());
    }

private:
    struct Free {
        void operator()(char* bytes) const { std::free(bytes); }
    };
    size_t m_size;
    std::unique_ptr<char, Free> m_bytes;
};

char program[] = "/bin/true";
char* const words[] = {program, nullptr};

void waitFor(benchmark::State& state, pid_t child) {
    int status = -1;
    if (::waitpid(child, &status, 0) != child || status != 0)
        state.SkipWithError("the program failed");
}

void spawnProcess(benchmark::State& state) {
    const Resident resident(state.range(0));
    QStringList out;
    QStringList err;
    for (auto _ : state)
        if (QTx::spawnProcess({"/bin/true"}, true, QString("/"), false, &out, &err, true) != 0)
            state.SkipWithError("the program failed");
}

void posixSpawn(benchmark::State& state) {
    const Resident resident(state.range(0));
    for (auto _ : state) {
        pid_t child = 0;
        if (::posix_spawn(&child, program, nullptr, nullptr, words, environ) != 0)
            state.SkipWithError("the program can't be started");
        waitFor(state, child);
    }
}

void forkAndExec(benchmark::State& state) {
    const Resident resident(state.range(0));
    for (auto _ : state) {
        const pid_t child = ::fork();
        if (child == 0) {
            ::execv(program, words);
            ::_exit(1);
        }
        waitFor(state, child);
    }
}

void lines(benchmark::State& state) {
    std::string text;
    while (text.size() < 10 * megabyte)
        text += "source/module.c:120: warning: a line such as a compiler writes\n";
    for (auto _ : state)
        benchmark::DoNotOptimize(linesOf(text));
    state.SetBytesProcessed(static_cast<int64_t>(text.size()) * state.iterations());
}

} // namespace

BENCHMARK(posixSpawn)->Arg(0)->Arg(500)->UseRealTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(spawnProcess)->Arg(0)->Arg(500)->UseRealTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(forkAndExec)->Arg(0)->Arg(500)->UseRealTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(lines)->Unit(benchmark::kMillisecond);
