#pragma once

#include <cstdint>

/// What clang's relocations for the MSP430 change.
struct RelocationRow {
    uint32_t type;
    uint32_t bytes; ///< 0: nothing
    bool relative;  ///< to the place that is changed
    bool jump;      ///< the ten bits of a jump
};

/// Null for a type that neither C nor assembly brings forth.
inline const RelocationRow* relocationRow(uint32_t type) {
    static constexpr RelocationRow rows[] = {
        {0, 0, false, false}, // R_MSP430_NONE
        {1, 4, false, false}, // R_MSP430_32
        {2, 2, true, true},   // R_MSP430_10_PCREL
        {3, 2, false, false}, // R_MSP430_16
        {4, 2, true, false},  // R_MSP430_16_PCREL
        {5, 2, false, false}, // R_MSP430_16_BYTE
        {6, 2, true, false},  // R_MSP430_16_PCREL_BYTE
        {9, 1, false, false}, // R_MSP430_8
    };
    for (const RelocationRow& row : rows)
        if (row.type == type)
            return &row;
    return nullptr;
}
