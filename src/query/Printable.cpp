#include "query/Printable.h"

#include <cstdint>

std::string printable(std::string_view text) {
    constexpr char digits[] = "0123456789ABCDEF";
    std::string result;
    for (const char character : text) {
        const auto byte = static_cast<uint8_t>(character);
        if ((byte & 0x7F) >= 0x20 && byte != 0x7F)
            result += character;
        else
            result.append("\\x").append(1, digits[byte >> 4]).append(1, digits[byte & 15]);
    }
    return result;
}
