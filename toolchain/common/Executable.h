#pragma once

#include "toolchain/common/LineTable.h"

#include <cstdint>
#include <string>
#include <vector>

/// A linked program, as an ELF file holds it.
struct Executable {
    struct Section {
        std::string name;
        uint32_t address = 0;
        uint32_t size = 0;
        int flags = 0;     ///< those of section_flags
        std::string bytes; ///< `size` of them if the section is loaded, else empty
    };
    struct Symbol {
        std::string name;
        uint32_t value = 0;
        uint32_t size = 0;
        bool isFunction = false;
        bool isObject = false;
        bool isGlobal = false;
        int section = -1; ///< index into `sections`; -1: an absolute value
    };

    std::vector<Section> sections;
    std::vector<Symbol> symbols;
    LineTable lines; ///< of addresses; no debug information is written without rows
    uint32_t entry = 0;
    bool isExtended = false; ///< for the MSP430X
};

/// The bytes of the ELF file.
std::string elfBytes(const Executable& program);
