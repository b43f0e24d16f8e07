// Indirect option files. The input is a file that may name itself, under "self".

#include "driver/OstmakeArgParse.h"
#include "driver/ProcessExit.h"
#include "driver/Report.h"
#include "support/MemoryFiles.h"

#include <cstdint>
#include <cstdlib>
#include <sstream>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    MemoryFiles memory;
    memory.write("self", {reinterpret_cast<const char*>(data), size});
    const FilesInPlace inPlace(&memory);
    std::ostringstream stream;
    Report fuzzReport("fuzz", stream);
    report = &fuzzReport;
    OstmakeArgParse options;
    try {
        options.parseArgsFromIndirectFile("self");
    } catch (const ProcessExit&) {
    }
    const auto lines = std::ranges::count(stream.str(), '\n');
    if (lines < fuzzReport.errors())
        std::abort();
    return 0;
}
