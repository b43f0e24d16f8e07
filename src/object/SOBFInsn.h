#pragma once

#include "object/SOBFContainers.h"
#include "object/SOBFExpr.h"

#include <string>
#include <string_view>

class SOBFFragment;
class SOBFInsn;
class SOBFLocus;

using SOBFInsnList = PoolList<SOBFInsn*>;

/// One record of a section: a processor's instruction, or one of the pseudo records of SOBFPseudoInsn.h.
class SOBFInsn : public SOBFObject {
public:
    /// The record as a line of assembly, without its address and bytes.
    virtual std::string printString() { return {}; }
    /// The address: six hexadecimal digits, or dashes if it is unknown.
    virtual std::string printPC() const;
    /// The encoded bytes, two hexadecimal digits each.
    virtual std::string printOpCode() const;
    /// Bytes that the record takes; never negative.
    virtual int length() = 0;
    /// The same before addresses are final.
    virtual int estimatedLength() { return length(); }
    /// The byte at an offset within `length()`; 0 where nothing was encoded.
    virtual uint8_t getByte(int offset);
    virtual void setPC(long address) { pc = static_cast<int>(address); }
    /// Replaces the record at `position` by an equivalent that reaches further, if it has to. `position` is
    /// then behind the last record added. Returns whether anything changed. Throws HException.
    virtual bool recode(SOBFInsnList& /*list*/, SOBFInsnList::iterator& /*position*/) { return false; }
    /// Fills `bytes` from what the operands evaluate to.
    virtual void encode() {}
    virtual void writeInstrumentationData(SOBFWriter& writer);
    virtual void externalize(SOBFWriter& writer) = 0;

    /// Stores the first `count` bytes of the record in `image`.
    virtual void copyBytes(uint8_t* image, int count);

    /// Appends the low `count` bytes of a value, 1 to 4 of them. A big-endian value of another width appends
    /// nothing.
    void encodeWord(int64_t value, int count, bool bigEndian = false);
    void appendByte(uint8_t byte);
    void appendBytes(std::string_view more);
    std::string_view encodedBytes() const {
        return {reinterpret_cast<const char*>(bytes), static_cast<size_t>(byteCount)};
    }

    SOBFFragment* fragment = nullptr;
    SOBFLocus* locus = nullptr; ///< the source line, or null
    int byteCount = 0;
    int byteCapacity = sizeof firstBytes;
    uint8_t* bytes = firstBytes; ///< the encoded form; grows within the pool
    bool hidden = false;
    int stackAdjust = 1;
    int extensionWord = 0;
    int instrumentation = 0;
    int pc = -1; ///< the address, -1 if it is unknown
    SOBFExpr* operand1 = nullptr;
    SOBFExpr* operand2 = nullptr;
    SOBFExpr* operand3 = nullptr;
    SOBFExpr* operand4 = nullptr;

protected:
    /// What every record writes first: its address and the stack adjustment, if it is a new one.
    void externalizeCommon(SOBFWriter& writer);
    void addReferences(References& references) override;

private:
    uint8_t firstBytes[8] = {};
};

/// A machine instruction. What the opcode and the operands mean is the processor's affair.
class SOBFProcessorInsn : public SOBFInsn {
public:
    explicit SOBFProcessorInsn(uint32_t o) : opcode(o) {}

    uint32_t opcode;
};
