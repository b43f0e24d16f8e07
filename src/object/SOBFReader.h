#pragma once

#include "object/SOBFContainers.h"
#include "object/SOBFExpr.h"
#include "object/SOBFTags.h"

#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

class HByteStream;
class SOBFFilename;
class SOBFFunctionType;
class SOBFInsn;
class SOBFLocus;
class SOBFMarker;
class SOBFPtrType;
class SOBFSection;
class SOBFStrucType;
class SOBFSymbol;
class SOBFType;

/// Runs an object file. The file is a program of one-byte tags for a small stack machine; what it leaves
/// behind is a module. Serves one run.
///
///     length of the string pool (a literal), 0x26, that many raw bytes, and tags up to the end of the file
///
/// A literal below 8 is the byte itself, any other 0x08, a count, and as many bytes, most significant first.
/// A text is a place in the string pool. Tags that describe the module come first, up to 0x66: a quick read
/// stops there.
///
/// Whatever stands in a file, a run ends with a module or an HException, in time and memory bounded by the
/// size of the file.
class SOBFReader {
public:
    /// Borrows the contents of `stream`, which must outlive the run. With `stickyLocus` a source line holds
    /// for all instructions up to the next, without for one.
    SOBFReader(const HByteStream* stream, bool stickyLocus);
    virtual ~SOBFReader();
    SOBFReader(const SOBFReader&) = delete;
    SOBFReader& operator=(const SOBFReader&) = delete;

    /// The module, null if the file makes none. The caller gives it up with `release`. With `trace`, every
    /// tag and the stack behind it are written there. Throws HException.
    SOBFModule* readFile(std::ostream* trace = nullptr) { return run(false, trace); }
    /// The same for what describes the module only.
    SOBFModule* readFileQuickly(std::ostream* trace = nullptr) { return run(true, trace); }
    /// The text of one attribute of the module, by a quick read; nothing if there is no such module or
    /// attribute. It lies in the stream: the names of what an object was made from are long and of no use to
    /// anyone else, and interned they would stay for ever. Throws HException.
    std::optional<std::string_view> readAttribute(std::string_view key);
    /// Frees everything that was read with the module; null is passed over.
    static void release(SOBFModule* module);

    /// The machine's stack. An entry may be null. All throw HException with the text that says what is wrong.
    void push(SOBFObject* object) { newSlot() = {Slot::Object, {.object = object}}; }
    SOBFObject* popObject();
    int64_t popConst();
    uint32_t popConst(uint32_t least, uint32_t most);
    SOBFExpr* popExpr(bool nullAllowed);
    SOBFScope* popScope(bool nullAllowed);
    SOBFString* popString();
    SOBFSection* popSection();
    SOBFType* popType();
    SOBFSymbol* popSymbol();

    /// The name of the processor whose instructions the reader knows.
    virtual std::string processorName() = 0;

protected:
    /// Pops the operands of an instruction and makes it.
    virtual SOBFInsn* makeInsn() = 0;

private:
    friend struct SOBFTagRanges;

    /// A number stays a number, and a text bytes of the string pool, until someone wants the object: most are
    /// taken by the next tag.
    struct Piece {
        const char* data;
        size_t size;
    };
    struct Slot {
        enum Kind { Object, Number, Text } kind;
        union {
            SOBFObject* object;
            int64_t number;
            Piece text;
        };
        bool isNull() const { return kind == Object && !object; }
    };
    static constexpr size_t stackSize = 100;

    SOBFModule* run(bool quick, std::ostream* trace);
    void runProgram(std::ostream* trace);
    void runTag(uint8_t tag);
    void nameMarkers() const;
    void traceTag(std::ostream& trace, uint8_t tag) const;
    void traceStack(std::ostream& trace) const;

    Slot& newSlot() {
        if (m_depth == stackSize)
            failStack("bad object file: reader stack overflow");
        return m_stack[m_depth++];
    }
    Slot& popSlot() {
        if (m_depth == 0)
            failStack("bad object file: reader empty stack");
        return m_stack[--m_depth];
    }
    [[noreturn]] static void failStack(const char* failure);
    void pushNumber(int64_t value) { newSlot() = {Slot::Number, {.number = value}}; }
    int popInt() { return static_cast<int>(popConst()); }
    static HString* intern(std::string_view text);
    static SOBFObject* materialize(Slot& slot);
    static const int64_t* numberIn(const Slot& slot);
    static bool isText(const Slot& slot);
    static std::string_view textIn(const Slot& slot);
    SOBFExpr* popPart(bool nullAllowed);
    template<class T>
    T* popAs(const char* failure);
    SOBFObject* popAny();
    SOBFFilename* popFilename();
    SOBFPtrType* popPtr();
    SOBFStrucType* popStruc();
    SOBFFunctionType* popFunctionType();
    std::string_view popBytes(bool nullAllowed = false);
    HString* popText();

    uint32_t popIndex();
    std::string_view take(size_t bytes);
    static void spend(size_t& budget, size_t amount, const char* failure);
    void pushText(std::string_view text);
    void pushType(SOBFType* type);

    SOBFInsn* currentInsn() const;
    SOBFMarker* markerAt(uint32_t index);
    void append(SOBFInsn* insn);
    void place(SOBFInsn* insn);
    void placeCurrent(SOBFInsn* insn);

    void runLiteral(uint8_t tag);
    void runLongLiteral(uint8_t tag);
    void runNull(uint8_t tag);
    void runNullNull(uint8_t tag);
    void runBinary(uint8_t tag);
    void runMakeSymbol(uint8_t tag);
    void runSymbolValue(uint8_t tag);
    void runAlias(uint8_t tag);
    void runMakeAlias(uint8_t tag);
    void runStringToNul(uint8_t tag);
    void runString(uint8_t tag);
    void runMarkerDef(uint8_t tag);
    void runMarkerRef(uint8_t tag);
    void runStringPool(uint8_t tag);
    void runSection(uint8_t tag);
    void runMakeSection(uint8_t tag);
    void runSymbolDef(uint8_t tag);
    void runSetType(uint8_t tag);
    void runSetName(uint8_t tag);
    void runDefBytes(uint8_t tag);
    void runInsn(uint8_t tag);
    void runFill(uint8_t tag);
    void runAlign(uint8_t tag);
    void runOrigin(uint8_t tag);
    void runBreak(uint8_t tag);
    void runPublic(uint8_t tag);
    void runLocus(uint8_t tag);
    void runMakeFilename(uint8_t tag);
    void runSetPC(uint8_t tag);
    void runSetBytes(uint8_t tag);
    void runSimpleType(uint8_t tag);
    void runOldStruc(uint8_t tag);
    void runArray(uint8_t tag);
    void runCountedArray(uint8_t tag);
    void runPtr(uint8_t tag);
    void runUntyped(uint8_t tag);
    void runFloat(uint8_t tag);
    void runFunction(uint8_t tag);
    void runMember(uint8_t tag);
    void runStaticField(uint8_t tag);
    void runDynamicField(uint8_t tag);
    void runParameter(uint8_t tag);
    void runLibrary(uint8_t tag);
    void runSetScope(uint8_t tag);
    void runModule(uint8_t tag);
    void runScope(uint8_t tag);
    void runDup(uint8_t tag);
    void runDrop(uint8_t tag);
    void runSpace(uint8_t tag);
    void runAttribute(uint8_t tag);
    void runForwardType(uint8_t tag);
    void runNop(uint8_t) {}
    void runProtected(uint8_t tag);
    void runCodelet(uint8_t tag);
    void runStruc(uint8_t tag);
    void runLinkOrderPriority(uint8_t tag);
    void runPatchable(uint8_t tag);
    void runInstrumentation(uint8_t tag);
    void runPatched(uint8_t tag);
    void runRegister(uint8_t tag);
    void runLocalInsn(uint8_t tag);
    void runSetFlags(uint8_t tag);
    void runResetLocus(uint8_t tag);
    void runFunctionSymbol(uint8_t tag);
    void runAdjustStack(uint8_t tag);
    void runInit(uint8_t tag);
    void runSymbolLocus(uint8_t tag);
    void runEndOfInfo(uint8_t tag);
    void runExtensionWord(uint8_t tag);
    void runDefAddr(uint8_t tag);
    void runMemorySpace(uint8_t tag);
    void runPtrRepresentation(uint8_t tag);
    void runLinkIf(uint8_t tag);
    void runEndLinkIf(uint8_t tag);

    Slot m_stack[stackSize];
    size_t m_depth = 0;

    const char* m_start;
    const char* m_position;
    const char* m_end;
    std::string_view m_strings = ""; ///< the string pool, which lies in the stream

    const bool m_stickyLocus;
    bool m_quick = false;
    std::string_view m_wantedKey; ///< the attribute that is not stored but told; null for none
    std::optional<std::string_view> m_wantedText;
    bool m_afterBreak = false;
    int m_pc = -1;
    int m_stackAdjust = 0;
    SOBFModule* m_module = nullptr;
    Pool* m_savedPool = nullptr; ///< the current one before the module's
    SOBFSection* m_section = nullptr;
    SOBFInsn* m_insn = nullptr; ///< the one to which further bytes and words belong
    SOBFLocus* m_locus = nullptr;
    SOBFPtrType* m_ptr = nullptr;
    std::vector<SOBFObject*> m_aliases;
    std::vector<SOBFMarker*> m_markers;

    /// What a file may yet make out of its bytes. Texts, bytes and operands that are used again and again
    /// would otherwise grow without bound.
    size_t m_textBudget;
    size_t m_nodeBudget;
};
