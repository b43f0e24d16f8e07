#pragma once

#include <optional>
#include <string>

class Tool;
struct LinkOptions;

/// What a link makes.
struct LinkResult {
    std::string executable; ///< the bytes of the ELF file
    std::string map;        ///< empty unless asked for
};

/// Links. Nothing if an error was told. Throws HException.
std::optional<LinkResult> linkInMemory(Tool& tool, const LinkOptions& options);

/// The same, and writes the files. False if an error was told. Throws HException.
bool linkProgram(Tool& tool, const LinkOptions& options);
