#pragma once

#include "toolchain/common/Decode.h"
#include "toolchain/common/LineTable.h"

#include <functional>
#include <map>
#include <unordered_map>
#include <vector>

struct ElfRelocation;
struct ElfSection;
class SOBFExpr;
class SOBFFilename;
class SOBFInsn;
class SOBFMSP430Insn;
class SOBFMarker;
class SOBFSection;

/// What the fragments of one object have in common.
struct FragmentContext {
    bool extended = false; ///< instructions of the MSP430X count as such
    /// The expression that a relocation puts in its place, never null.
    std::function<SOBFExpr*(const ElfRelocation& relocation)> target;
    std::vector<SOBFFilename*> files; ///< by their number in the line table
    /// Bytes that each section has so far: records show their place in the section of this object.
    std::unordered_map<SOBFSection*, int> cursors;
};

/// Makes the records of one section of an ELF file, in three steps that all fragments of an object take one
/// after the other: relocations of any of them may mark places in the others, and a marked place begins a
/// record.
class FragmentMaker {
public:
    /// The records go to the end of `into`. All must outlive the maker.
    FragmentMaker(FragmentContext& context, SOBFSection* into, const ElfSection& from);

    /// The fragment lies at a fixed place in its section, or counted from its end if negative.
    void setOrigin(int place);
    void addLine(const LineRow& row) { m_lines.push_back(&row); }
    /// The address of that byte of the ELF section, marked in the fragment unless it lies outside.
    SOBFExpr* place(int64_t offset);

    void resolveRelocations();
    void takeApart();
    void addRecords();

private:
    struct Target {
        uint32_t type;
        SOBFExpr* value;
    };
    struct Piece {
        uint32_t at;
        SOBFInsn* record;
    };
    struct Jump {
        uint32_t from;
        int64_t to;
        SOBFMSP430Insn* record;
    };

    void takeCodeApart();
    void takeRoomApart();
    void takeDataApart(uint32_t start, uint32_t end);
    uint32_t addDatum(uint32_t at, uint32_t end);
    uint32_t addRelocatedDatum(uint32_t at, const Target& target);
    bool addInsn(uint32_t at, const DecodedInsn& insn);
    bool isInterrupted(uint32_t at, const DecodedInsn& insn) const;
    SOBFExpr* operand(uint32_t at, const DecodedInsn& insn, const DecodedInsn::Operand& operand);
    SOBFExpr* placeFrom(uint32_t at, int64_t offset);
    void resolvePlaces();
    SOBFMarker* markerAt(uint32_t offset);
    uint32_t nextStop(uint32_t at, uint32_t end) const;
    uint32_t runAt(uint32_t at, uint32_t end) const;
    uint32_t bytesAt(uint32_t at, uint32_t count) const;
    void addPiece(uint32_t at, SOBFInsn* record, uint32_t length);
    void add(SOBFInsn* record);
    void addLinesAt(size_t& nextLine, uint32_t at);

    FragmentContext& m_context;
    SOBFSection* m_into;
    const ElfSection& m_from;
    bool m_hasOrigin = false;
    int m_origin = 0;
    std::map<uint32_t, SOBFMarker*> m_markers; ///< by place
    std::map<uint32_t, Target> m_targets;      ///< what relocations make of a place
    std::vector<const LineRow*> m_lines;
    const LineRow* m_lastLine = nullptr; ///< the one that holds for what is added
    std::vector<Piece> m_pieces;
    std::vector<Jump> m_jumps;
    int m_pc = 0;
};
