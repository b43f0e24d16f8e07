#include "object/SOBFTags.h"

#include "object/SOBFReader.h"

namespace {

constexpr SOBFNeeds Nothing = SOBFNeeds::Nothing;
constexpr SOBFNeeds Module = SOBFNeeds::Module;
constexpr SOBFNeeds Section = SOBFNeeds::Section;

struct Range {
    uint8_t first;
    uint8_t last;
    SOBFTagRow row;
};

} // namespace

/// One row for each tag, or each run of tags that do alike. The number is by how much the stack grows.
struct SOBFTagRanges {
    using R = SOBFReader;
    static constexpr Range all[] = {
        {0x00, 0x07, {"LIT", 1, Nothing, &R::runLiteral}},
        {0x08, 0x08, {"LITX", 1, Nothing, &R::runLongLiteral}},
        {0x09, 0x09, {"NULL", 1, Nothing, &R::runNull}},
        {0x0A, 0x0A, {"NULL_NULL", 2, Nothing, &R::runNullNull}},
        {0x0B, 0x1C, {"<binary>", -1, Nothing, &R::runBinary}},
        {0x1D, 0x1D, {"MKSYMBOL", 0, Module, &R::runMakeSymbol}},
        {0x1F, 0x1F, {"SYMBOLVAL", 0, Nothing, &R::runSymbolValue}},
        {0x20, 0x20, {"ALIAS", 0, Nothing, &R::runAlias}},
        {0x21, 0x21, {"MKALIAS", -2, Nothing, &R::runMakeAlias}},
        {0x22, 0x22, {"MKSTRING", 0, Nothing, &R::runStringToNul}},
        {0x23, 0x23, {"MKSTRING", -1, Nothing, &R::runString}},
        {0x24, 0x24, {"MARKERDEF", -2, Section, &R::runMarkerDef}},
        {0x25, 0x25, {"MARKERREF", 0, Nothing, &R::runMarkerRef}},
        {0x26, 0x26, {"STRINGPOOL", -1, Nothing, &R::runStringPool}},
        {0x27, 0x27, {"SECTION", -1, Nothing, &R::runSection}},
        {0x28, 0x28, {"MKSECTION", 0, Module, &R::runMakeSection}},
        {0x29, 0x29, {"SYMBOLDEF", -2, Nothing, &R::runSymbolDef}},
        {0x2A, 0x2A, {"SETTYPE", -2, Nothing, &R::runSetType}},
        {0x2B, 0x2B, {"SETNAME", -1, Nothing, &R::runSetName}},
        {0x2C, 0x2C, {"DEFBYTES", -2, Section, &R::runDefBytes}},
        {0x2D, 0x2E, {"INSN", -3, Section, &R::runInsn}},
        {0x2F, 0x2F, {"FILL", -2, Section, &R::runFill}},
        {0x30, 0x30, {"ALIGN", -1, Section, &R::runAlign}},
        {0x31, 0x31, {"ORIGIN", -1, Section, &R::runOrigin}},
        {0x32, 0x32, {"BREAK", 0, Section, &R::runBreak}},
        {0x33, 0x33, {"PUBLIC", -1, Module, &R::runPublic}},
        {0x35, 0x35, {"LOCUS", -2, Section, &R::runLocus}},
        {0x36, 0x36, {"MKFILENAME", 0, Nothing, &R::runMakeFilename}},
        {0x37, 0x37, {"SETPC", -1, Nothing, &R::runSetPC}},
        {0x38, 0x38, {"SETBYTES", -1, Nothing, &R::runSetBytes}},
        {0x39, 0x3B, {"CHAR | UNSIGNED | INT", 0, Nothing, &R::runSimpleType}},
        {0x3C, 0x3C, {"STRUC (obsolete)", 1, Nothing, &R::runOldStruc}},
        {0x3D, 0x3D, {"ARRAY", -1, Nothing, &R::runArray}},
        {0x3E, 0x3E, {"COUNTED_ARRAY", -2, Nothing, &R::runCountedArray}},
        {0x3F, 0x3F, {"PTR", -2, Nothing, &R::runPtr}},
        {0x40, 0x40, {"UNTYPED", 0, Nothing, &R::runUntyped}},
        {0x41, 0x41, {"FLOAT", 0, Nothing, &R::runFloat}},
        {0x42, 0x42, {"FUNCTION", -2, Nothing, &R::runFunction}},
        {0x43, 0x43, {"MEMBER", 0, Nothing, &R::runMember}},
        {0x44, 0x44, {"STATIC_FIELD", -3, Nothing, &R::runStaticField}},
        {0x45, 0x45, {"DYNAMIC_FIELD", -4, Nothing, &R::runDynamicField}},
        {0x46, 0x46, {"PARAMIN", -1, Nothing, &R::runParameter}},
        {0x47, 0x47, {"PARAMOUT", -1, Nothing, &R::runParameter}},
        {0x48, 0x48, {"LIBRARY", -1, Module, &R::runLibrary}},
        {0x49, 0x49, {"SETSCOPE", -1, Nothing, &R::runSetScope}},
        {0x4A, 0x4A, {"SCOPE_MODULE", -2, Nothing, &R::runModule}},
        {0x4B, 0x4B, {"SCOPE_FUNCTION", -2, Nothing, &R::runScope}},
        {0x4C, 0x4C, {"SCOPE_BLOCK", -2, Nothing, &R::runScope}},
        {0x4E, 0x4E, {"DUP", 1, Nothing, &R::runDup}},
        {0x4F, 0x4F, {"DROP", -1, Nothing, &R::runDrop}},
        {0x50, 0x50, {"SPACE", -1, Section, &R::runSpace}},
        {0x51, 0x51, {"ATTRIBUTE", -2, Module, &R::runAttribute}},
        {0x52, 0x52, {"FORWARDTYPE", 0, Nothing, &R::runForwardType}},
        {0x53, 0x53, {"NOP", 0, Nothing, &R::runNop}},
        {0x54, 0x54, {"PROTECTED", 0, Module, &R::runProtected}},
        {0x55, 0x55, {"<binary>", -1, Nothing, &R::runBinary}},
        {0x56, 0x56, {"CODELET", -1, Module, &R::runCodelet}},
        {0x57, 0x57, {"STRUC", 0, Nothing, &R::runStruc}},
        {0x58, 0x58, {"LINK ORDER PRIORITY", -1, Module, &R::runLinkOrderPriority}},
        {0x59, 0x59, {"PATCHABLE", -1, Module, &R::runPatchable}},
        {0x5B, 0x5B, {"INSTRUMENTATION DATA", -1, Nothing, &R::runInstrumentation}},
        {0x5C, 0x5C, {"PATCHED", -1, Nothing, &R::runPatched}},
        {0x5D, 0x5D, {"REGISTER", 0, Nothing, &R::runRegister}},
        {0x5E, 0x5E, {"<binary>", -1, Nothing, &R::runBinary}},
        {0x5F, 0x5F, {"LOCAL_INSN", -1, Section, &R::runLocalInsn}},
        {0x60, 0x60, {"SETFLAGS", -1, Section, &R::runSetFlags}},
        {0x61, 0x61, {"", 0, Nothing, &R::runResetLocus}},
        {0x62, 0x62, {"SET_FCT_SYMBOL", -2, Nothing, &R::runFunctionSymbol}},
        {0x63, 0x63, {"ADJUST_STACK", -1, Nothing, &R::runAdjustStack}},
        {0x64, 0x64, {"INIT", -1, Section, &R::runInit}},
        {0x65, 0x65, {"SYMBOL_LOCUS", -2, Nothing, &R::runSymbolLocus}},
        {0x66, 0x66, {"END_OF_INFO", 0, Nothing, &R::runEndOfInfo}},
        {0x67, 0x67, {"", -1, Nothing, &R::runExtensionWord}},
        {0x68, 0x68, {"DEFADDR", -1, Section, &R::runDefAddr}},
        {0x69, 0x69, {"SOBF_WORD_ADDRESS", -1, Nothing, &R::runBinary}},
        {0x6A, 0x6D, {"MEMSPACE", 0, Nothing, &R::runMemorySpace}},
        {0x6E, 0x6F, {"PTR-REP", 0, Nothing, &R::runPtrRepresentation}},
        {0x70, 0x70, {"LINKIF", -1, Section, &R::runLinkIf}},
        {0x71, 0x71, {"ENDLINKIF", 0, Section, &R::runEndLinkIf}},
    };

    static constexpr std::array<SOBFTagRow, TAG_COUNT> byTag() {
        std::array<SOBFTagRow, TAG_COUNT> rows{};
        for (const Range& range : all)
            for (unsigned tag = range.first; tag <= range.last; ++tag)
                rows[tag] = range.row;
        return rows;
    }
};

constexpr std::array<SOBFTagRow, TAG_COUNT> SOBFTagTable::rows = SOBFTagRanges::byTag();
