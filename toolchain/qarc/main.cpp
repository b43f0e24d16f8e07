#include "foundation/HException.h"
#include "toolchain/common/Tool.h"
#include "toolchain/qarc/LibraryMaker.h"

#include <cstdio>

int main(int argc, char** argv) {
    Tool tool("qarc", "makes a library out of object files");
    std::string output;
    bool list = false;
    tool.addWords({
        {"-c", ToolWord::Next, "FILE", "make that library out of the inputs, object files and libraries",
         [&](const std::string& path) { output = path; }},
        {"-t", ToolWord::Alone, nullptr, "list the members of the inputs and the symbols that they define",
         [&](const std::string&) { list = true; }},
    });
    std::vector<std::string> inputs;
    return runTool(tool, [&] {
        const std::span<char* const> words(argv + 1, static_cast<size_t>(argc > 0 ? argc - 1 : 0));
        if (!tool.parse(words, [&](const std::string& path) { inputs.push_back(path); }))
            return true;
        if (output.empty() && !list)
            throw HException("-c and a file expected");
        if (!output.empty())
            writeOutput(output, makeLibrary(inputs));
        for (const std::string& input : list ? inputs : std::vector<std::string>()) {
            const std::string text = listLibrary(input);
            std::fwrite(text.data(), 1, text.size(), stdout);
        }
        return true;
    });
}
