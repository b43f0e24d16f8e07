#include "foundation/HException.h"
#include "toolchain/common/ElfFile.h"
#include "toolchain/common/Listing.h"
#include "toolchain/common/Tool.h"
#include "toolchain/qcvt/LoadFormats.h"

int main(int argc, char** argv) {
    Tool tool("qcvt", "converts an executable into a load file");
    std::string input;
    std::string output;
    std::string format;
    const auto setText = [](std::string& text) {
        return [&text](const std::string& value) { text = value; };
    };
    tool.addWords({
        {"-o", ToolWord::Next, "NAME", "the file to write, without the format's extension", setText(output)},
        {"-F", ToolWord::Joined, "FORMAT", "hex, srec, bin, txt, tek or lst; also the extension",
         setText(format)},
    });
    return runTool(tool, [&] {
        const std::span<char* const> words(argv + 1, static_cast<size_t>(argc > 0 ? argc - 1 : 0));
        if (!tool.parse(words, setText(input)))
            return true;
        if (input.empty() || output.empty() || format.empty())
            throw HException("an executable, -o and a name, and -F with a format expected");
        const ElfFile elf(readInput(input));
        const std::string contents =
            format == "lst" ? listingOf(elf, nullptr) : loadFile(format, loadBlocks(elf), elf.entry);
        writeOutput(output + "." + format, contents);
        return true;
    });
}
