#pragma once

#include <string>
#include <string_view>
#include <vector>

class HString;
class SOBFModule;

// What the tools agree on beyond the format of object files: docs/manual/toolchain.md has it for users.

/// The flags of a section.
namespace section_flags {
constexpr int Code = 1;
constexpr int Writable = 2;
constexpr int Zeroed = 4; ///< holds no values; the start-up code clears it
} // namespace section_flags

/// The sections that take what has no section of its own.
struct SectionNames {
    std::string code = "CODE";
    std::string data = "IDATA0";
    std::string zeroed = "UDATA0";
    std::string constant = "CONST";
    std::string vector = "INTVEC";
};

/// Attributes of a module.
namespace attributes {
constexpr std::string_view dependencies = "dependencies"; ///< paths, separated by ";"
constexpr std::string_view weak = "weak";           ///< symbols that give way, or that need not be there
constexpr std::string_view common = "common";       ///< zeroed symbols of which the largest counts
constexpr std::string_view keep = "keep";           ///< symbols that stay though nothing refers to them
constexpr std::string_view processor = "processor"; ///< "MSP430" or "MSP430X"
constexpr std::string_view doubleBits = "double";   ///< bits of a double: "32" or "64"
} // namespace attributes

/// The interned text, as it stands.
HString* intern(std::string_view text);

/// The entries of an attribute that is a list; empty if the module does not have it.
std::vector<std::string_view> listAttribute(const SOBFModule& module, std::string_view key);
void setAttribute(SOBFModule& module, std::string_view key, std::string_view value);
/// Joins entries with ";". An empty list sets nothing.
void setListAttribute(SOBFModule& module, std::string_view key, const std::vector<std::string>& entries);
