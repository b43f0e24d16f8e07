// The parser on a solution of 20 MB beside pugixml (default options) and expat (a handler for tags that does
// next to nothing). All start from the same immutable bytes. Then the preprocessor on a memory map of 5 MB,
// beside the bare parse of what comes out.

#include "support/MemoryFiles.h"
#include "xml/XMLPP2.h"

#include <benchmark/benchmark.h>
#include <chrono>
#include <expat.h>
#include <malloc.h>
#include <memory>
#include <pugixml.hpp>
#include <string>

namespace {

constexpr size_t wantedBytes = 20'000'000;

std::string configuration(int n, const char* name) {
    const std::string number = std::to_string(n);
    return "      <configuration Name=\"" + std::string(name) +
           "\" c_preprocessor_definitions=\"MODULE=" + number + ";USE_LCD;LIMIT=&quot;" + number +
           "&quot;\" c_user_include_directories=\"$(ProjectDir)/include;$(ProjectDir)/../shared/module_" +
           number +
           "\" gcc_optimization_level=\"Level 2\" build_treat_warnings_as_errors=\"Yes\" "
           "link_use_multi_threaded_libraries=\"No\" target_processor=\"MSP430F149\" "
           "build_output_directory=\"$(Configuration)/obj\" "
           "c_additional_options=\"-mshort-calls -fno-inline\"/>\n";
}

/// A solution of projects with folders, files and settings, attribute-heavy as such files are.
const std::string& solution() {
    static const std::string text = [] {
        std::string s = "<!DOCTYPE OstrelTarn_Project_File>\n<solution Name=\"bench\" version=\"2\">\n";
        for (int n = 0; s.size() < wantedBytes; ++n) {
            const std::string number = std::to_string(n);
            s += "  <project Name=\"project_" + number + "\">\n" + configuration(n, "Common") +
                 configuration(n, "Debug") + configuration(n, "Release") +
                 "    <folder Name=\"Source &amp; Headers\" filter=\"c;cpp;h;s43\">\n";
            for (int file = 0; file < 12; ++file) {
                s += "      <file file_name=\"src/module_" + number + "/source_file_" + std::to_string(file);
                s += file % 4
                         ? ".c\"/>\n"
                         : ".c\">\n        <configuration Name=\"Debug\" gcc_optimization_level=\"None\"/>\n"
                           "      </file>\n";
            }
            s += "    </folder>\n  </project>\n";
        }
        return s + "</solution>\n";
    }();
    return text;
}

size_t allocatedBytes() {
    const auto info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

/// What the first parse of the process costs, before any pool has given up chunks.
struct FirstParse {
    double bytesPerByte; ///< what it leaves allocated, which is also its peak, for each byte of the file
    double milliseconds;
};

template<class Parse>
FirstParse firstParse(Parse parse) {
    const std::string& text = solution();
    const size_t before = allocatedBytes();
    const auto start = std::chrono::steady_clock::now();
    const auto document = parse(text);
    const std::chrono::duration<double, std::milli> time = std::chrono::steady_clock::now() - start;
    return {static_cast<double>(allocatedBytes() - before) / static_cast<double>(text.size()), time.count()};
}

const FirstParse oursFirst = firstParse([](const std::string& text) {
    auto document = std::make_unique<XMLDocument>(false);
    document->parse(text);
    return document;
});

const FirstParse pugixmlFirst = firstParse([](const std::string& text) {
    auto document = std::make_unique<pugi::xml_document>();
    document->load_buffer(text.data(), text.size());
    return document;
});

void report(benchmark::State& state, const FirstParse& first) {
    state.counters["bytes_per_byte"] = first.bytesPerByte;
    state.counters["first_ms"] = first.milliseconds;
}

void countBytes(benchmark::State& state) {
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * solution().size()));
}

void ours(benchmark::State& state) {
    for (auto _ : state) {
        XMLDocument document(false);
        if (!document.parse(solution()) || !document.root())
            state.SkipWithError("the document does not parse");
    }
    countBytes(state);
    report(state, oursFirst);
}
BENCHMARK(ours)->Unit(benchmark::kMillisecond);

void pugixml(benchmark::State& state) {
    for (auto _ : state) {
        pugi::xml_document document;
        if (!document.load_buffer(solution().data(), solution().size()))
            state.SkipWithError("the document does not parse");
    }
    countBytes(state);
    report(state, pugixmlFirst);
}
BENCHMARK(pugixml)->Unit(benchmark::kMillisecond);

void expat(benchmark::State& state) {
    for (auto _ : state) {
        size_t tags = 0;
        XML_Parser parser = XML_ParserCreate(nullptr);
        XML_SetUserData(parser, &tags);
        XML_SetElementHandler(
            parser, [](void* count, const XML_Char*, const XML_Char**) { ++*static_cast<size_t*>(count); },
            [](void* count, const XML_Char*) { ++*static_cast<size_t*>(count); });
        if (XML_Parse(parser, solution().data(), static_cast<int>(solution().size()), true) != XML_STATUS_OK)
            state.SkipWithError("the document does not parse");
        benchmark::DoNotOptimize(tags);
        XML_ParserFree(parser);
    }
    countBytes(state);
}
BENCHMARK(expat)->Unit(benchmark::kMillisecond);

class Map : public XMLPP2 {
public:
    void warning(const QString&) override { ++warnings; }
    int warnings = 0;
};

/// The files of a memory map: modules that a device brings in, each with registers made by loops in loops,
/// and the bit fields of some registers in plain.
MemoryFiles mapFiles() {
    std::string module =
        "<envelope>\n<if Core=\"X,XV2\">\n"
        "<for index=\"p\" start=\"0\" end=\"8\" incr=\"1\" mul=\"32\" add=\"$(Base)\">\n"
        "<RegisterGroup name=\"$(Name)$(p_alpha)\" start=\"$(p_ap_hex)\">\n"
        "<for index=\"r\" start=\"0\" end=\"16\" incr=\"1\" mul=\"2\" add=\"$(p_ap)\">\n"
        "<Register name=\"$(Name)CCR$(r)\" start=\"$(r_ap_hex)\" size=\"2\" access=\"ReadOnly\"/>\n"
        "</for>\n";
    for (int bit = 0; bit < 16; ++bit) {
        const std::string number = std::to_string(bit);
        module +=
            "<Register name=\"CTL" + number + "\" start=\"+0x" + number + "\" size=\"2\">" +
            "<BitField name=\"MODE\" start=\"0\" size=\"4\" description=\"Mode control of the timer\"/>" +
            "<BitField name=\"IE\" start=\"4\" size=\"1\" description=\"Interrupt enable\"/></Register>\n";
    }
    module += "</RegisterGroup>\n</for>\n</if>\n<ifnot Core=\"X\"><None/></ifnot>\n</envelope>\n";
    std::string top = "<!DOCTYPE Board_Memory_Definition_File>\n<Root name=\"map\">\n";
    for (int n = 0; n < 140; ++n) {
        const std::string number = std::to_string(n);
        top += "<include filename=\"module.xml\" macros=\"Name=T" + number + ";Base=0x" + number + "00\"/>\n";
    }
    MemoryFiles files;
    files.write("/map/top.xml", top + "</Root>\n");
    files.write("/map/module.xml", module);
    return files;
}

void write(std::string& text, const XMLElement& element) {
    text.append("<").append(element.tagName());
    for (const XMLAttribute& attribute : element.getAttributeList())
        text.append(" ").append(attribute.name).append("=\"").append(attribute.value).append("\"");
    text.append(element.firstChild() ? ">\n" : "/>\n");
    for (const XMLElement* child = element.firstChildElement(); child; child = child->nextSiblingElement())
        write(text, *child);
    if (element.firstChild())
        text.append("</").append(element.tagName()).append(">\n");
}

const std::string& mapOutput() {
    static const std::string text = [] {
        MemoryFiles memory = mapFiles();
        const FilesInPlace inPlace(&memory);
        Map map;
        std::string output;
        if (map.load("/map/top.xml", "Core=X", true) && map.warnings == 0)
            write(output, *map.root());
        return output;
    }();
    return text;
}

void preprocessor(benchmark::State& state) {
    MemoryFiles memory = mapFiles();
    const FilesInPlace inPlace(&memory);
    for (auto _ : state) {
        Map map;
        if (!map.load("/map/top.xml", "Core=X", true))
            state.SkipWithError("the map does not load");
    }
    state.counters["output_bytes"] = static_cast<double>(mapOutput().size());
}
BENCHMARK(preprocessor)->Unit(benchmark::kMillisecond);

void parseOfItsOutput(benchmark::State& state) {
    for (auto _ : state) {
        XMLDocument document(false);
        if (!document.parse(mapOutput()) || !document.root())
            state.SkipWithError("the document does not parse");
    }
    state.counters["output_bytes"] = static_cast<double>(mapOutput().size());
}
BENCHMARK(parseOfItsOutput)->Unit(benchmark::kMillisecond);

} // namespace
