#pragma once

#include <string>
#include <vector>

/// What a run of clang left behind.
struct ClangResult {
    int status = 0;           ///< the exit status; 128 and the signal's number if one ended it
    std::string output;       ///< what it wrote to its standard output
    std::string dependencies; ///< the rule that "-MD" asks for, as it is written for make
};

/// The newest clang along PATH that knows the processor. Throws HException if there is none.
std::string clangProgram();

/// Runs clang with the words behind its name. Its messages go to this process's error stream; what it makes
/// stays in memory, so that no file of it is ever left over. `input` is its standard input. With
/// `wantDependencies` the words that ask for them are added.
ClangResult runClang(const std::string& program, std::vector<std::string> words, const std::string& input,
                     bool wantDependencies);

/// The files that a rule for make names behind its first colon.
std::vector<std::string> dependenciesOf(std::string_view rule);
