#pragma once

#include "object/SOBFInsn.h"

/// Whether the target processor has the 20-bit extension. It decides how far branches reach and whether PUSH
/// may take the constants 4 and 8 out of the constant generator.
extern bool g_msp430x;

/// An instruction of the MSP430 or MSP430X: an opcode word and up to two operand expressions. One-operand
/// forms and jumps have their operand in `source`. SOBFMSP430Fields.h shows the opcode word.
///
/// Any opcode and any operands are safe: an instruction that the processor does not know encodes as its words
/// and prints as "???".
class SOBFMSP430Insn : public SOBFProcessorInsn {
public:
    /// Operands may be null. With `optimise`, an immediate that the constant generator has loses its word.
    SOBFMSP430Insn(unsigned opcode, SOBFExpr* source, SOBFExpr* destination, bool optimise);

    SOBFExpr* source() const { return operand1; }
    SOBFExpr* destination() const { return operand2; }

    /// Two operands; by the instruction word, extended or not, as the next two.
    bool formatI() const;
    /// One operand, with RETI, CALLA, PUSHM and POPM.
    bool formatII() const;
    /// Jumps.
    bool formatIII() const;
    /// Whether an extension word stands in front.
    bool isExtended() const;

    /// Assembly text, its columns separated by tabs.
    std::string printString() override;
    int length() override;
    /// The length before addresses are final: a jump that does not reach counts as what `recode` makes of it.
    int estimatedLength() override;
    /// Replaces a jump that does not reach its target by records that do. False, with nothing changed, if the
    /// target is in reach, or the target or the address of the jump is not known. A jump that turns into a
    /// branch on the spot adds no record, so `position` stays.
    bool recode(SOBFInsnList& list, SOBFInsnList::iterator& position) override;
    /// Makes `bytes` anew. An operand that can't be evaluated enters with the value that came with the
    /// failure.
    void encode() override;
    /// Makes `bytes` anew as a branch to `target`.
    void encodeBranch(uint32_t target);
    void externalize(SOBFWriter& writer) override;

    /// The jump on the opposite condition. Throws HException for words that have none.
    static unsigned invertedJump(unsigned opcode);

private:
    void useConstantGenerator();
    /// The one operand of formats II and III.
    SOBFExpr* operand() const { return source() ? source() : destination(); }
    /// The distance to the target of a jump, in words, from the word behind it.
    unsigned wordDisplacement(int64_t target, unsigned mask) const;

    void relaxConditional(SOBFInsnList& list, SOBFInsnList::iterator& position);

    void encodePlain();
    void encodeExtended();
    void encodeAddress(const SOBFExpr* expression, unsigned shift, bool symbolic);
    unsigned encodeOperand(const SOBFExpr* expression, bool symbolic);
    void addToFirstWord(unsigned bits);

    std::string printFormatI() const;
    std::string printFormatII() const;
    std::string printJump() const;
    std::string printExtended() const;
};
