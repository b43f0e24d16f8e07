#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

/// A machine instruction taken apart, in the form of the records: the opcode without the bits that belong to
/// a value, and where the values are.
struct DecodedInsn {
    struct Operand {
        unsigned at = 0;      ///< offset of its word from the start of the instruction; 0 if there is none
        uint32_t value = 0;   ///< as it stands there: of a symbolic operand the distance
        bool indexed = false; ///< added to a register, so that a sign makes sense
        bool symbolic = false;
        bool isThere() const { return at != 0; }
    };

    uint32_t opcode = 0;
    unsigned length = 0; ///< bytes
    Operand source;
    Operand destination;
    bool isJump = false;
    int jumpOffset = 0; ///< from the start of the jump to its target

    /// Whether a 20-bit value lies across two words.
    bool isExtended = false;
};

/// The instruction at the front of `bytes`, nothing if they do not begin with one. The instructions of the
/// MSP430X count with `extended` only.
std::optional<DecodedInsn> decodeInsn(std::string_view bytes, bool extended);
