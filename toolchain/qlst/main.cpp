#include "foundation/FileAccess.h"
#include "foundation/HException.h"
#include "foundation/Text.h"
#include "toolchain/common/ElfFile.h"
#include "toolchain/common/Listing.h"
#include "toolchain/common/Tool.h"

namespace {

std::string readSource(const std::string& path) {
    const FileBytes bytes = files().read(toText(path));
    return std::string(bytes ? bytes.view() : std::string_view());
}

} // namespace

int main(int argc, char** argv) {
    Tool tool("qlst", "writes a listing of an executable, with its source");
    std::string input;
    std::string output;
    tool.addWords({{"-o", ToolWord::Next, "FILE", "the listing to write",
                    [&](const std::string& path) { output = path; }}});
    return runTool(tool, [&] {
        const std::span<char* const> words(argv + 1, static_cast<size_t>(argc > 0 ? argc - 1 : 0));
        if (!tool.parse(words, [&](const std::string& path) { input = path; }))
            return true;
        if (input.empty() || output.empty())
            throw HException("an executable, -o and a file expected");
        writeOutput(output, listingOf(ElfFile(readInput(input)), readSource));
        return true;
    });
}
