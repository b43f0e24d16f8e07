#include "toolchain/compiler/Compile.h"
#include "toolchain/compiler/CompileOptions.h"

int main(int argc, char** argv) {
    Tool tool("qcomp", "compiles a C source into an object file");
    CompileOptions options;
    addCompilerWords(tool, options);
    return runCompiler(tool, options, argc, argv, compileC);
}
