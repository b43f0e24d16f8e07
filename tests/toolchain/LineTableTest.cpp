#include "toolchain/common/LineTable.h"

#include "foundation/HException.h"
#include "toolchain/common/ElfFile.h"
#include "toolchain/common/Executable.h"

#include <gmock/gmock.h>

using namespace testing;

namespace {

std::vector<std::string> texts(const LineTable& table) {
    std::vector<std::string> lines;
    for (const LineRow& row : table.rows)
        lines.push_back(std::to_string(row.address) +
                        (row.isEnd ? " end" : " " + table.files[row.file] + ":" + std::to_string(row.line)));
    return lines;
}

Executable programWithLines() {
    Executable program;
    program.sections.push_back({"CODE", 0x1100, 4, 1, std::string(4, '\0')});
    program.lines = {{"src/a.c", "b.h"},
                     {{0, 0x1100, 0, 7, false},
                      {0, 0x1102, 1, 300, false},
                      {0, 0x1400, 0, 2, false},
                      {0, 0x1402, 0, 0, true},
                      {0, 0x200, 1, 1, false},
                      {0, 0x202, 0, 0, true}}};
    return program;
}

TEST(LineTableTest, WrittenRowsComeBack) {
    const ElfFile elf(elfBytes(programWithLines()));
    EXPECT_THAT(texts(readLines(elf)), ElementsAre("4352 src/a.c:7", "4354 b.h:300", "5120 src/a.c:2",
                                                   "5122 end", "512 b.h:1", "514 end"));
}

TEST(LineTableTest, DamagedTablesAreRefusedOrShort) {
    const ElfFile whole(elfBytes(programWithLines()));
    const std::string bytes = whole.find(".debug_line")->bytes;
    for (size_t size = 1; size < bytes.size(); ++size) {
        ElfFile cut = whole;
        for (ElfSection& section : cut.sections)
            if (section.name == ".debug_line")
                section.bytes = bytes.substr(0, size);
        EXPECT_THROW(readLines(cut), HException) << size;
    }
}

TEST(LineTableTest, InstructionsThatOthersWrite) {
    ElfFile elf(elfBytes(programWithLines()));
    for (ElfSection& section : elf.sections) {
        if (section.name != ".debug_line")
            continue;
        std::string& bytes = section.bytes;
        bytes.resize(10 + static_cast<uint8_t>(bytes[6])); // up to the end of the header
        bytes +=
            {9, 4,  0,    1,          // 4 bytes on, and a row
             8, 46, 6,    5,    0x7F, // 17 units on; 2 units and 3 lines on, and a row; statement; column
             0, 3,  0x70, 1,    2,    // an instruction of somebody's own
             0, 0,  3,    0x7E, 1,    // nothing; 2 lines back, and a row
             0, 1,  1};               // the end
        bytes[0] = static_cast<char>(bytes.size() - 4);
    }
    EXPECT_THAT(texts(readLines(elf)), ElementsAre("4 src/a.c:1", "23 src/a.c:4", "23 src/a.c:2", "23 end"));
}

TEST(LineTableTest, OtherVersionsArePassedOver) {
    ElfFile elf(elfBytes(programWithLines()));
    for (ElfSection& section : elf.sections)
        if (section.name == ".debug_line")
            section.bytes[4] = 5;
    EXPECT_THAT(readLines(elf).rows, IsEmpty());
}

} // namespace
