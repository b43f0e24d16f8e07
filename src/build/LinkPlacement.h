#pragma once

#include <QStringList>
#include <cstdint>
#include <memory>
#include <vector>

class Builder;
class MemoryMap;
class MemoryMapElement;
class ProjectElement;
class StandardBuildSystem;

/// From its first byte up to the one behind its last.
struct AddressRange {
    uint64_t start;
    uint64_t end;
};

/// Where a link puts the sections of a program: a section placement file says which sections go into which
/// segment, a memory map file says where the segments are, and either may do both. What a link is told and
/// what is shown of it are read from here.
class LinkPlacement {
public:
    struct Section {
        const MemoryMapElement* element;
        bool isFixed; ///< to an address and a size; the linker places it otherwise
    };
    struct Segment {
        const MemoryMapElement* element; ///< the one that knows the addresses
        bool isFromPlacement;            ///< the section placement file names it, not the memory map
        std::vector<Section> sections;
        std::vector<AddressRange> unused; ///< what the fixed sections leave
    };

    /// Finds the files of a project, loads them, and places the sections: the segments of the section
    /// placement file first, then those of the memory map. What looks wrong is a message. False, with the
    /// error told, if there can be no link.
    bool load(StandardBuildSystem& system, ProjectElement* project, const QString& config, Builder& builder);

    const std::vector<Segment>& segments() const { return m_segments; }
    /// What the linker is told.
    QStringList words() const;

    /// The files that are read, and what they hold; empty and null if there are none.
    const QString& placementPath() const { return m_placementPath; }
    const QString& memoryMapPath() const { return m_memoryMapPath; }
    const MemoryMap* placement() const { return m_placement.get(); }
    const MemoryMap* memoryMap() const { return m_memoryMap.get(); }

    /// The ranges of a piece of memory that lie between those used, by a walk in the order of addresses.
    /// Where used ranges overlap, the last one in that order decides where the next free one begins.
    static std::vector<AddressRange> findUnusedRanges(std::vector<AddressRange> used, AddressRange memory);

private:
    bool place(const MemoryMap& map, bool isPlacement, Builder& builder);
    const MemoryMapElement* segmentFor(const MemoryMapElement& segment, bool isPlacement, bool& ended,
                                       Builder& builder) const;

    QString m_placementPath;
    QString m_memoryMapPath;
    std::shared_ptr<MemoryMap> m_placement;
    std::shared_ptr<MemoryMap> m_memoryMap;
    std::vector<Segment> m_segments;
};
