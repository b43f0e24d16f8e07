#include "toolchain/compiler/Compile.h"

#include "foundation/FileAccess.h"
#include "foundation/HException.h"
#include "foundation/Text.h"
#include "toolchain/common/ElfFile.h"
#include "toolchain/common/ModuleFile.h"
#include "toolchain/common/ObjectMaker.h"
#include "toolchain/compiler/Clang.h"
#include "toolchain/compiler/CompileOptions.h"
#include "toolchain/compiler/DoubtfulCode.h"

namespace {

void checkOptions(const CompileOptions& options) {
    if (options.input.empty())
        throw HException("a source file expected");
    if (options.output.empty())
        throw HException("-o and a file expected");
}

/// The folder "include" beside the one that this program lies in; empty if it has no headers of ours.
std::string ownHeaders() {
    const std::string program = toBytes(resolvedPath("/proc/self/exe")).toStdString();
    const std::string folder = program.substr(0, program.rfind('/'));
    const std::string headers = folder.substr(0, folder.rfind('/')) + "/include";
    return isAccessible(toText(headers + "/stdarg.h"), AccessMode::Read) ? headers : std::string();
}

std::vector<std::string> withWarnings(const Tool& tool, std::vector<std::string> words) {
    if (tool.quietWarnings)
        words.push_back("-w");
    if (tool.warningsAreErrors)
        words.push_back("-Werror");
    return words;
}

ClangResult run(Tool& tool, const std::vector<std::string>& words, const std::string& input,
                bool wantDependencies) {
    const std::string program = clangProgram();
    std::string text = program;
    for (const std::string& word : words)
        text += " " + word;
    tool.say(text);
    ClangResult result = runClang(program, words, input, wantDependencies);
    if (result.status >= 128)
        throw HException(program + " was ended by signal " + std::to_string(result.status - 128));
    return result;
}

void writeObject(Tool& tool, const CompileOptions& options, const ClangResult& compiled,
                 const std::string& rule, bool isC) {
    ObjectMakerOptions make;
    make.sections = options.sections;
    make.extended = options.extended;
    make.dependencies = dependenciesOf(rule);
    if (isC)
        make.doubleBits = options.shortDouble ? "32" : "64";
    Pool pool;
    const CurrentPool current(&pool);
    const ElfFile elf(compiled.output);
    SOBFModule* module = makeObject(elf, make);
    if (isC && !options.keepLocalsInMemory)
        for (const std::string& place : doubtfulPlaces(*module))
            tool.warn(place + ": clang may use what a pointer points to in the place of the pointer here");
    if (!tool.hasFailed())
        writeOutput(options.output, objectBytes(*module));
}

} // namespace

bool compileC(Tool& tool, const CompileOptions& options) {
    checkOptions(options);
    CompileOptions withHeaders = options;
    withHeaders.headers = ownHeaders();
    const auto words = withWarnings(tool, compilerCommand(withHeaders));
    const ClangResult compiled = run(tool, words, {}, !options.preprocess);
    if (compiled.status != 0)
        return false;
    if (options.preprocess)
        writeOutput(options.output, compiled.output);
    else
        writeObject(tool, options, compiled, compiled.dependencies, true);
    return true;
}

bool assemble(Tool& tool, const CompileOptions& options) {
    checkOptions(options);
    const auto first = withWarnings(tool, assemblerPreprocessCommand(options));
    const ClangResult text = run(tool, first, {}, !options.preprocess);
    if (text.status != 0)
        return false;
    if (options.preprocess) {
        writeOutput(options.output, text.output);
        return true;
    }
    const auto second = withWarnings(tool, assemblerCommand(options));
    const ClangResult assembled = run(tool, second, text.output, false);
    if (assembled.status != 0)
        return false;
    writeObject(tool, options, assembled, text.dependencies, false);
    return true;
}

int runCompiler(Tool& tool, CompileOptions& options, int argc, char** argv,
                bool (*work)(Tool& tool, const CompileOptions& options)) {
    return runTool(tool, [&] {
        const auto input = [&](const std::string& path) {
            if (!options.input.empty())
                throw HException("more than one source file: " + path);
            options.input = path;
        };
        const std::span<char* const> words(argv + 1, static_cast<size_t>(argc > 0 ? argc - 1 : 0));
        return !tool.parse(words, input) || work(tool, options);
    });
}
