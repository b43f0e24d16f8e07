// A solution of 1,000 projects and 100,000 files, about 25 MB with settings at all levels: what loading it
// costs, beside pugixml that merely parses the same bytes, and what the search for settings costs on it.

#include "project/MSP430ProjectSystem.h"
#include "support/MemoryFiles.h"

#include <benchmark/benchmark.h>
#include <fstream>
#include <malloc.h>
#include <pugixml.hpp>
#include <string>

namespace {

std::string settings(int number, const char* level) {
    return "c_preprocessor_definitions=\"LEVEL_" + std::string(level) + "=" + std::to_string(number) +
           ";USE_LCD\" c_user_include_directories=\"$(ProjectDir)/include;../module_" +
           std::to_string(number) +
           "\" build_treat_warnings_as_errors=\"Yes\" compile_pre_build_command=\"\"";
}

std::string configuration(const char* name, const std::string& attributes) {
    return "<configuration Name=\"" + std::string(name) + "\" " + attributes + "/>\n";
}

/// As bench/makeSolution.py writes it.
std::string makeSolution(int projects, int files) {
    std::string text = "<!DOCTYPE OstrelTarn_Project_File>\n<solution Name=\"bench\" version=\"2\">\n" +
                       configuration("Debug", "inherited_configurations=\"Flash;Traced;Checked;Small\"");
    for (const char* name : {"Common", "Flash", "Traced", "Checked", "Small"})
        text += configuration(name, settings(0, "SOLUTION"));
    for (int p = 0; p < projects; ++p) {
        const std::string number = std::to_string(p);
        text += "<project Name=\"project_" + number + "\">\n" +
                configuration("Common", "project_type=\"Executable\" project_directory=\"projects/project_" +
                                            number + "\" " + settings(p, "PROJECT")) +
                configuration("Debug", settings(p, "DEBUG")) + "<folder Name=\"Source Files\">\n" +
                configuration("Common", "filter=\"c;s43\"");
        for (int f = 0; f < files; ++f) {
            text += "<file file_name=\"source/part_" + std::to_string(f % 7) + "/module_" + number + "_" +
                    std::to_string(f) + ".c\">\n  " + configuration("Common", settings(f, "FILE")) +
                    "</file>\n";
        }
        text += "</folder>\n</project>\n";
    }
    return text + "</solution>\n";
}

/// A number of kB out of /proc/self/status.
double processMegabytes(const std::string& field) {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with(field + ":"))
            return std::stod(line.substr(field.size() + 1)) / 1024;
    }
    return 0;
}

void forgetPeak() {
    malloc_trim(0);
    std::ofstream("/proc/self/clear_refs") << 5;
}

void Load(benchmark::State& state) {
    MemoryFiles memory;
    const FilesInPlace inPlace(&memory);
    const std::string text = makeSolution(static_cast<int>(state.range(0)), 100);
    memory.write("/s/bench.vkp", text);
    forgetPeak();
    const double before = processMegabytes("VmRSS");
    double peak = 0;
    for (auto _ : state) {
        MSP430ProjectSystem system;
        system.loadSolution("/s/bench.vkp");
        benchmark::DoNotOptimize(system.solutionElement());
        state.PauseTiming();
        peak = std::max(peak, processMegabytes("VmHWM") - before);
        state.ResumeTiming();
    }
    state.counters["file_MB"] = static_cast<double>(text.size()) / 1e6;
    state.counters["peak_MB"] = peak; // with the tree, without the text that stands for the disk
}
BENCHMARK(Load)->Arg(100)->Arg(1000)->Unit(benchmark::kMillisecond);

void PugixmlMerelyParses(benchmark::State& state) {
    const std::string text = makeSolution(static_cast<int>(state.range(0)), 100);
    for (auto _ : state) {
        pugi::xml_document document;
        benchmark::DoNotOptimize(document.load_buffer(text.data(), text.size()));
    }
}
BENCHMARK(PugixmlMerelyParses)->Arg(100)->Arg(1000)->Unit(benchmark::kMillisecond);

/// A system that has loaded a solution.
struct Loaded {
    explicit Loaded(const std::string& text) {
        memory.write("/s/bench.vkp", text);
        system.loadSolution("/s/bench.vkp");
    }
    MemoryFiles memory;
    FilesInPlace inPlace{&memory};
    MSP430ProjectSystem system;
};

enum Stated { Nowhere, InOuterCommon, Everywhere };

/// Depth six, four inherited configurations, all six configurations at every level. Nowhere: the setting is
/// known to the tree but on no road. InOuterCommon: one value in the last place. Everywhere: a list out
/// of 36.
void SettingAtDepthSix(benchmark::State& state) {
    std::string all;
    for (const char* name : {"Common", "Debug", "Flash", "Traced", "Checked", "Small"})
        all += configuration(name, settings(0, "X"));
    std::string outer = configuration("Debug", "inherited_configurations=\"Flash;Traced;Checked;Small\" " +
                                                   settings(0, "X")) +
                        configuration("Common", "linker_output_format=\"hex\" " + settings(0, "X"));
    for (const char* name : {"Flash", "Traced", "Checked", "Small"})
        outer += configuration(name, settings(0, "X"));
    Loaded loaded("<!DOCTYPE OstrelTarn_Project_File><solution Name=\"s\" version=\"2\">" + outer +
                  "<solution Name=\"t\">" + all + "<project Name=\"p\">" + all + "<folder Name=\"d\">" + all +
                  "<folder Name=\"e\">" + all + "<file file_name=\"f.c\">" + all +
                  "</file></folder></folder></project><project Name=\"q\">" +
                  configuration("Common", "linker_map_file=\"No\"") + "</project></solution></solution>");
    ProjectElement* file = loaded.system.solutionElement();
    while (!file->is(ProjectElement::File))
        file = file->nextInTree(nullptr);
    const Setting searched[] = {Setting::linker_map_file, Setting::linker_output_format,
                                Setting::c_preprocessor_definitions};
    const PropertyClass& property = propertyClass(searched[state.range(0)]);
    const QString config = "Debug";
    for (auto _ : state) {
        for (int i = 0; i < 1'000'000; ++i)
            benchmark::DoNotOptimize(loaded.system.settingFor(file, property, config));
    }
}
BENCHMARK(SettingAtDepthSix)
    ->ArgName("stated")
    ->Arg(Nowhere)
    ->Arg(InOuterCommon)
    ->Arg(Everywhere)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1);

/// Every applicable setting of every file.
void AllSettingsOfAllFiles(benchmark::State& state) {
    Loaded loaded(makeSolution(1000, 100));
    ProjectElement* root = loaded.system.solutionElement();
    size_t values = 0;
    for (auto _ : state) {
        for (ProjectElement* element = root; element; element = element->nextInTree(root)) {
            if (!element->is(ProjectElement::File))
                continue;
            for (const PropertyValue* value : loaded.system.applicableSettingsFor(element, "Debug")) {
                benchmark::DoNotOptimize(loaded.system.settingFor(element, *value->propertyClass(), "Debug"));
                ++values;
            }
        }
    }
    state.counters["values"] = static_cast<double>(values);
}
BENCHMARK(AllSettingsOfAllFiles)->Unit(benchmark::kMillisecond)->Iterations(1);

} // namespace
