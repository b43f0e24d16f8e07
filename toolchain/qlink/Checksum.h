#pragma once

#include <cstdint>
#include <string>
#include <string_view>

using ChecksumFunction = uint32_t (*)(std::string_view bytes);

/// The function behind a name in lower case; null if there is none.
ChecksumFunction checksumAlgorithm(std::string_view name);
/// The names of all of them, separated by ", ".
std::string checksumAlgorithmNames();
