#pragma once

#include <cstdint>
#include <string_view>

/// A number out of its text: white space, a sign, then "0x" for base 16, "0b" for base 2, another "0" for
/// base 8, and all the rest digits. Nothing is checked: a digit beyond the base and a character that is no
/// digit at all count by their code, and what does not fit into 64 bits wraps. An empty text is 0.
int64_t fromStringToint64(std::string_view text);
uint64_t fromStringTouint64(std::string_view text);
