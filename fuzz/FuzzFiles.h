#pragma once

#include "support/MemoryFiles.h"

#include <string_view>
#include <vector>

/// The parts of an input, which a line "===" divides.
inline std::vector<std::string_view> partsOf(std::string_view input) {
    constexpr std::string_view divider = "\n===\n";
    std::vector<std::string_view> parts;
    for (;;) {
        const size_t end = input.find(divider);
        parts.push_back(input.substr(0, end));
        if (end == std::string_view::npos)
            return parts;
        input.remove_prefix(end + divider.size());
    }
}
