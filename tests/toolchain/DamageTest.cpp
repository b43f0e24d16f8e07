#include "foundation/HException.h"
#include "object/SOBFModule.h"
#include "support/TemporaryDirectory.h"
#include "toolchain/common/ElfFile.h"
#include "toolchain/common/Executable.h"
#include "toolchain/common/Listing.h"
#include "toolchain/common/ObjectMaker.h"
#include "toolchain/compiler/Clang.h"
#include "toolchain/compiler/CompileOptions.h"
#include "toolchain/qcvt/LoadFormats.h"

#include <fstream>
#include <gmock/gmock.h>
#include <set>

using namespace testing;

namespace {

/// What is told of a file in which one byte is another, for each byte and some values.
template<class Use>
std::set<std::string> toldOf(const std::string& bytes, Use use) {
    std::set<std::string> told;
    for (size_t place = 0; place < bytes.size(); ++place) {
        for (const char value : {'\0', '\1', '\x7F', '\xFF'}) {
            std::string damaged = bytes;
            damaged[place] = value;
            try {
                Pool pool;
                const CurrentPool current(&pool);
                use(ElfFile(damaged));
            } catch (const HException& exception) {
                told.insert(exception.text());
            }
        }
    }
    return told;
}

TEST(DamageTest, AnObjectOfTheCompiler) {
    const TemporaryDirectory directory;
    CompileOptions options;
    options.input = directory.bytes() + "/f.c";
    options.debug = true;
    std::ofstream(options.input) << "extern int e; int d = 3; int f(int n) { return n + e; }\n";
    const ClangResult made = runClang(clangProgram(), compilerCommand(options), {}, false);
    ASSERT_EQ(made.status, 0);
    EXPECT_THAT(
        toldOf(made.output, [](const ElfFile& elf) { makeObject(elf, {}); }),
        IsSupersetOf({"bad ELF file: no 32-bit little-endian ELF file", "bad ELF file: not for the MSP430",
                      "bad ELF file: section .text.f lies outside the file",
                      "bad ELF file: the relocations can't be read",
                      "bad ELF file: a relocation names a symbol that is not there",
                      "bad ELF file: the line table is damaged", "section .text.f: a relocation lies outside",
                      "section .text.f: relocations of type 127 have no counterpart in an object file",
                      "a relocation refers to e, which is in no memory"}));
}

TEST(DamageTest, AnExecutable) {
    Executable program;
    program.sections = {{"CODE", 0x1100, 4, 1, std::string(4, '\3')}, {"CONST", 0x1104, 4, 0, "text"}};
    program.symbols = {{"main", 0x1100, 4, true, true, false, 0}};
    program.lines = {{"a.c"}, {{0, 0x1100, 0, 7, false}, {0, 0x1104, 0, 0, true}}};
    const auto use = [](const ElfFile& elf) {
        loadBlocks(elf);
        listingOf(elf, nullptr);
    };
    EXPECT_THAT(toldOf(elfBytes(program), use),
                IsSupersetOf({"sections overlap", "a section lies beyond the address space"}));
}

} // namespace
