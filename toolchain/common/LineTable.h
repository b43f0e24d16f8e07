#pragma once

#include <cstdint>
#include <string>
#include <vector>

class ElfFile;

/// Where the code of one source line begins.
struct LineRow {
    uint32_t section; ///< index of the section in the ELF file; 0 in an executable
    uint32_t address; ///< in that section; in an executable the address itself
    uint32_t file;    ///< index into LineTable::files
    uint32_t line;    ///< 0: what follows belongs to no line
    bool isEnd;       ///< the first address behind a run of lines
};

/// Which source line code comes from: the part of the debug information that a linker and a listing need.
struct LineTable {
    std::vector<std::string> files; ///< as the compiler was told of them
    std::vector<LineRow> rows;      ///< in the order of the file
};

/// The lines of an ELF file, relocatable or executable. Empty if it has none, or none in a version from 2
/// to 4. Throws HException if they are damaged.
LineTable readLines(const ElfFile& file);

/// A `.debug_line` section with these rows, whose addresses are absolute. `files` are written without
/// directories.
std::string writeLines(const LineTable& table);
