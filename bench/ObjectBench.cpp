// Object files: the quick read of a build beside opening, reading and closing alone; the full read, and
// writing back.
//
// The files of the first lie in a temporary directory, and each round passes over all of them, so that the
// two halves meet the same warm files. The counter "ratio" of the quick read is what it takes beside the
// other.

#include "foundation/HByteStream.h"
#include "object/ModuleGenerator.h"
#include "object/ObjectBytes.h"
#include "object/ObjectFile.h"
#include "support/TemporaryDirectory.h"

#include <benchmark/benchmark.h>
#include <chrono>
#include <fcntl.h>
#include <fstream>
#include <unistd.h>

namespace {

constexpr int fileCount = 10'000;

/// An object with code of about `size` bytes and a list of twenty sources.
std::string objectOf(size_t size) {
    std::string file;
    for (int records = static_cast<int>(size / 16); file.size() < size; records += records / 8 + 1) {
        Pool pool;
        const CurrentPool current(&pool);
        SOBFModule* module = ModuleGenerator(7).make(records);
        std::string sources = "main.c";
        for (int i = 1; i < 20; ++i)
            sources += ";/home/user/projects/thermostat/include/device/header" + std::to_string(i) + ".h";
        module->attributes.set(name("dependencies"), name(sources));
        SOBFWriter writer;
        module->externalize(writer);
        file = writer.finish().view();
        SOBFReader::release(module);
    }
    return file;
}

/// An assembler's output: instructions, data and lines in one section, `size` bytes of it.
std::string plainObjectOf(size_t size) {
    Pool pool;
    const CurrentPool current(&pool);
    auto* module = new SOBFModule;
    const CurrentPool ofModule(module->pool);
    auto* section = new SOBFSection(name("CODE"));
    module->sections.push_back(section);
    module->sectionsByName.set(section->name, section);
    std::string sources = "main.c";
    for (int i = 1; i < 20; ++i)
        sources += ";/home/user/projects/thermostat/include/device/header" + std::to_string(i) + ".h";
    module->attributes.set(name("dependencies"), name(sources));
    auto* file = new SOBFFilename(name("main.c"));
    constexpr size_t bytesOfARound = 90;
    int pc = 0;
    auto place = [&](SOBFInsn* insn) {
        insn->setPC(pc);
        insn->encode();
        section->addInsn(insn);
        pc = (pc + insn->length()) & 0xFFFFF;
    };
    for (size_t round = 0; round < size / bytesOfARound; ++round) {
        auto* marker = new SOBFMarker;
        marker->name = HString::intern("L" + std::to_string(round % 1000), HString::AsIs);
        place(new SOBFLocus(TAG_LOCUS, static_cast<int>(round % 5000), file));
        place(marker);
        place(new SOBFMSP430Insn(0x4035, new SOBFConstExpr(0x1234), nullptr, false));
        place(new SOBFMSP430Insn(0x5405, nullptr, nullptr, false));
        place(new SOBFMSP430Insn(0x2000, new SOBFMarkerExpr(marker), nullptr, false));
        place(new SOBFDefBytesInsn(
            SOBFBinaryExpr::make(TAG_ADD, new SOBFMarkerExpr(marker), new SOBFConstExpr(2)), 2));
    }
    SOBFWriter writer;
    module->externalize(writer);
    std::string written(writer.finish().view());
    SOBFReader::release(module);
    return written;
}

class Objects {
public:
    explicit Objects(bool code) {
        const std::string file = code ? plainObjectOf(10'000) : objectOf(10'000);
        for (int i = 0; i < fileCount; ++i) {
            m_paths.append(m_directory.path() + "/a" + QString::number(i) + ".vko");
            std::ofstream(toBytes(m_paths.last()).toStdString(), std::ios::binary) << file;
        }
    }
    const QStringList& paths() const { return m_paths; }

private:
    TemporaryDirectory m_directory;
    QStringList m_paths;
};

double seconds(const QStringList& paths, void (*what)(const QString&)) {
    const auto start = std::chrono::steady_clock::now();
    for (const QString& path : paths)
        what(path);
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

void readAlone(const QString& path) {
    static char buffer[65536];
    const int file = ::open(toBytes(path).constData(), O_RDONLY | O_CLOEXEC);
    benchmark::DoNotOptimize(::read(file, buffer, sizeof buffer));
    ::close(file);
}

void readQuickly(const QString& path) { benchmark::DoNotOptimize(objectFileDependencies(path).isEmpty()); }

/// Both halves in turn, round by round, so that what disturbs the machine disturbs both.
/// The argument is 1 for objects that are mostly code, as a compiler makes them without data for a debugger,
/// and 0 for those that are mostly symbols and types, all of which stand in front of where a quick read ends.
void quickRead(benchmark::State& state) {
    const Objects objects(state.range(0) == 1);
    seconds(objects.paths(), readAlone);
    double alone = 0;
    double quick = 0;
    for (auto _ : state) {
        alone += seconds(objects.paths(), readAlone);
        quick += seconds(objects.paths(), readQuickly);
    }
    const auto rounds = static_cast<double>(state.iterations());
    state.counters["alone_ms"] = alone * 1000 / rounds;
    state.counters["quick_ms"] = quick * 1000 / rounds;
    state.counters["ratio"] = quick / alone;
}
BENCHMARK(quickRead)->Unit(benchmark::kMillisecond)->Iterations(10)->Arg(1)->Arg(0);

void fullRead(benchmark::State& state) {
    const std::string file = plainObjectOf(static_cast<size_t>(state.range(0)) * 1'000'000);
    for (auto _ : state)
        benchmark::DoNotOptimize(ReadObject(file).module());
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(file.size()));
}
BENCHMARK(fullRead)->Unit(benchmark::kMillisecond)->Arg(5)->Arg(50);

void readAndWriteBack(benchmark::State& state) {
    const std::string file = plainObjectOf(static_cast<size_t>(state.range(0)) * 1'000'000);
    for (auto _ : state)
        benchmark::DoNotOptimize(ReadObject(file).written().size());
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(file.size()));
}
BENCHMARK(readAndWriteBack)->Unit(benchmark::kMillisecond)->Arg(5)->Arg(50);

} // namespace
