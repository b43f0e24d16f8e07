#include "toolchain/compiler/Compile.h"
#include "toolchain/compiler/CompileOptions.h"

int main(int argc, char** argv) {
    Tool tool("qasm", "assembles a source into an object file");
    CompileOptions options;
    addAssemblerWords(tool, options);
    return runCompiler(tool, options, argc, argv, assemble);
}
