#pragma once

#include "toolchain/qlink/LinkOptions.h"

#include <deque>
#include <unordered_map>

class LinkInputs;
class SOBFConstExpr;
class SOBFExpr;
class SOBFFragment;
class SOBFSection;

/// A section of the executable, with all fragments of that name that stay.
struct OutputSection {
    /// A run of its fragments at consecutive addresses.
    struct Extent {
        uint32_t start;
        uint32_t end;
        size_t first;
        size_t last; ///< number of the fragment behind the run
    };

    std::string name;
    int flags = 0;
    bool loaded = false;  ///< the executable holds its contents, at its own address
    bool isTable = false; ///< fragments have fixed places in it, so it fills all of its room
    std::vector<SOBFFragment*> fragments;
    std::vector<Extent> extents;
    SOBFSection* merged = nullptr; ///< the same fragments, as a section of the model
    const Placement* placement = nullptr;

    uint32_t start() const { return extents.empty() ? 0 : extents.front().start; }
    uint32_t end() const { return extents.empty() ? 0 : extents.back().end; }
};

/// Which fragments stay, and where they lie.
///
/// Sections that the linker adds: a copy NAME_INIT of each section NAME that has to be initialised, the table
/// INITTAB of these copies and of what is to be cleared, HEAP, and CHECKSUM. Where no word places them they
/// go where constants go, and HEAP where zeroed data goes.
class LinkLayout {
public:
    LinkLayout(Tool& tool, const LinkOptions& options, LinkInputs& inputs);
    ~LinkLayout();
    LinkLayout(const LinkLayout&) = delete;
    LinkLayout& operator=(const LinkLayout&) = delete;

    /// Does all of it. What does not fit or has no place is told as an error.
    void lay();

    const std::deque<OutputSection>& sections() const { return m_sections; }
    /// The name of a section, as it stands in the symbols for its edges.
    static std::string symbolName(const std::string& section);
    OutputSection* find(const std::string& name);
    /// What messages call the module of a fragment.
    const std::string& moduleOf(const SOBFFragment* fragment) const;
    /// The address of a name for the start of the program; 0 if there is none.
    uint32_t entry() const;
    /// The record of a section's checksum.
    struct ChecksumRecord {
        std::string section;
        SOBFConstExpr* value;
    };
    const std::vector<ChecksumRecord>& checksums() const { return m_checksums; }

private:
    enum class Edge { Start, End, Size };
    struct SectionSymbol {
        std::string section; ///< as it stands in the name of the symbol
        Edge edge;
        SOBFConstExpr* value;
    };

    void defineSectionSymbols();
    SOBFExpr* edgeOf(const std::string& section, Edge edge);
    void pruneConditionals();
    void mark();
    void collect();
    void addFragments(const std::string& moduleName, SOBFSection& section);
    OutputSection& sectionFor(const std::string& name);
    void addOwnSections();
    void addHeap();
    void addCopies();
    void addInitTable();
    void addChecksums();
    OutputSection& addOwn(const std::string& name, SOBFSection* section, bool loaded);
    bool isLoadedWhereItIs(const OutputSection& section) const;
    bool hasChecksum(const OutputSection& section) const;

    void findPlacements();
    const Placement* placementOf(const std::string& name) const;
    const Placement* placementOfKind(int mask, int flags) const;

    bool placeAll();
    void place(OutputSection& section);
    bool placeWhole(OutputSection& section);
    bool placeInPieces(OutputSection& section);
    void placeTable(OutputSection& section);
    void refuse(const OutputSection& section);
    std::vector<AddressRange> freeIn(const Placement& placement) const;
    uint32_t assign(const OutputSection& section, size_t first, size_t last, uint32_t at) const;
    void setSymbols();
    bool relax();

    Tool& m_tool;
    const LinkOptions& m_options;
    LinkInputs& m_inputs;
    std::deque<OutputSection> m_sections;
    std::unordered_map<const SOBFFragment*, std::string> m_modules;
    std::vector<SectionSymbol> m_sectionSymbols;
    std::vector<ChecksumRecord> m_checksums;
    std::vector<OutputSection*> m_order; ///< in which they are placed
    std::vector<AddressRange> m_used;
};
