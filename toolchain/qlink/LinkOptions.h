#pragma once

#include "toolchain/common/Tool.h"

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

/// Addresses from `start` up to, but not with, `end`.
struct AddressRange {
    uint32_t start;
    uint32_t end;
};

/// A word that says where sections go.
struct Placement {
    std::vector<std::string> sections; ///< in the order in which they are placed
    std::vector<AddressRange> ranges;
};

/// What the words of the linker's command line ask for.
struct LinkOptions {
    std::vector<std::string> inputs; ///< objects and libraries
    std::string output;
    std::string mapFile; ///< empty: none
    std::string entry = "_start";
    std::vector<std::pair<std::string, std::string>>
        definitions; ///< a symbol, and a number or another symbol
    std::vector<std::string> keep;
    std::vector<Placement> placements;
    std::vector<std::string> loaded; ///< sections whose contents lie where they are used
    std::vector<std::string> checksumSections;
    std::string checksumAlgorithm;
    bool debug = false; ///< source lines go into the executable
    bool dropUnused = false;
    bool extended = false; ///< the MSP430X
};

void addLinkWords(Tool& tool, LinkOptions& options);

/// The placement that a "-T" word asks for, given without its "-T". Throws HException if it can't be read.
Placement parsePlacement(const std::string& text);
