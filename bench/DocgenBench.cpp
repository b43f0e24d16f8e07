// The scanner of headers, and the pages that come out of them, in memory, on the headers below the directory
// that the environment names in DOCGEN_HEADERS, or else on those of this machine: of the C library, of Qt and
// of the C++ library, as far as they are installed. For the pages every block comment is made one for
// documentation.

#include "docgen/DocGen.h"
#include "docgen/SourceBrowserCParser.h"
#include "foundation/FileAccess.h"
#include "macros/Path.h"
#include "support/MemoryFiles.h"

#include <benchmark/benchmark.h>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

namespace {

struct Header {
    QString path;
    std::string text;
    std::string documented; ///< with "/*!" for each "/*"
};

std::string documented(std::string text) {
    for (size_t at = text.find("/*"); at != std::string::npos; at = text.find("/*", at + 2))
        text.replace(at + 2, text[at + 2] == '!', "!");
    return text;
}

const std::vector<Header>& headers() {
    static const std::vector<Header> all = [] {
        namespace fs = std::filesystem;
        const char* const directory = std::getenv("DOCGEN_HEADERS");
        std::vector<Header> found;
        for (const fs::directory_entry& entry : fs::recursive_directory_iterator(
                 directory ? directory : "/usr/include", fs::directory_options::skip_permission_denied)) {
            if (!entry.is_regular_file())
                continue;
            const QString path = QString::fromLatin1(entry.path().string());
            if (const FileBytes file = files().read(path))
                found.push_back({path, std::string(file.view()), documented(std::string(file.view()))});
        }
        return found;
    }();
    return all;
}

void countBytes(benchmark::State& state) {
    size_t bytes = 0;
    for (const Header& header : headers())
        bytes += header.text.size();
    state.counters["files"] = static_cast<double>(headers().size());
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * bytes));
}

void scanner(benchmark::State& state) {
    headers();
    for (auto _ : state)
        for (const Header& header : headers()) {
            SourceBrowserDatabase database;
            SourceBrowserCParser(database).parseText(header.path, header.text);
            benchmark::DoNotOptimize(database.methods().size());
        }
    countBytes(state);
}
BENCHMARK(scanner)->Unit(benchmark::kMillisecond);

void pages(benchmark::State& state) {
    headers();
    for (auto _ : state) {
        size_t written = 0;
        for (const Header& header : headers()) {
            MemoryFiles memory;
            const FilesInPlace inPlace(&memory);
            DocGen().generateHeader(Path(header.path), header.documented, "/out");
            written += static_cast<size_t>(memory.list("/out").size());
        }
        state.counters["pages"] = static_cast<double>(written);
    }
    countBytes(state);
}
BENCHMARK(pages)->Unit(benchmark::kMillisecond);

} // namespace
