#include "toolchain/qlink/Link.h"
#include "toolchain/qlink/LinkOptions.h"

int main(int argc, char** argv) {
    Tool tool("qlink", "links object files and libraries into an executable");
    LinkOptions options;
    addLinkWords(tool, options);
    return runTool(tool, [&] {
        const std::span<char* const> words(argv + 1, static_cast<size_t>(argc > 0 ? argc - 1 : 0));
        const auto input = [&](const std::string& path) { options.inputs.push_back(path); };
        return !tool.parse(words, input) || linkProgram(tool, options);
    });
}
