#pragma once

#include <string>
#include <vector>

/// The bytes of a library out of object files and libraries, whose members it takes one by one. Throws
/// HException if one of them is neither.
std::string makeLibrary(const std::vector<std::string>& inputs);

/// The members of a library and the symbols that each defines, a line for each, as text.
std::string listLibrary(const std::string& path);
