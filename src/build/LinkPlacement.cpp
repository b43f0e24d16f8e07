#include "build/LinkPlacement.h"

#include "build/Builder.h"
#include "build/StandardBuildSystem.h"
#include "memorymap/MemoryMap.h"

#include <algorithm>
#include <tuple>

namespace {

AddressRange rangeOf(const MemoryMapElement& element) {
    return {element.address(), uint64_t{element.address()} + element.size()};
}

QString hexadecimal(uint64_t address) { return QString::number(address, 16); }

void appendSegment(const MemoryMapElement& segment, QStringList& words) {
    const QString address = QString::number(segment.address());
    const QString size = QString::number(segment.size());
    if (segment.hasAddressSymbol())
        words.append("-D" + segment.addressSymbol() + "=" + address);
    if (segment.hasSizeSymbol())
        words.append("-D" + segment.sizeSymbol() + "=" + size);
    words.append("-D___" + segment.name() + "_Address=" + address);
    words.append("-D___" + segment.name() + "_Size=" + size);
    if (segment.hasAddressSpace())
        words.append("-D__" + segment.name() + "_" + segment.addressSpace() + "=1");
}

/// A fixed section ends at its last byte, a range for the linker to fill behind its last one.
void appendSections(const LinkPlacement::Segment& segment, QStringList& words) {
    QString names;
    for (const LinkPlacement::Section& section : segment.sections) {
        const MemoryMapElement& element = *section.element;
        if (section.isFixed) {
            const uint32_t last = element.address() + element.size() - 1;
            words.append("-T" + element.name() + "=" + hexadecimal(element.address()) + "-" +
                         hexadecimal(last));
        } else {
            names += (names.isEmpty() ? "" : ",") + element.name();
        }
        if (element.load())
            words.append("-G" + element.name() + "=L");
    }
    QStringList ranges;
    for (const AddressRange& range : segment.unused)
        ranges.append(hexadecimal(range.start) + "-" + hexadecimal(range.end));
    if (!ranges.isEmpty())
        names += "=" + ranges.join(u',');
    if (!names.isEmpty())
        words.append("-T" + names);
}

} // namespace

bool LinkPlacement::load(StandardBuildSystem& system, ProjectElement* project, const QString& config,
                         Builder& builder) {
    if (system.useSectionPlacementFileForLink(project, config, m_placementPath)) {
        m_placement = system.getSectionPlacementFileForLink(project, config, m_placementPath);
        if (!m_placement) {
            builder.error("Cannot load section placement file: " + m_placementPath);
            return false;
        }
    } else {
        m_placementPath = QString("");
    }
    if (system.useMemoryMapFileForLink(project, config, m_memoryMapPath)) {
        m_memoryMap = system.getMemoryMapFileForLink(project, config, m_memoryMapPath);
        if (!m_memoryMap) {
            builder.error("Cannot load memory map file: " + m_memoryMapPath);
            return false;
        }
    } else {
        m_memoryMapPath = QString("");
    }
    return (!m_placement || place(*m_placement, true, builder)) &&
           (!m_memoryMap || place(*m_memoryMap, false, builder));
}

/// One pass over the segments of a file, from its end to its beginning.
bool LinkPlacement::place(const MemoryMap& map, bool isPlacement, Builder& builder) {
    for (MemoryMapElement* named : map.getSegments(true)) {
        bool ended = false;
        const MemoryMapElement* element = segmentFor(*named, isPlacement, ended, builder);
        if (ended)
            return false;
        if (!element)
            continue;
        Segment segment{element, isPlacement, {}, {}};
        const AddressRange memory = rangeOf(*element);
        std::vector<AddressRange> used;
        for (const MemoryMapElement* section : MemoryMap::getSections(named, true)) {
            const bool isFixed = section->hasAddress() && section->hasSize();
            segment.sections.push_back({section, isFixed});
            if (!isFixed)
                continue;
            const AddressRange range = rangeOf(*section);
            used.push_back(range);
            if (range.start >= memory.start && range.start <= memory.end && range.end > memory.end)
                builder.message("section " + section->name() + " is larger than the segment " +
                                element->name());
        }
        segment.unused = findUnusedRanges(std::move(used), memory);
        m_segments.push_back(std::move(segment));
    }
    return true;
}

/// The element that knows the addresses of a segment; null if there is none, which ends a link without any
/// memory map.
const MemoryMapElement* LinkPlacement::segmentFor(const MemoryMapElement& segment, bool isPlacement,
                                                  bool& ended, Builder& builder) const {
    if (!isPlacement || (segment.hasAddress() && segment.hasSize()))
        return &segment;
    ended = !m_memoryMap;
    if (ended) {
        builder.error("memory map file is required.");
        return nullptr;
    }
    const MemoryMapElement* known = m_memoryMap->getSegment(segment.name());
    if (!known)
        builder.message("section placement file referenced segment " + segment.name() +
                        " not in memory map file");
    return known;
}

QStringList LinkPlacement::words() const {
    QStringList words;
    for (const Segment& segment : m_segments) {
        appendSegment(*segment.element, words);
        appendSections(segment, words);
    }
    return words;
}

std::vector<AddressRange> LinkPlacement::findUnusedRanges(std::vector<AddressRange> used,
                                                          AddressRange memory) {
    std::sort(used.begin(), used.end(), [](const AddressRange& a, const AddressRange& b) {
        return std::tie(a.start, a.end) < std::tie(b.start, b.end);
    });
    std::vector<AddressRange> unused;
    uint64_t cursor = memory.start;
    for (const AddressRange& range : used) {
        if (range.start > cursor)
            unused.push_back({cursor, range.start});
        cursor = range.end;
    }
    if (cursor < memory.end)
        unused.push_back({cursor, memory.end});
    return unused;
}
