#include "toolchain/common/ObjectMaker.h"

#include "object/SOBFMSP430Insn.h"
#include "object/SOBFModule.h"
#include "object/SOBFPseudoInsn.h"
#include "object/SOBFSection.h"
#include "object/SOBFSymbol.h"
#include "support/TemporaryDirectory.h"
#include "toolchain/common/ElfFile.h"
#include "toolchain/common/ModuleFile.h"
#include "toolchain/common/Relocations.h"
#include "toolchain/compiler/Clang.h"
#include "toolchain/compiler/CompileOptions.h"

#include <elf.h>
#include <fstream>
#include <gmock/gmock.h>
#include <map>

using namespace testing;

namespace {

/// What stands at a place that is not known before the program is linked.
struct Unknown {
    std::string base; ///< an undefined symbol, or a section
    int64_t value;    ///< what is added to the symbol; the place in the section
    bool operator==(const Unknown&) const = default;
    friend void PrintTo(const Unknown& unknown, std::ostream* out) {
        *out << unknown.base << "+" << unknown.value;
    }
};

/// A section's bytes, with zeros in the place of what is unknown, and that.
struct Contents {
    std::string bytes;
    std::map<uint32_t, Unknown> unknown;
};
using Image = std::map<std::string, Contents>;

std::string sectionName(const std::string& name) {
    const std::string base = name.substr(0, name.find('.', 1));
    return base == ".text"     ? "CODE"
           : base == ".data"   ? "IDATA0"
           : base == ".bss"    ? "UDATA0"
           : base == ".rodata" ? "CONST"
                               : name;
}

/// What clang's file says: its sections one behind the other, as an object has them.
class Expected {
public:
    explicit Expected(const ElfFile& elf) : m_elf(elf), m_starts(elf.sections.size()) {
        for (size_t index = 1; index < elf.sections.size(); ++index) {
            const ElfSection& section = elf.sections[index];
            if (!section.isAllocated() || section.size == 0)
                continue;
            std::string& bytes = image[sectionName(section.name)].bytes;
            bytes.resize((bytes.size() + section.alignment - 1) / section.alignment * section.alignment,
                         '\0');
            m_starts[index] = static_cast<int64_t>(bytes.size());
            bytes += section.bytes;
            bytes.resize(static_cast<size_t>(m_starts[index]) + section.size, '\0');
        }
        for (size_t index = 1; index < elf.sections.size(); ++index)
            if (elf.sections[index].isAllocated())
                for (const ElfRelocation& relocation : elf.sections[index].relocations)
                    add(index, relocation);
    }

    Image image;

private:
    void add(size_t index, const ElfRelocation& relocation) {
        Contents& contents = image[sectionName(m_elf.sections[index].name)];
        const auto place = static_cast<uint32_t>(m_starts[index]) + relocation.offset;
        const ElfSymbol& symbol = m_elf.symbols[relocation.symbol];
        Unknown& unknown = contents.unknown[place];
        if (symbol.section == SHN_UNDEF)
            unknown = {symbol.name, relocation.addend};
        else
            unknown = {sectionName(m_elf.sections[symbol.section].name),
                       m_starts[symbol.section] + symbol.value + relocation.addend};
        for (uint32_t byte = 0; byte < relocationRow(relocation.type)->bytes; ++byte)
            contents.bytes[place + byte] = '\0';
    }

    const ElfFile& m_elf;
    std::vector<int64_t> m_starts;
};

/// What a module that was written and read again says, by encoding its records anew.
class Actual {
public:
    explicit Actual(const SOBFModule& module) {
        for (SOBFSection* section : module.sections)
            for (SOBFFragment* fragment : section->fragments)
                for (SOBFInsn* insn : fragment->insns)
                    add(image[std::string(section->name->view())], *insn);
    }

    Image image;

private:
    void add(Contents& contents, SOBFInsn& insn) {
        const auto pc = static_cast<uint32_t>(insn.pc);
        const auto length = static_cast<uint32_t>(insn.length());
        if (length == 0)
            return;
        contents.bytes.resize(std::max<size_t>(contents.bytes.size(), pc + length), '\0');
        insn.encode();
        insn.copyBytes(reinterpret_cast<uint8_t*>(contents.bytes.data()) + pc, insn.length());
        if (auto* machine = dynamic_cast<SOBFMSP430Insn*>(&insn)) {
            const bool jump = machine->formatIII();
            uint32_t place = pc + (jump ? 0 : 2);
            for (const SOBFExpr* operand : {machine->source(), machine->destination()}) {
                if (operand && !jump)
                    addOperand(contents, place, *operand, 2);
                place += operand ? 2 : 0;
            }
        } else if (insn.operand1) {
            addOperand(contents, pc, *insn.operand1, length);
        }
    }

    static void addOperand(Contents& contents, uint32_t place, const SOBFExpr& operand, uint32_t bytes) {
        const SOBFExprValue value = operand.evaluate();
        if (!value.failed && !value.section)
            return;
        if (value.section) {
            contents.unknown[place] = {std::string(value.section->name->view()), value.value};
        } else {
            const auto* sum = dynamic_cast<const SOBFBinaryExpr*>(&operand);
            const auto* symbol = dynamic_cast<const SOBFSymbolExpr*>(sum ? sum->left : &operand);
            ASSERT_TRUE(symbol) << operand.printString();
            contents.unknown[place] = {std::string(symbol->symbol->name->view()),
                                       sum ? sum->right->evaluate().value : 0};
        }
        std::fill_n(contents.bytes.begin() + place, bytes, '\0');
    }
};

struct Compiled {
    ElfFile elf;
    std::unique_ptr<ModuleFile> file;
};

Compiled compile(const std::string& path, bool debug, std::vector<std::string> more) {
    CompileOptions options;
    options.input = path;
    options.optimise = true;
    options.debug = debug;
    options.clang = {"-w"};
    options.clang.insert(options.clang.end(), more.begin(), more.end());
    const ClangResult made = runClang(clangProgram(), compilerCommand(options), {}, true);
    EXPECT_EQ(made.status, 0);
    ObjectMakerOptions make;
    make.dependencies = dependenciesOf(made.dependencies);
    Compiled compiled{ElfFile(made.output), nullptr};
    Pool pool;
    const CurrentPool current(&pool);
    compiled.file = std::make_unique<ModuleFile>(path, objectBytes(*makeObject(compiled.elf, make)));
    return compiled;
}

class ObjectMakerTest : public Test {
protected:
    std::string write(const char* name, std::string_view text) {
        const std::string path = m_directory.bytes() + "/" + name;
        std::ofstream(path, std::ios::binary) << text;
        return path;
    }
    std::string directory() const { return m_directory.bytes(); }

private:
    TemporaryDirectory m_directory;
};

TEST_F(ObjectMakerTest, BytesAndRelocationsOfACorpusComeBackOutOfTheObject) {
    const std::string script = OSTMAKE_SOURCE_DIR "/tests/toolchain/makeCorpus.py";
    ASSERT_EQ(std::system(("python3 -B " + script + " " + directory()).c_str()), 0);
    size_t relocations = 0;
    for (const auto& entry : std::filesystem::directory_iterator(directory())) {
        SCOPED_TRACE(entry.path().string());
        const Compiled compiled = compile(entry.path().string(), true, {});
        Expected expected(compiled.elf);
        Actual actual(compiled.file->module());
        for (const char* vectors : {"__interrupt_vector_3", "__interrupt_vector_4"})
            expected.image.erase(vectors);
        actual.image.erase("INTVEC");
        for (auto& [name, contents] : expected.image) {
            SCOPED_TRACE(name);
            EXPECT_EQ(actual.image[name].bytes, contents.bytes);
            // A reference within a section may be known already, as a distance; both sides then have its
            // bytes.
            for (const auto& [place, unknown] : contents.unknown) {
                const auto found = actual.image[name].unknown.find(place);
                ASSERT_NE(found, actual.image[name].unknown.end()) << place;
                EXPECT_EQ(found->second, unknown) << place;
            }
            EXPECT_EQ(actual.image[name].unknown.size(), contents.unknown.size());
            relocations += contents.unknown.size();
        }
    }
    EXPECT_GT(relocations, 5000U);
}

std::vector<std::string> linesOf(const SOBFModule& module, std::string_view section) {
    std::vector<std::string> lines;
    for (SOBFSection* each : module.sections)
        if (each->name->view() == section)
            for (SOBFFragment* fragment : each->fragments)
                for (SOBFInsn* insn : fragment->insns)
                    if (const auto* locus = dynamic_cast<SOBFLocus*>(insn))
                        lines.push_back(std::to_string(locus->line));
    return lines;
}

TEST_F(ObjectMakerTest, ObjectKnowsLinesDependenciesAndKindsOfSymbols) {
    write("in cluded#.h", "extern int ext;\n");
    const std::string source = write("a.c", "#include \"in cluded#.h\"\n"
                                            "int f(void) {\n"
                                            "    return ext;\n"
                                            "}\n"
                                            "__attribute__((weak)) int w(void) { return 1; }\n"
                                            "__attribute__((retain, used)) static int kept;\n"
                                            "int plain, alsoPlain = 3;\n");
    const Compiled compiled = compile(source, true, {});
    const SOBFModule& module = compiled.file->module();
    EXPECT_THAT(listAttribute(module, "dependencies"), ElementsAre(source, directory() + "/in cluded#.h"));
    EXPECT_THAT(listAttribute(module, "weak"), ElementsAre("w"));
    EXPECT_THAT(listAttribute(module, "keep"), ElementsAre("kept"));
    EXPECT_THAT(linesOf(module, "CODE"), ElementsAre("3", "5"));
    std::map<std::string, std::string> publics;
    for (const auto& [name, symbol] : module.publics)
        publics[std::string(name->view())] = symbol->value->evaluate().section->name->view();
    EXPECT_THAT(publics, UnorderedElementsAre(Pair("f", "CODE"), Pair("w", "CODE"), Pair("plain", "UDATA0"),
                                              Pair("alsoPlain", "IDATA0")));
}

TEST_F(ObjectMakerTest, VectorsLieWhereTheirNumbersSay) {
    const std::string source = write("v.c", "__attribute__((interrupt(9))) void routine(void) { }\n");
    const Compiled compiled = compile(source, false, {});
    std::vector<std::string> records;
    for (SOBFSection* section : compiled.file->module().sections)
        if (section->name->view() == "INTVEC")
            for (SOBFInsn* insn : section->fragments.front()->insns)
                if (!insn->printString().empty())
                    records.push_back(insn->printString());
    EXPECT_THAT(records, ElementsAre("\tORG\t18", "\tDA\troutine"));
}

TEST_F(ObjectMakerTest, TextsAreFragmentsOfTheirOwn) {
    const std::string source = write("t.c", "const char *f(int n) { return n ? \"one\" : \"two\"; }\n");
    const Compiled compiled = compile(source, false, {});
    SOBFSection* constants = compiled.file->module().sectionsByName.value(intern("CONST"));
    ASSERT_TRUE(constants);
    EXPECT_EQ(constants->fragments.size(), 2U);
}

} // namespace
