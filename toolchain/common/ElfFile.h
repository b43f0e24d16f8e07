#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

struct ElfRelocation {
    uint32_t offset; ///< in the section that it changes
    uint32_t type;
    uint32_t symbol; ///< index into ElfFile::symbols
    int32_t addend;
};

struct ElfSymbol {
    std::string name;
    uint32_t value = 0;
    uint32_t size = 0;
    uint8_t type = 0;     ///< STT_...
    uint8_t binding = 0;  ///< STB_...
    uint16_t section = 0; ///< index into ElfFile::sections, or SHN_...
};

struct ElfSection {
    std::string name;
    uint32_t type = 0; ///< SHT_...
    uint32_t flags = 0;
    uint32_t address = 0;
    uint32_t alignment = 1;
    uint32_t size = 0;
    uint32_t entrySize = 0;
    std::string bytes; ///< `size` of them; empty if the file holds none for it
    std::vector<ElfRelocation> relocations;

    bool holdsCode() const;
    bool isAllocated() const;
};

/// A 32-bit ELF file for the MSP430, relocatable or executable, out of its bytes. Sections have the indices
/// that they have in the file, so the first is the empty one.
class ElfFile {
public:
    /// Throws HException if the bytes are no such file.
    explicit ElfFile(std::string_view bytes);

    /// The section of that name; null if there is none.
    const ElfSection* find(std::string_view name) const;

    std::vector<ElfSection> sections;
    std::vector<ElfSymbol> symbols;
    uint32_t entry = 0;
    bool isExecutable = false;
    bool isExtended = false; ///< for the MSP430X; an executable alone says so
};
