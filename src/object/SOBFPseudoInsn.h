#pragma once

#include "object/SOBFInsn.h"

/// A place in a section that expressions refer to.
class SOBFMarker : public SOBFInsn {
public:
    /// The name, or "@" and a number that is given out when it is first asked for.
    std::string printString() override;
    int length() override { return 0; }
    void externalize(SOBFWriter& writer) override;

    int index = -1;       ///< given out by a writer, -1 until then
    int printNumber = -1; ///< given out by the first print, -1 until then
    SOBFSymbol* symbol = nullptr;

    /// Print numbers given out so far.
    static int m_markCount;
};

/// A source file.
class SOBFFilename : public SOBFMarker {
public:
    explicit SOBFFilename(HString* p) : path(p) {}
    std::string printString() override { return {}; }
    void externalize(SOBFWriter& writer) override;

    HString* path;
};

/// A line of a source file: that of the instructions behind it (kind TAG_LOCUS), or that of a symbol's
/// declaration (TAG_SYMBOL_LOCUS).
class SOBFLocus : public SOBFMarker {
public:
    SOBFLocus(int k, int l, SOBFFilename* f) : line(l), locusKind(k), file(f) {}
    std::string printString() override { return {}; }
    void externalize(SOBFWriter& writer) override;

    int line;
    int locusKind;
    SOBFFilename* file;
};

/// Ends the range of a locus.
class SOBFResetLocusInsn : public SOBFInsn {
public:
    int length() override { return 0; }
    void externalize(SOBFWriter& writer) override;
};

/// The start of a fragment at a known address.
class SOBFBreakInsn : public SOBFInsn {
public:
    int length() override { return 0; }
    uint8_t getByte(int) override { return 0; }
    void externalize(SOBFWriter& writer) override { externalizeCommon(writer); }
};

/// A value of one to four bytes.
class SOBFDefBytesInsn : public SOBFInsn {
public:
    SOBFDefBytesInsn(SOBFExpr* value, int s) : size(s) { operand1 = value; }
    std::string printString() override;
    int length() override { return size; }
    void encode() override;
    void externalize(SOBFWriter& writer) override;

    int size;
};

/// An address, in the processor's width.
class SOBFDefAddrInsn : public SOBFInsn {
public:
    explicit SOBFDefAddrInsn(SOBFExpr* value) { operand1 = value; }
    std::string printString() override;
    int length() override;
    void encode() override;
    void externalize(SOBFWriter& writer) override;
};

/// A record of bytes that all have one value, however many they are.
class SOBFUniformInsn : public SOBFInsn {
public:
    uint8_t getByte(int) override { return 0; }
    void copyBytes(uint8_t* image, int count) override;
};

/// Room up to the next multiple of an alignment.
class SOBFAlignInsn : public SOBFUniformInsn {
public:
    explicit SOBFAlignInsn(int a) : alignment(a) {}
    std::string printString() override;
    int length() override;
    void externalize(SOBFWriter& writer) override;

    int alignment;
};

class SOBFOriginInsn : public SOBFUniformInsn {
public:
    explicit SOBFOriginInsn(int a) : address(a) {}
    std::string printString() override;
    int length() override { return 0; }
    void externalize(SOBFWriter& writer) override;

    int address;
};

class SOBFFillInsn : public SOBFUniformInsn {
public:
    SOBFFillInsn(int l, int v) : fillLength(l), fillValue(v) {}
    std::string printString() override;
    int length() override { return fillLength < 0 ? 0 : fillLength; }
    uint8_t getByte(int) override { return static_cast<uint8_t>(fillValue); }
    void externalize(SOBFWriter& writer) override;

    int fillLength;
    int fillValue;
};

/// Room for as many bytes as an expression says.
class SOBFSpaceInsn : public SOBFUniformInsn {
public:
    explicit SOBFSpaceInsn(SOBFExpr* s) : size(s) {}
    std::string printString() override;
    /// 0 for a size that is negative or cannot be evaluated.
    int length() override;
    void externalize(SOBFWriter& writer) override;

    SOBFExpr* size;

protected:
    void addReferences(References& references) override;
};

/// The start of records that are linked only if a condition holds.
class SOBFLinkIf : public SOBFInsn {
public:
    explicit SOBFLinkIf(SOBFExpr* condition) { operand1 = condition; }
    std::string printString() override;
    int length() override { return 0; }
    void externalize(SOBFWriter& writer) override;
};

class SOBFEndLinkIf : public SOBFInsn {
public:
    std::string printString() override { return "\tENDLINKIF"; }
    int length() override { return 0; }
    void externalize(SOBFWriter& writer) override;
};

/// A local symbol and its place.
class SOBFLocalInsn : public SOBFInsn {
public:
    explicit SOBFLocalInsn(SOBFExpr* what) { operand1 = what; }
    std::string printString() override;
    int length() override { return 0; }
    void externalize(SOBFWriter& writer) override;
};

/// A copy of the contents of another section, from which a program initialises it.
class SOBFInitInsn : public SOBFInsn {
public:
    SOBFInitInsn(HString* n, SOBFModule* m) : sectionName(n) { module = m; }
    std::string printString() override;
    /// The size of the named section, 0 if there is none.
    int length() override;
    uint8_t getByte(int offset) override;
    void copyBytes(uint8_t* image, int count) override;
    void externalize(SOBFWriter& writer) override;

    /// Finds a section by name in the place of the module's own map, unless null.
    static SOBFSection* (*findSection)(HString* wanted);

    HString* sectionName;
    SOBFSection* section = nullptr; ///< null until it is first needed

private:
    SOBFSection* target();
};
