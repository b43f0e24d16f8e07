#pragma once

#include <cstdint>

/// Where the fields of an MSP430 instruction lie, most significant bit first.
///
///     format I     oooo ssss ABaa dddd   operation, source register, Ad, byte, As, destination register
///     format II    0001 00oo oBaa rrrr   operation, byte, As, register
///     format III   001c ccnn nnnn nnnn   condition, displacement in words
///     address      0000 ssss oooo dddd   operation on 20 bits; immediate and absolute forms have the upper
///     four
///                                        bits of the value in place of a register
///     extension    0001 1hhh hL00 llll   in front of formats I and II: upper four bits of the source and of
///     the
///                                        destination value, L for the width; without values h has the repeat
///                                        form and l the count or the register
///
/// An opcode word holds the extension word in its upper and the instruction word in its lower half.
///
/// The modes are 0 register, 1 indexed, 2 indirect, 3 indirect with increment. With some registers they mean
/// something else, because an index on R3 and most of what SR could be used for are of no use:
///
///     x(PC)  symbolic: the word is the distance to the operand        @PC+   immediate
///     x(SR)  absolute                                                 @SR @SR+  the constants 4 and 8
///     R3 x(R3) @R3 @R3+   the constants 0, 1, 2 and -1, without a word
namespace msp430 {

constexpr unsigned PC = 0, SP = 1, SR = 2, R3 = 3;
enum Mode : unsigned { Direct = 0, Indexed = 1, Indirect = 2, IndirectIncrement = 3 };

constexpr unsigned firstExtended = 0x1800'0000;

constexpr unsigned byteBit = 0b0000'0000'0100'0000;
constexpr unsigned sourceField = 0b0000'1111'0011'0000;      ///< source register and As of format I
constexpr unsigned destinationField = 0b0000'0000'1000'1111; ///< Ad and destination register of format I
constexpr unsigned operandField = 0b0000'0000'0011'1111;     ///< As and register of format II
constexpr unsigned condition = 0b0001'1100'0000'0000;        ///< of format III
constexpr unsigned displacement = 0b0000'0011'1111'1111;     ///< of format III
constexpr unsigned jumpBits = 0b1111'1100'0000'0000;         ///< format and condition of format III
constexpr unsigned addressOperation = 0b1111'0000'1111'0000; ///< of the address forms

/// The width of an extended instruction: L of the extension word and the byte bit of the instruction word.
constexpr unsigned widthBits = 0x0040'0040;
constexpr unsigned widthAddress = 0x0000'0040, widthWord = 0x0040'0000, widthByte = 0x0040'0040;
/// An extended instruction without operand words repeats itself; this bit says that a register has the count.
constexpr unsigned countInRegister = 0x0080'0000;

constexpr unsigned sourceSymbolic = 0x0010, sourceImmediate = 0x0030;   ///< in sourceField
constexpr unsigned destinationSymbolic = 0x0080;                        ///< in destinationField
constexpr unsigned operandSymbolic = 0x0010, operandImmediate = 0x0030; ///< in operandField

enum Word : unsigned {
    MOVA_Immediate_PC = 0x0080,
    CALLA_Absolute = 0x1380,
    CALLA_Symbolic = 0x1390,
    CALLA_Immediate = 0x13B0,
    JNZ = 0x2000,
    JZ = 0x2400,
    JNC = 0x2800,
    JC = 0x2C00,
    JN = 0x3000,
    JGE = 0x3400,
    JL = 0x3800,
    JMP = 0x3C00,
    BR_Immediate = 0x4030, ///< MOV #x, PC
};

constexpr unsigned sourceRegister(unsigned word) { return word >> 8 & 15; }
constexpr unsigned destinationRegister(unsigned word) { return word & 15; }
constexpr unsigned mode(unsigned word) { return word >> 4 & 3; }
constexpr bool destinationIndexed(unsigned word) { return (word & 0x80) != 0; }

/// Bits 16 to 19 of a value, which have no room in its word.
constexpr unsigned upperBits(uint64_t value) { return static_cast<unsigned>(value >> 16 & 15); }

} // namespace msp430
