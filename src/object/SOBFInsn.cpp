#include "object/SOBFInsn.h"

#include "object/SOBFSection.h"
#include "object/SOBFWriter.h"

#include <cstdio>
#include <cstring>

std::string SOBFInsn::printPC() const {
    if (pc == -1)
        return "------";
    char text[16];
    std::snprintf(text, sizeof text, "%06X", static_cast<unsigned>(pc));
    return text;
}

std::string SOBFInsn::printOpCode() const {
    constexpr char digits[] = "0123456789ABCDEF";
    std::string text;
    text.reserve(static_cast<size_t>(byteCount) * 2);
    for (const char byte : encodedBytes()) {
        text += digits[static_cast<uint8_t>(byte) >> 4];
        text += digits[byte & 15];
    }
    return text;
}

uint8_t SOBFInsn::getByte(int offset) { return offset >= 0 && offset < byteCount ? bytes[offset] : 0; }

void SOBFInsn::copyBytes(uint8_t* image, int count) {
    for (int offset = 0; offset < count; ++offset)
        image[offset] = getByte(offset);
}

void SOBFInsn::writeInstrumentationData(SOBFWriter& writer) {
    if (instrumentation == 0)
        return;
    writer.externalizeLiteral(instrumentation);
    writer.writeTag(TAG_INSTRUMENTATION);
}

void SOBFInsn::externalizeCommon(SOBFWriter& writer) {
    if (pc != -1) {
        writer.externalizeLiteral(pc);
        writer.writeTag(TAG_SETPC);
        writer.pc = pc;
        writer.afterBreak = false;
    }
    if (stackAdjust != writer.stackAdjust) {
        writer.externalizeLiteral(stackAdjust);
        writer.writeTag(TAG_ADJUST_STACK);
        writer.stackAdjust = stackAdjust;
    }
}

void SOBFInsn::addReferences(References& references) {
    references.insert(references.end(), {fragment, operand1, operand2, operand3, operand4});
}

void SOBFInsn::appendByte(uint8_t byte) {
    if (byteCount + 1 >= byteCapacity) {
        const size_t capacity = static_cast<size_t>(byteCapacity) * 2;
        auto* grown = static_cast<uint8_t*>(PoolObject::operator new(capacity));
        std::memcpy(grown, bytes, static_cast<size_t>(byteCount));
        std::memset(grown + byteCount, 0, capacity - static_cast<size_t>(byteCount));
        bytes = grown;
        byteCapacity = static_cast<int>(capacity);
    }
    bytes[byteCount++] = byte;
}

void SOBFInsn::appendBytes(std::string_view more) {
    for (const char byte : more)
        appendByte(static_cast<uint8_t>(byte));
}

void SOBFInsn::encodeWord(int64_t value, int count, bool bigEndian) {
    if (bigEndian && (count < 1 || count > 4))
        return;
    for (int byte = 0; byte < count; ++byte) {
        const int place = bigEndian ? count - 1 - byte : byte;
        appendByte(static_cast<uint8_t>(place < 8 ? value >> (8 * place) : 0));
    }
}
