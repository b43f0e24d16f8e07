#pragma once

#include "toolchain/common/ObjectLayout.h"
#include "toolchain/common/Tool.h"

#include <string>
#include <vector>

/// What the words of a compiler's command line ask for.
struct CompileOptions {
    std::vector<std::string> clang; ///< words for clang, in the order of the command line
    std::string input;
    std::string output;
    std::string headers; ///< the directory of headers that come before clang's own; empty: none
    SectionNames sections;
    bool preprocess = false; ///< write the preprocessed text instead of an object
    bool debug = false;      ///< source lines go into the object
    bool extended = false;   ///< the MSP430X
    bool shortDouble = false;
    bool keepLocalsInMemory = false;
    bool forSize = false;
    bool optimise = false; ///< one of the two words for the strategy was there
};

/// The words that qcomp takes, to be put into `options`, which must outlive the tool.
void addCompilerWords(Tool& tool, CompileOptions& options);
/// The words that qasm takes.
void addAssemblerWords(Tool& tool, CompileOptions& options);

/// The words for clang that make an ELF file of a C source.
std::vector<std::string> compilerCommand(const CompileOptions& options);
/// Those that put an assembly source through the preprocessor, and those that assemble the result.
std::vector<std::string> assemblerPreprocessCommand(const CompileOptions& options);
std::vector<std::string> assemblerCommand(const CompileOptions& options);
