#include "object/SOBFMSP430Fields.h"
#include "object/SOBFMSP430Insn.h"

#include <algorithm>
#include <iterator>

// The opcode word goes out first, then a word for each operand. Upper bits of a 20-bit value find their place
// in a word that is out already.

using namespace msp430;

namespace {

/// CALLA with a word behind it, by the upper twelve bits.
bool isCallWithWord(unsigned word) {
    const unsigned kind = word & 0xFFF0;
    return kind == CALLA_Absolute || kind == CALLA_Symbolic || kind == CALLA_Immediate;
}

/// The address forms that have a word behind them, by addressOperation.
bool isAddressFormWithWord(unsigned word) {
    constexpr unsigned withWord[] = {0x20, 0x30, 0x60, 0x70, 0x80, 0x90, 0xA0, 0xB0};
    return std::find(std::begin(withWord), std::end(withWord), word & addressOperation) != std::end(withWord);
}

} // namespace

void SOBFMSP430Insn::encode() {
    byteCount = 0;
    const unsigned word = opcode & 0xFFFF;
    if (isExtended())
        encodeExtended();
    else if (formatIII())
        encodeWord(operand() ? word + wordDisplacement(operand()->evaluate().value, displacement) : word, 2);
    else if (isCallWithWord(word))
        encodeAddress(operand(), 0, (word & 0xFFF0) == CALLA_Symbolic);
    else if (isAddressFormWithWord(word))
        encodeAddress(destination() ? destination() : source(), 8, false);
    else
        encodePlain();
}

/// Formats I and II, and words of no format.
void SOBFMSP430Insn::encodePlain() {
    const unsigned word = opcode & 0xFFFF;
    encodeWord(word, 2);
    if (word < 0x1000)
        return;
    if (formatII()) {
        if (operand())
            encodeOperand(operand(), (word & operandField) == operandSymbolic);
        return;
    }
    if (source())
        encodeOperand(source(), (word & sourceField) == sourceSymbolic);
    if (destination())
        encodeOperand(destination(), (word & destinationField) == destinationSymbolic);
}

void SOBFMSP430Insn::encodeExtended() {
    const unsigned word = opcode & 0xFFFF;
    encodeWord(opcode >> 16, 2);
    encodeWord(word, 2);
    if (formatII()) {
        if (operand())
            addToFirstWord(encodeOperand(operand(), (word & operandField) == operandSymbolic) << 7);
        return;
    }
    if (source())
        addToFirstWord(encodeOperand(source(), (word & sourceField) == sourceSymbolic) << 7);
    if (destination())
        addToFirstWord(encodeOperand(destination(), (word & destinationField) == destinationSymbolic));
}

/// The forms whose own word takes the upper bits of the value, from bit `shift` up.
void SOBFMSP430Insn::encodeAddress(const SOBFExpr* expression, unsigned shift, bool symbolic) {
    encodeWord(opcode & 0xFFFF, 2);
    if (expression)
        addToFirstWord(encodeOperand(expression, symbolic) << shift);
}

/// Appends the word of an operand, and returns bits 16 to 19 of its value. What a symbolic operand holds is
/// the distance from that word itself.
unsigned SOBFMSP430Insn::encodeOperand(const SOBFExpr* expression, bool symbolic) {
    auto value = static_cast<uint64_t>(expression->evaluate().value);
    if (symbolic)
        value -= static_cast<uint64_t>(int64_t{pc} + byteCount);
    encodeWord(value & 0xFFFF, 2);
    return upperBits(value);
}

void SOBFMSP430Insn::addToFirstWord(unsigned bits) {
    bytes[0] = static_cast<uint8_t>(bytes[0] | bits);
    bytes[1] = static_cast<uint8_t>(bytes[1] | bits >> 8);
}

void SOBFMSP430Insn::encodeBranch(uint32_t target) {
    byteCount = 0;
    if (!g_msp430x)
        target &= 0xFFFF;
    encodeWord(target <= 0xFFFF ? unsigned{BR_Immediate} : MOVA_Immediate_PC | upperBits(target) << 8, 2);
    encodeWord(target & 0xFFFF, 2);
}
