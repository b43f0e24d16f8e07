#pragma once

class Tool;
struct CompileOptions;

/// Makes the output out of the input, as the options say. False if clang has found fault with the source,
/// which it has told by then. Throws HException.
bool compileC(Tool& tool, const CompileOptions& options);
bool assemble(Tool& tool, const CompileOptions& options);
