// Expressions as memory maps have them; a memory map of 20,000 elements; and the words of a link of 10,000
// objects, which place their sections by such files.

#include "build/Builder.h"
#include "build/MSP430BuildSystem.h"
#include "macros/MacroSystem.h"
#include "memorymap/MemoryMap.h"
#include "memorymap/SimpleExpressionParser.h"
#include "project/MSP430ProjectSystem.h"
#include "properties/EnvironmentSettings.h"
#include "support/MemoryFiles.h"

#include <benchmark/benchmark.h>
#include <string>

namespace {

void shortExpressions(benchmark::State& state) {
    static constexpr const char* texts[] = {"0x8000",         "+0x100", "(1<<16)-1", "2*1024",
                                            "0x10000-0x1100", "256",    "+2",        "0xFFE0+2*15"};
    constexpr int count = 1'000'000;
    for (auto _ : state) {
        uint64_t sum = 0;
        for (int i = 0; i < count; ++i) {
            bool ok = false;
            sum += simpleExpressionParser.getUInteger(texts[i % std::size(texts)], ok);
        }
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * count);
}
BENCHMARK(shortExpressions)->Unit(benchmark::kMillisecond);

/// A device with groups of registers and their fields, as written by hand: no loops, no conditionals.
std::string mapOf(int elements) {
    std::string text = "<!DOCTYPE Board_Memory_Definition_File>\n<Root name=\"MSP430F5438\">\n"
                       "  <MemorySegment name=\"RAM\" start=\"0x1C00\" size=\"16*1024\"/>\n"
                       "  <MemorySegment name=\"FLASH\" start=\"0x5C00\" size=\"0x45C00-0x5C00\"/>\n";
    for (int made = 3; made < elements;) {
        const std::string number = std::to_string(made);
        text += "  <RegisterGroup name=\"Timer_" + number + "\" start=\"0x" + std::to_string(made % 9000) +
                "\" size=\"2*16\">\n";
        ++made;
        for (int i = 0; i < 5 && made < elements; ++i) {
            text += "    <Register name=\"CTL" + std::to_string(i) + "\" start=\"+" + std::to_string(2 * i) +
                    "\" size=\"2\" access=\"ReadOnly\">\n";
            ++made;
            for (int bit = 0; bit < 4 && made < elements; ++bit, ++made)
                text += "      <BitField name=\"BIT" + std::to_string(bit) + "\" start=\"" +
                        std::to_string(bit * 4) + "\" size=\"4\"/>\n";
            text += "    </Register>\n";
        }
        text += "  </RegisterGroup>\n";
    }
    return text + "</Root>\n";
}

void memoryMap(benchmark::State& state) {
    MemoryFiles disk;
    const FilesInPlace inPlace(&disk);
    disk.write("/map.xml", mapOf(20'000));
    for (auto _ : state) {
        MemoryMap map;
        if (!map.load("/map.xml", "Target=MSP430F5438", true) || map.getSegments(true).size() != 2)
            state.SkipWithError("the map does not load");
    }
}
BENCHMARK(memoryMap)->Unit(benchmark::kMillisecond);

/// Counts the words of the last command and carries nothing out.
class WordCounter : public Builder {
public:
    qsizetype words = 0;
    void beginGroup(ProjectElement*, const QString&, int) override {}
    void endGroup(ProjectElement*) override {}
    void init() override {}
    void setDirectory(const QString&) override {}
    void setCommand(const QStringList& command) override { words = command.size(); }
    void setEnvironment(const QStringList&) override {}
    void setOutputFiles(const QStringList&) override {}
    void setTemporaryFiles(const QStringList&) override {}
    void doit() override {}
    void error(const QString&) override { words = 0; }
};

/// A project of C files with its memory map and section placement.
class LinkedProject {
public:
    explicit LinkedProject(int sources) {
        projectSystem = &system;
        environment = &settings;
        settings.createEntries();
        macroSystem.setSystemMacro("TarnDir", "/tarn");
        engine = std::make_unique<MSP430BuildSystem>();
        memory.write("/s/map.xml", mapOf(2'000));
        memory.write("/s/placement.xml",
                     "<!DOCTYPE Linker_Placement_File><Root><MemorySegment name=\"FLASH\">"
                     "<ProgramSection name=\"CODE\" load=\"Yes\"/><ProgramSection name=\"INTVEC\" "
                     "start=\"0xFF80\" size=\"128\"/></MemorySegment><MemorySegment name=\"RAM\">"
                     "<ProgramSection name=\"IDATA0\"/></MemorySegment></Root>");
        std::string text = "<!DOCTYPE OstrelTarn_Project_File>\n<solution Name=\"app\" version=\"2\">"
                           "<project Name=\"p\"><configuration Name=\"Common\" "
                           "project_type=\"Executable\" linker_memory_map_file=\"map.xml\" "
                           "linker_section_placement_file=\"placement.xml\"/>";
        for (int i = 0; i < sources; ++i)
            text += "<file file_name=\"src/module_" + std::to_string(i) + ".c\"/>";
        memory.write("/s/app.vkp", text + "</project></solution>");
        system.loadSolution("/s/app.vkp");
        for (project = system.solutionElement(); !project->is(ProjectElement::Project);)
            project = project->nextInTree(nullptr);
    }
    ~LinkedProject() {
        projectSystem = nullptr;
        environment = nullptr;
    }
    QStringList inputs() {
        QStringList list;
        engine->findOutputs(project->firstChild(), "Debug", list, false);
        return list;
    }
    /// The number of words of a link.
    qsizetype compose(const QStringList& objects) {
        WordCounter counter;
        engine->createCommandFor(project, "Debug", StandardBuildSystem::Link, "Debug/p.vkx", "/s/Debug/p.vkx",
                                 objects, &counter, true, false);
        return counter.words;
    }

private:
    MemoryFiles memory;
    FilesInPlace inPlace{&memory};
    MSP430ProjectSystem system;
    EnvironmentSettings settings;
    std::unique_ptr<MSP430BuildSystem> engine;
    ProjectElement* project = nullptr;
};

constexpr int sources = 10'000;

void linkWords(benchmark::State& state) {
    LinkedProject linked(sources);
    const QStringList inputs = linked.inputs();
    for (auto _ : state) {
        if (linked.compose(inputs) < sources + 30)
            state.SkipWithError("words are missing");
    }
}
BENCHMARK(linkWords)->Unit(benchmark::kMillisecond);

/// With the names of the objects, each out of the settings of its file.
void linkInputsAndWords(benchmark::State& state) {
    LinkedProject linked(sources);
    for (auto _ : state) {
        if (linked.compose(linked.inputs()) < sources + 30)
            state.SkipWithError("words are missing");
    }
}
BENCHMARK(linkInputsAndWords)->Unit(benchmark::kMillisecond);

} // namespace
