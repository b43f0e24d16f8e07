#include "memorymap/NumberText.h"

#include <algorithm>

namespace {

bool isSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

/// The value of a digit of any base; what is none counts by its distance from "A".
uint64_t digitValue(char c) {
    if (c >= '0' && c <= '9')
        return static_cast<uint64_t>(c - '0');
    if (c >= 'a' && c <= 'z')
        return static_cast<uint64_t>(c - 'a' + 10);
    return static_cast<uint64_t>(static_cast<unsigned char>(c)) - 0x37;
}

uint64_t takeBase(std::string_view& text) {
    if (!text.starts_with('0'))
        return 10;
    const bool hexadecimal = text.starts_with("0x");
    if (!hexadecimal && !text.starts_with("0b"))
        return 8;
    text.remove_prefix(2);
    return hexadecimal ? 16 : 2;
}

} // namespace

uint64_t fromStringTouint64(std::string_view text) {
    text.remove_prefix(
        static_cast<size_t>(std::find_if_not(text.begin(), text.end(), isSpace) - text.begin()));
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+'))
        text.remove_prefix(1);
    const uint64_t base = takeBase(text);
    uint64_t value = 0;
    for (char c : text)
        value = value * base + digitValue(c);
    return negative ? 0 - value : value;
}

int64_t fromStringToint64(std::string_view text) { return static_cast<int64_t>(fromStringTouint64(text)); }
