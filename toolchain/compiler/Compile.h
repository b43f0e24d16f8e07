#pragma once

class Tool;
struct CompileOptions;

/// Makes the output out of the input, as the options say. False if clang has found fault with the source,
/// which it has told by then. Throws HException.
bool compileC(Tool& tool, const CompileOptions& options);
bool assemble(Tool& tool, const CompileOptions& options);

/// The program of one of these: takes the words of the command, one source file among them, and does `work`.
/// The exit status.
int runCompiler(Tool& tool, CompileOptions& options, int argc, char** argv,
                bool (*work)(Tool& tool, const CompileOptions& options));
