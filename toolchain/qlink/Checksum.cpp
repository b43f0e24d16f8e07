#include "toolchain/qlink/Checksum.h"

namespace {

/// Polynomial 1021, from FFFF, most significant bit first.
uint32_t crc16(std::string_view bytes) {
    uint32_t value = 0xFFFF;
    for (const char byte : bytes) {
        value ^= uint32_t{static_cast<uint8_t>(byte)} << 8;
        for (int bit = 0; bit < 8; ++bit)
            value = (value << 1 ^ (value & 0x8000 ? 0x1021 : 0)) & 0xFFFF;
    }
    return value;
}

/// Polynomial 04C11DB7 reflected, from all ones, inverted at the end.
uint32_t crc32(std::string_view bytes) {
    uint32_t value = 0xFFFFFFFF;
    for (const char byte : bytes) {
        value ^= static_cast<uint8_t>(byte);
        for (int bit = 0; bit < 8; ++bit)
            value = value >> 1 ^ (value & 1 ? 0xEDB88320 : 0);
    }
    return ~value;
}

uint32_t sum(std::string_view bytes) {
    uint32_t value = 0;
    for (const char byte : bytes)
        value += static_cast<uint8_t>(byte);
    return value;
}

uint32_t exclusiveOr(std::string_view bytes) {
    uint32_t value = 0;
    for (const char byte : bytes)
        value ^= static_cast<uint8_t>(byte);
    return value;
}

constexpr struct {
    std::string_view name;
    ChecksumFunction function;
} algorithms[] = {{"crc16", crc16}, {"crc32", crc32}, {"sum", sum}, {"xor", exclusiveOr}};

} // namespace

ChecksumFunction checksumAlgorithm(std::string_view name) {
    for (const auto& row : algorithms)
        if (row.name == name)
            return row.function;
    return nullptr;
}

std::string checksumAlgorithmNames() {
    std::string names;
    for (const auto& row : algorithms)
        names.append(names.empty() ? "" : ", ").append(row.name);
    return names;
}
