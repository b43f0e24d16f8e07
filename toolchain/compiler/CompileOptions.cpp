#include "toolchain/compiler/CompileOptions.h"

#include <algorithm>

namespace {

using Take = std::function<void(const std::string&)>;

/// Passes the word on, with another beginning, or several words if the beginning has blanks.
Take toClang(CompileOptions& options, std::string beginning) {
    return [&options, beginning](const std::string& value) { options.clang.push_back(beginning + value); };
}
Take toClangAsWord(CompileOptions& options, std::string word) {
    return [&options, word](const std::string& value) {
        options.clang.push_back(word);
        options.clang.push_back(value);
    };
}
Take set(bool& flag) {
    return [&flag](const std::string&) { flag = true; };
}
Take setText(std::string& text) {
    return [&text](const std::string& value) { text = value; };
}
Take unheeded(Tool& tool, const char* word) {
    return [&tool, word](const std::string&) { tool.say(std::string(word) + " has no effect"); };
}

std::vector<ToolWord> sharedWords(CompileOptions& options) {
    return {
        {"-D", ToolWord::Joined, "NAME[=TEXT]", "define a macro", toClang(options, "-D")},
        {"-U", ToolWord::Joined, "NAME", "undefine a macro", toClang(options, "-U")},
        {"-I", ToolWord::Joined, "DIR", "search for included files there", toClang(options, "-I")},
        {"-J", ToolWord::Joined, "DIR", "the same, behind all of -I, for system headers",
         toClangAsWord(options, "-isystem")},
        {"-g", ToolWord::Alone, nullptr, "put source lines into the object", set(options.debug)},
        {"-Rc,", ToolWord::Joined, "NAME", "the section for code, else CODE", setText(options.sections.code)},
        {"-Rd,", ToolWord::Joined, "NAME", "the section for initialised data, else IDATA0",
         setText(options.sections.data)},
        {"-Rz,", ToolWord::Joined, "NAME", "the section for zeroed data, else UDATA0",
         setText(options.sections.zeroed)},
        {"-Rk,", ToolWord::Joined, "NAME", "the section for constants, else CONST",
         setText(options.sections.constant)},
        {"-Rv,", ToolWord::Joined, "NAME", "the section for vectors, else INTVEC",
         setText(options.sections.vector)},
        {"-mcpux", ToolWord::Alone, nullptr, "for the MSP430X", set(options.extended)},
        {"-E", ToolWord::Alone, nullptr, "write the preprocessed text", set(options.preprocess)},
        {"-o", ToolWord::Next, "FILE", "what to write", setText(options.output)},
        {"-Wa,", ToolWord::Joined, "WORD", "a word for clang's assembler", toClang(options, "-Wa,")},
        {"-W", ToolWord::Joined, "NAME", "a warning, as clang names it", toClang(options, "-W")},
    };
}

/// What both commands begin with: nothing of the host's, and messages as plain text.
std::vector<std::string> commonCommand() {
    return {"--target=msp430",
            "-nostdlibinc",
            "-fno-color-diagnostics",
            "-fno-crash-diagnostics",
            "-fintegrated-as",
            "-fdebug-compilation-dir=.",
            "-Wno-unused-command-line-argument"};
}

void append(std::vector<std::string>& words, std::initializer_list<const char*> more) {
    words.insert(words.end(), more.begin(), more.end());
}

} // namespace

void addCompilerWords(Tool& tool, CompileOptions& options) {
    tool.addWords(tool.commonWords());
    tool.addWords({
        {"-O-9", ToolWord::Alone, nullptr, "make the code small",
         [&options](const std::string&) { options.optimise = options.forSize = true; }},
        {"-O+9", ToolWord::Alone, nullptr, "make the code fast",
         [&options](const std::string&) {
             options.optimise = true;
             options.forSize = false;
         }},
        {"-Or-", ToolWord::Alone, nullptr, "keep variables in memory, where a debugger finds them",
         set(options.keepLocalsInMemory)},
        {"-Orl", ToolWord::Alone, nullptr, "keep local variables in registers (always, but with -Or-)",
         [](const std::string&) {}},
        {"-Org", ToolWord::Alone, nullptr, "keep global variables in registers (no effect)",
         unheeded(tool, "-Org")},
        {"-ansi", ToolWord::Alone, nullptr, "C90, and warnings for what is not",
         [&options](const std::string&) {
             options.clang.insert(options.clang.end(), {"-ansi", "-pedantic"});
         }},
        {"-msd", ToolWord::Alone, nullptr, "a double has 32 bits", set(options.shortDouble)},
        {"-mmpyinl", ToolWord::Alone, nullptr, "use the 16-bit hardware multiplier",
         [&options](const std::string&) { options.clang.push_back("-mhwmult=16bit"); }},
        {"-mmpy", ToolWord::Alone, nullptr, "use the 16-bit hardware multiplier",
         [&options](const std::string&) { options.clang.push_back("-mhwmult=16bit"); }},
        {"-std=", ToolWord::Joined, "NAME", "the language, as clang names it", toClang(options, "-std=")},
        {"-f", ToolWord::Joined, "NAME", "a switch of clang's code generator", toClang(options, "-f")},
        {"-include=", ToolWord::Joined, "FILE", "include that file first",
         toClangAsWord(options, "-include")},
    });
    tool.addWords(sharedWords(options));
}

void addAssemblerWords(Tool& tool, CompileOptions& options) {
    tool.addWords(tool.commonWords());
    tool.addWords(sharedWords(options));
}

std::vector<std::string> compilerCommand(const CompileOptions& options) {
    std::vector<std::string> words = commonCommand();
    append(words, {"-ffunction-sections", "-fdata-sections", "-fno-addrsig", "-fno-ident"});
    words.push_back(options.keepLocalsInMemory ? "-O0"
                    : options.forSize          ? "-Oz"
                    : options.optimise         ? "-O2"
                                               : "-O0");
    if (options.debug)
        append(words, {"-gline-tables-only", "-gdwarf-4", "-gno-column-info"});
    if (options.shortDouble)
        append(words, {"-Xclang", "-mdouble=32"});
    words.insert(words.end(), options.clang.begin(), options.clang.end());
    if (!options.headers.empty())
        words.insert(words.end(), {"-isystem", options.headers});
    append(words, {options.preprocess ? "-E" : "-c", "-x", "c"});
    words.push_back(options.input);
    append(words, {"-o", "-"});
    return words;
}

std::vector<std::string> assemblerPreprocessCommand(const CompileOptions& options) {
    std::vector<std::string> words = commonCommand();
    words.insert(words.end(), options.clang.begin(), options.clang.end());
    append(words, {"-E", "-x", "assembler-with-cpp"});
    words.push_back(options.input);
    append(words, {"-o", "-"});
    return words;
}

std::vector<std::string> assemblerCommand(const CompileOptions& options) {
    std::vector<std::string> words = commonCommand();
    for (const std::string& word : options.clang)
        if (word.compare(0, 2, "-W") == 0)
            words.push_back(word);
    if (options.debug)
        append(words, {"-g", "-gdwarf-4"});
    append(words, {"-c", "-x", "assembler", "-", "-o", "-"});
    return words;
}
