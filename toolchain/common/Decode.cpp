#include "toolchain/common/Decode.h"

#include "object/SOBFMSP430Fields.h"

using namespace msp430;

namespace {

class Decoder {
public:
    explicit Decoder(std::string_view bytes) : m_bytes(bytes) {}

    std::optional<DecodedInsn> decode(bool extended) {
        if (m_bytes.size() < 2)
            return {};
        const unsigned word = wordAt(0);
        m_insn.length = 2;
        m_insn.opcode = word;
        if (word >= 0x4000)
            decodeFormatI(word);
        else if (word >= 0x2000)
            decodeJump(word);
        else if (word >= 0x1000 && word <= 0x1300 && isFormatII(word))
            decodeFormatII(word);
        else if (!extended || !(word >= 0x1800 ? decodeBehindExtension(word) : decodeAddressForm(word)))
            return {};
        if (m_insn.length > m_bytes.size())
            return {};
        return m_insn;
    }

private:
    unsigned wordAt(size_t offset) const {
        if (offset + 2 > m_bytes.size())
            return 0;
        return static_cast<uint8_t>(m_bytes[offset]) | unsigned{static_cast<uint8_t>(m_bytes[offset + 1])}
                                                           << 8;
    }

    DecodedInsn::Operand nextOperand() {
        DecodedInsn::Operand operand;
        operand.at = m_insn.length;
        operand.value = wordAt(m_insn.length);
        m_insn.length += 2;
        return operand;
    }

    /// The word of a source operand, if its mode has one.
    void takeSource(unsigned operandMode, unsigned number) {
        const bool immediate = operandMode == IndirectIncrement && number == PC;
        if (!immediate && (operandMode != Indexed || number == R3))
            return;
        m_insn.source = nextOperand();
        m_insn.source.symbolic = !immediate && number == PC;
        m_insn.source.indexed = !immediate && number != PC && number != SR;
    }

    void decodeFormatI(unsigned word) {
        takeSource(mode(word), sourceRegister(word));
        if (!destinationIndexed(word))
            return;
        const unsigned number = destinationRegister(word);
        m_insn.destination = nextOperand();
        m_insn.destination.symbolic = number == PC;
        m_insn.destination.indexed = number != PC && number != SR;
    }

    void decodeFormatII(unsigned word) {
        if (word != 0x1300)
            takeSource(mode(word), destinationRegister(word));
    }

    void decodeJump(unsigned word) {
        const int words = static_cast<int>(word & displacement);
        m_insn.isJump = true;
        m_insn.jumpOffset = 2 + 2 * (words >= 0x200 ? words - 0x400 : words);
        m_insn.opcode = word & jumpBits;
    }

    /// RRC, SWPB, RRA, SXT, PUSH and CALL, those in bytes where there are any, and RETI. An immediate can't
    /// be changed, only pushed or called.
    static bool isFormatII(unsigned word) {
        const unsigned operation = word >> 6 & 15;
        if (word == 0x1300)
            return true;
        if (word >= 0x1300 || operation == 3 || operation == 7 || operation == 11)
            return false;
        return operation >= 8 || (word & operandField) != operandImmediate;
    }

    static uint32_t upper(unsigned bits) { return (bits & 15) << 16; }

    /// Bits of values move from the extension word to the operands. Without operand words they are a
    /// repetition.
    bool decodeBehindExtension(unsigned extension) {
        const unsigned word = wordAt(2);
        m_insn.length = 4;
        m_insn.isExtended = true;
        m_insn.opcode = extension << 16 | word;
        if (word >= 0x4000)
            decodeFormatI(word);
        else if (word >= 0x1000 && word < 0x1280 && isFormatII(word))
            decodeFormatII(word);
        else
            return false;
        if (extension & 0x30)
            return false;
        if (m_insn.source.isThere() || m_insn.destination.isThere()) {
            m_insn.source.value |= m_insn.source.isThere() ? upper(extension >> 7) : 0;
            m_insn.destination.value |= m_insn.destination.isThere() ? upper(extension) : 0;
            const unsigned unused = (m_insn.source.isThere() ? 0 : extension & 0x780) |
                                    (m_insn.destination.isThere() ? 0 : extension & 0xF);
            m_insn.opcode = (0x1800 | (extension & 0x40) | unused) << 16 | word;
        }
        return true;
    }

    /// What is below 0x1000, and CALLA, PUSHM and POPM.
    bool decodeAddressForm(unsigned word) {
        if (word >= 0x1400)
            return word < 0x1800;
        if (word >= 0x1300)
            return decodeCall(word);
        if (word >= 0x1000)
            return false;
        const unsigned form = word >> 4 & 15;
        if (form == 4 || form == 5)
            return true;
        if (form == 3 || form == 7) {
            m_insn.source = nextOperand();
        } else if (form == 2 || (form >= 8 && form <= 11)) {
            m_insn.source = nextOperand();
            m_insn.source.value |= upper(word >> 8);
            m_insn.opcode = word & 0xF0FF;
        } else if (form == 6) {
            m_insn.destination = nextOperand();
            m_insn.destination.value |= upper(word);
            // The records keep the upper bits of every address form in one place, which is not this one's.
            return (word & 15) == 0;
        }
        return true;
    }

    bool decodeCall(unsigned word) {
        switch (word >> 4 & 15) {
        case 4:
        case 6:
        case 7:
            return true;
        case 5:
            m_insn.source = nextOperand();
            m_insn.source.indexed = true;
            return (word & 15) != PC;
        case 8:
        case 9:
        case 11:
            m_insn.source = nextOperand();
            m_insn.source.value |= upper(word);
            m_insn.source.symbolic = (word & 0xFFF0) == CALLA_Symbolic;
            m_insn.opcode = word & 0xFFF0;
            return true;
        default:
            return false;
        }
    }

    std::string_view m_bytes;
    DecodedInsn m_insn;
};

} // namespace

std::optional<DecodedInsn> decodeInsn(std::string_view bytes, bool extended) {
    return Decoder(bytes).decode(extended);
}
