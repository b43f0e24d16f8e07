#include "foundation/HException.h"
#include "toolchain/compiler/Compile.h"
#include "toolchain/compiler/CompileOptions.h"

int main(int argc, char** argv) {
    Tool tool("qasm", "assembles a source into an object file");
    CompileOptions options;
    addAssemblerWords(tool, options);
    return runTool(tool, [&] {
        const auto input = [&](const std::string& path) {
            if (!options.input.empty())
                throw HException("more than one source file: " + path);
            options.input = path;
        };
        const std::span<char* const> words(argv + 1, static_cast<size_t>(argc > 0 ? argc - 1 : 0));
        return !tool.parse(words, input) || assemble(tool, options);
    });
}
