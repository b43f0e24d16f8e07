#pragma once

#include <functional>
#include <string>

class ElfFile;

/// The contents of a source file; empty if it can't be read.
using SourceReader = std::function<std::string(const std::string& path)>;

/// A listing of an executable: for each section labels, source lines if the executable knows them, addresses,
/// bytes and instructions, and other contents in hexadecimal. With a null reader a source line is told by its
/// number alone.
std::string listingOf(const ElfFile& elf, const SourceReader& readSource);
