#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

class ElfFile;

/// What a programmer puts into a device: bytes at an address.
struct LoadBlock {
    uint32_t address;
    std::string bytes;
};

/// The loaded contents of an executable by address; blocks that touch are one. Throws HException if two
/// overlap.
std::vector<LoadBlock> loadBlocks(const ElfFile& elf);

/// The blocks in a format: hex, srec, bin, txt or tek. `entry` is where the program starts. Throws HException
/// for another format, and for what the format can't hold.
std::string loadFile(std::string_view format, const std::vector<LoadBlock>& blocks, uint32_t entry);
/// The names of all formats, separated by ", ".
std::string loadFormatNames();
