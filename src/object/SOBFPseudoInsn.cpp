#include "object/SOBFPseudoInsn.h"

#include "object/SOBFModule.h"
#include "object/SOBFSection.h"
#include "object/SOBFSymbol.h"
#include "object/SOBFType.h"
#include "object/SOBFWriter.h"

#include <algorithm>
#include <climits>
#include <cstring>

int SOBFMarker::m_markCount = 0;
SOBFSection* (*SOBFInitInsn::findSection)(HString* wanted) = nullptr;

std::string SOBFMarker::printString() {
    if (name)
        return std::string(name->view());
    if (printNumber == -1)
        printNumber = m_markCount++;
    return "@" + std::to_string(printNumber);
}

void SOBFMarker::externalize(SOBFWriter& writer) {
    externalizeCommon(writer);
    writer.externalizeString(writer.nameOf(this));
    writer.externalizeLiteral(writer.getIndex(this));
    writer.writeTag(TAG_MARKERDEF);
}

void SOBFFilename::externalize(SOBFWriter& writer) {
    if (!writer.begin(this))
        return;
    writer.externalizeString(path);
    writer.writeTag(TAG_MKFILENAME);
    writer.defineAlias(this);
}

void SOBFLocus::externalize(SOBFWriter& writer) {
    if (!file || !file->path)
        return;
    // The line of a symbol is no record. It may come between an instruction's stack adjustment and the
    // instruction itself, and must not touch the one or the other.
    if (locusKind == TAG_LOCUS)
        externalizeCommon(writer);
    file->externalize(writer);
    writer.pushAlias(file);
    writer.externalizeLiteral(line);
    writer.writeTag(locusKind);
}

void SOBFResetLocusInsn::externalize(SOBFWriter& writer) { writer.writeTag(TAG_RESET_LOCUS); }

namespace {

/// The constant that is a printable character and was declared as one; 0 if it is anything else.
char characterOf(const SOBFExpr* expr) {
    const auto* constant = dynamic_cast<const SOBFConstExpr*>(expr);
    const auto* type = constant ? dynamic_cast<const SOBFSimpleType*>(constant->type) : nullptr;
    if (!type || type->simpleKind != TAG_CHAR || constant->value < ' ' || constant->value > '~')
        return 0;
    return static_cast<char>(constant->value);
}

} // namespace

std::string SOBFDefBytesInsn::printString() {
    if (const char character = size == 1 ? characterOf(operand1) : '\0')
        return std::string("\tDC\t'") + character + "'";
    static const char* const names[] = {"\tDB\t", "\tDW\t", "\tDT\t", "\tDL\t"};
    return names[size - 1] + operand1->printString();
}

void SOBFDefBytesInsn::encode() {
    byteCount = 0;
    encodeWord(operand1->evaluate().value, size);
}

void SOBFDefBytesInsn::externalize(SOBFWriter& writer) {
    externalizeCommon(writer);
    operand1->externalize(writer);
    writer.externalizeLiteral(size);
    writer.writeTag(TAG_DEFBYTES);
    writer.externalizeString(encodedBytes());
    writer.writeTag(TAG_SETBYTES);
}

int SOBFDefAddrInsn::length() { return SOBFModule::processorAddressSize(); }

std::string SOBFDefAddrInsn::printString() { return "\tDA\t" + operand1->printString(); }

void SOBFDefAddrInsn::encode() {
    byteCount = 0;
    const auto value = static_cast<uint32_t>(operand1->evaluate().value);
    encodeWord(SOBFModule::processorAddress(value), SOBFModule::processorAddressSize());
}

void SOBFDefAddrInsn::externalize(SOBFWriter& writer) {
    externalizeCommon(writer);
    operand1->externalize(writer);
    writer.writeTag(TAG_DEFADDR);
    writer.externalizeString(
        {reinterpret_cast<const char*>(bytes), size_t{SOBFModule::processorAddressSize()}});
    writer.writeTag(TAG_SETBYTES);
}

void SOBFUniformInsn::copyBytes(uint8_t* image, int count) {
    if (count > 0)
        std::memset(image, getByte(0), static_cast<size_t>(count));
}

std::string SOBFAlignInsn::printString() { return "\t.ALIGN\t" + std::to_string(alignment); }

int SOBFAlignInsn::length() {
    if (pc < 0 || alignment <= 0)
        return 0;
    const int beyond = pc % alignment;
    return beyond == 0 ? 0 : alignment - beyond;
}

void SOBFAlignInsn::externalize(SOBFWriter& writer) {
    externalizeCommon(writer);
    writer.externalizeLiteral(alignment);
    writer.writeTag(TAG_ALIGN);
}

std::string SOBFOriginInsn::printString() { return "\tORG\t" + std::to_string(address); }

void SOBFOriginInsn::externalize(SOBFWriter& writer) {
    externalizeCommon(writer);
    writer.externalizeLiteral(address);
    writer.writeTag(TAG_ORIGIN);
}

std::string SOBFFillInsn::printString() {
    return "\t.FILL\t" + std::to_string(fillLength) + ", " + std::to_string(fillValue);
}

void SOBFFillInsn::externalize(SOBFWriter& writer) {
    externalizeCommon(writer);
    writer.externalizeLiteral(fillValue);
    writer.externalizeLiteral(fillLength);
    writer.writeTag(TAG_FILL);
}

std::string SOBFSpaceInsn::printString() { return "\t.SPACE\t" + size->printString(); }

int SOBFSpaceInsn::length() {
    const SOBFExprValue value = size->evaluate();
    return value.failed ? 0 : static_cast<int>(std::clamp<int64_t>(value.value, 0, INT_MAX));
}

void SOBFSpaceInsn::externalize(SOBFWriter& writer) {
    externalizeCommon(writer);
    if (size->isConstant())
        writer.externalizeLiteral(size->evaluate().value);
    else
        size->externalize(writer);
    writer.writeTag(TAG_SPACE);
    writeInstrumentationData(writer);
}

void SOBFSpaceInsn::addReferences(References& references) {
    SOBFInsn::addReferences(references);
    references.push_back(size);
}

std::string SOBFLinkIf::printString() { return "\tLINKIF\t" + operand1->printString(); }

void SOBFLinkIf::externalize(SOBFWriter& writer) {
    externalizeCommon(writer);
    operand1->externalize(writer);
    writer.writeTag(TAG_LINKIF);
}

void SOBFEndLinkIf::externalize(SOBFWriter& writer) {
    externalizeCommon(writer);
    writer.writeTag(TAG_ENDLINKIF);
}

/// A pair holds the value on its left and what is carried along on its right.
std::string SOBFLocalInsn::printString() {
    const auto* pair = dynamic_cast<const SOBFBinaryExpr*>(operand1);
    if (!pair || pair->op != TAG_PAIR)
        return "\tLOCAL\t" + operand1->printString();
    const bool symbolIsLeft = dynamic_cast<const SOBFSymbolExpr*>(pair->left);
    const SOBFExpr* symbol = symbolIsLeft ? pair->left : pair->right;
    const SOBFExpr* place = symbolIsLeft ? pair->right : pair->left;
    return "\tLOCAL\t" + symbol->printString() + " @ " + place->printString();
}

void SOBFLocalInsn::externalize(SOBFWriter& writer) {
    externalizeCommon(writer);
    operand1->externalize(writer);
    writer.writeTag(TAG_LOCAL_INSN);
}

SOBFSection* SOBFInitInsn::target() {
    if (!section)
        section = findSection ? findSection(sectionName)
                  : module    ? module->sectionsByName.value(sectionName)
                              : nullptr;
    return section;
}

std::string SOBFInitInsn::printString() { return "\t.INIT\t\"" + std::string(sectionName->view()) + "\""; }

int SOBFInitInsn::length() { return target() ? target()->getSize() : 0; }

uint8_t SOBFInitInsn::getByte(int offset) {
    const uint8_t* image = target() && module ? target()->image(*module) : nullptr;
    return image && offset >= 0 && offset < target()->getSize() ? image[offset] : 0;
}

void SOBFInitInsn::copyBytes(uint8_t* image, int count) {
    const uint8_t* source = target() && module ? target()->image(*module) : nullptr;
    const int known = source ? std::min(count, target()->getSize()) : 0;
    if (known > 0)
        std::memcpy(image, source, static_cast<size_t>(known));
    if (count > known)
        std::memset(image + known, 0, static_cast<size_t>(count - std::max(known, 0)));
}

void SOBFInitInsn::externalize(SOBFWriter& writer) {
    externalizeCommon(writer);
    writer.externalizeString(sectionName);
    writer.writeTag(TAG_INIT);
}
