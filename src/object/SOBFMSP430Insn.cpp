#include "object/SOBFMSP430Insn.h"

#include "foundation/HException.h"
#include "object/SOBFMSP430Fields.h"
#include "object/SOBFPseudoInsn.h"
#include "object/SOBFWriter.h"

#include <iterator>

using namespace msp430;

bool g_msp430x = false;

namespace {

/// A value that comes out of the constant generator, and the mode and register that ask for it.
struct GeneratedConstant {
    uint64_t value;
    Mode mode;
    unsigned number;
};
constexpr GeneratedConstant allOnes = {~uint64_t{0}, IndirectIncrement, R3};
constexpr GeneratedConstant generatedConstants[] = {
    {0, Direct, R3}, {1, Indexed, R3}, {2, Indirect, R3}, {4, Indirect, SR}, {8, IndirectIncrement, SR},
};

/// The constant that `value` is under the mask; null if the generator does not have it.
const GeneratedConstant* generatedConstant(uint64_t value, uint64_t mask) {
    if ((value & mask) == mask)
        return &allOnes;
    for (const GeneratedConstant& each : generatedConstants)
        if ((value & mask) == each.value)
            return &each;
    return nullptr;
}

/// The bits of a value that an instruction looks at.
uint64_t widthMask(unsigned opcode) {
    if (opcode < firstExtended)
        return opcode & byteBit ? 0xFF : 0xFFFF;
    switch (opcode & widthBits) {
    case widthAddress:
        return 0xFFFFF;
    case widthWord:
        return 0xFFFF;
    case widthByte:
        return 0xFF;
    default:
        return ~uint64_t{0};
    }
}

/// From the word behind it, a jump reaches this many words back, and all but the last of as many forward.
constexpr unsigned reach = 0x200;

bool outOfReach(unsigned words, unsigned mask) { return words >= reach && words <= mask - reach; }

} // namespace

SOBFMSP430Insn::SOBFMSP430Insn(unsigned word, SOBFExpr* from, SOBFExpr* to, bool optimise)
    : SOBFProcessorInsn(word) {
    operand1 = from;
    operand2 = to;
    if (optimise)
        useConstantGenerator();
}

void SOBFMSP430Insn::useConstantGenerator() {
    // PUSH through @SP takes its indexed form, 0(SP).
    if (opcode == 0x1221 || opcode == 0x1261) {
        opcode -= 0x10;
        operand1 = new SOBFConstExpr(0);
    }
    const bool two = formatI() && (opcode & sourceField) == sourceImmediate;
    const bool one = opcode >= 0x1000 && opcode < 0x1300 && (opcode & operandField) == operandImmediate;
    if (!source() || (!two && !one))
        return;
    const SOBFExprValue value = source()->evaluate();
    if (value.failed || value.section)
        return;
    const auto* found =
        generatedConstant(static_cast<uint64_t>(value.value), two ? widthMask(opcode) : 0xFFFF);
    // Processors without the extension may not push 4 and 8 out of the generator.
    if (!found || (one && found->number == SR && !g_msp430x))
        return;
    if (two)
        opcode = (opcode & ~sourceField) | found->number << 8 | found->mode << 4;
    else
        opcode = (opcode & ~operandField) | found->mode << 4 | found->number;
    operand1 = nullptr;
}

bool SOBFMSP430Insn::formatI() const { return (opcode & 0xFFFF) >= 0x4000; }

bool SOBFMSP430Insn::formatII() const { return (opcode & 0xFFFF) >= 0x1000 && (opcode & 0xFFFF) < 0x1800; }

bool SOBFMSP430Insn::formatIII() const { return (opcode & 0xFFFF) >= 0x2000 && (opcode & 0xFFFF) < 0x4000; }

bool SOBFMSP430Insn::isExtended() const { return opcode >= firstExtended; }

int SOBFMSP430Insn::length() {
    const int operands = (source() ? 2 : 0) + (destination() ? 2 : 0);
    if (isExtended())
        return 4 + operands;
    if (opcode > 0xFFFF)
        return 6;
    return formatIII() ? 2 : 2 + operands;
}

unsigned SOBFMSP430Insn::wordDisplacement(int64_t target, unsigned mask) const {
    const uint64_t distance = static_cast<uint64_t>(target) - static_cast<uint64_t>(int64_t{pc}) - 2;
    return static_cast<unsigned>(distance >> 1) & mask;
}

int SOBFMSP430Insn::estimatedLength() {
    if (opcode > 0xFFFF || !formatIII() || !operand() || pc == -1)
        return length();
    const SOBFExprValue target = operand()->evaluate();
    if (target.failed || !outOfReach(wordDisplacement(target.value, 0xFFFF), 0xFFFF))
        return 2;
    switch (opcode & jumpBits) {
    case JMP:
        return 4;
    case JN:
        return 8;
    default:
        return 6;
    }
}

unsigned SOBFMSP430Insn::invertedJump(unsigned word) {
    switch (word & jumpBits) {
    case JNZ:
        return JZ;
    case JZ:
        return JNZ;
    case JNC:
        return JC;
    case JC:
        return JNC;
    case JGE:
        return JL;
    case JL:
        return JGE;
    case JN:
        throw HException("JN branch out of range");
    case JMP:
        throw HException("JMP branch out of range (should never happen)");
    default:
        throw HException("problem in insn");
    }
}

bool SOBFMSP430Insn::recode(SOBFInsnList& list, SOBFInsnList::iterator& position) {
    SOBFExpr* const target = operand();
    if (opcode > 0xFFFF || !formatIII() || !target || pc == -1)
        return false;
    const SOBFExprValue value = target->evaluate();
    const unsigned mask = g_msp430x ? 0xFFFFF : 0xFFFF;
    if (value.failed || !outOfReach(wordDisplacement(value.value, mask), mask))
        return false;
    if ((opcode & jumpBits) == JMP) {
        opcode = g_msp430x ? MOVA_Immediate_PC : BR_Immediate;
        operand1 = target;
        operand2 = nullptr;
    } else {
        relaxConditional(list, position);
    }
    return true;
}

/// Makes this jump skip a JMP to the target. JN has no opposite, so it goes to that JMP instead, and what
/// follows if it is not taken is a JMP that skips the other one.
void SOBFMSP430Insn::relaxConditional(SOBFInsnList& list, SOBFInsnList::iterator& position) {
    SOBFExpr* const target = operand();
    ++position;
    const auto add = [&](SOBFInsn* record) {
        record->fragment = fragment;
        position = std::next(list.insert(position, record));
    };
    const auto addJump = [&](SOBFExpr* to) {
        auto* jump = new SOBFMSP430Insn(JMP, to, nullptr, true);
        jump->locus = locus;
        jump->stackAdjust = stackAdjust;
        jump->hidden = hidden;
        add(jump);
    };
    auto* const behind = new SOBFMarker;
    SOBFMarker* next = behind;
    if ((opcode & jumpBits) == JN) {
        next = new SOBFMarker;
        addJump(new SOBFMarkerExpr(behind));
        add(next);
    } else {
        opcode = invertedJump(opcode);
    }
    operand1 = new SOBFMarkerExpr(next);
    operand2 = nullptr;
    addJump(target);
    add(behind);
}

void SOBFMSP430Insn::externalize(SOBFWriter& writer) {
    externalizeCommon(writer);
    if (!source() && !destination()) {
        writer.writeTag(TAG_NULL_NULL);
    } else {
        for (SOBFExpr* each : {source(), destination()}) {
            if (each)
                each->externalize(writer);
            else
                writer.writeTag(TAG_NULL);
        }
    }
    writer.externalizeLiteral(opcode);
    writer.writeTag(TAG_INSN);
    if (extensionWord & 0xFFFF) {
        writer.externalizeLiteral(extensionWord & 0xFFFF);
        writer.writeTag(TAG_EXTENSION_WORD);
    }
    if (byteCount) {
        writer.externalizeString(encodedBytes());
        writer.writeTag(TAG_SETBYTES);
    }
}
