#include "object/SOBFExpr.h"
#include "object/SOBFPseudoInsn.h"
#include "object/SOBFSection.h"
#include "toolchain/common/ObjectLayout.h"
#include "toolchain/qlink/LinkLayout.h"

#include <algorithm>
#include <cstdio>
#include <map>

namespace {

/// An address behind all memory: what a damaged object claims adds up to no more.
constexpr uint32_t beyond = 0x40000000;

std::string hexadecimal(uint32_t value) {
    char text[16];
    std::snprintf(text, sizeof text, "%04X", value);
    return text;
}

} // namespace

/// Gives out addresses anew. Returns whether anything moved.
bool LinkLayout::placeAll() {
    std::vector<AddressRange> before;
    const auto remember = [&](std::vector<AddressRange>& edges) {
        for (const OutputSection& section : m_sections)
            edges.push_back({section.start(), section.end()});
    };
    remember(before);
    m_used.clear();
    for (OutputSection* section : m_order) {
        section->merged->metricsValid = false;
        place(*section);
        if (m_tool.hasFailed())
            return false;
    }
    setSymbols();
    std::vector<AddressRange> after;
    remember(after);
    return !std::equal(
        before.begin(), before.end(), after.begin(), after.end(),
        [](const AddressRange& a, const AddressRange& b) { return a.start == b.start && a.end == b.end; });
}

void LinkLayout::place(OutputSection& section) {
    section.extents.clear();
    if (section.isTable)
        return placeTable(section);
    if (placeWhole(section))
        return;
    const bool mayBeSplit =
        section.loaded && !(section.flags & section_flags::Writable) && !hasChecksum(section);
    if (!mayBeSplit || !placeInPieces(section))
        refuse(section);
}

/// The room of a placement that nothing lies in yet, in the order of its ranges.
std::vector<AddressRange> LinkLayout::freeIn(const Placement& placement) const {
    std::vector<AddressRange> used = m_used;
    std::sort(used.begin(), used.end(),
              [](const AddressRange& a, const AddressRange& b) { return a.start < b.start; });
    std::vector<AddressRange> gaps;
    for (const AddressRange& range : placement.ranges) {
        uint32_t cursor = range.start;
        for (const AddressRange& taken : used) {
            if (taken.end <= cursor || taken.start >= range.end)
                continue;
            if (taken.start > cursor)
                gaps.push_back({cursor, taken.start});
            cursor = std::max(cursor, taken.end);
        }
        if (cursor < range.end)
            gaps.push_back({cursor, range.end});
    }
    return gaps;
}

/// Gives the records of some fragments their addresses, from `at` on. Returns the address behind them.
uint32_t LinkLayout::assign(const OutputSection& section, size_t first, size_t last, uint32_t at) const {
    for (size_t index = first; index < last; ++index) {
        for (SOBFInsn* insn : section.fragments[index]->insns) {
            insn->setPC(static_cast<long>(at));
            at = static_cast<uint32_t>(
                std::min<uint64_t>(uint64_t{at} + static_cast<uint32_t>(insn->length()), beyond));
        }
    }
    return at;
}

bool LinkLayout::placeWhole(OutputSection& section) {
    for (const AddressRange& gap : freeIn(*section.placement)) {
        const uint32_t start = gap.start + gap.start % 2;
        const uint32_t end = assign(section, 0, section.fragments.size(), start);
        if (end > gap.end)
            continue;
        section.extents.push_back({start, end, 0, section.fragments.size()});
        if (end > start)
            m_used.push_back({start, end});
        return true;
    }
    return false;
}

/// Each gap takes as many fragments as fit.
bool LinkLayout::placeInPieces(OutputSection& section) {
    const size_t usedBefore = m_used.size();
    size_t next = 0;
    for (const AddressRange& gap : freeIn(*section.placement)) {
        const uint32_t start = gap.start + gap.start % 2;
        const size_t first = next;
        uint32_t end = start;
        for (; next < section.fragments.size(); ++next) {
            const uint32_t behind = assign(section, next, next + 1, end);
            if (behind > gap.end)
                break;
            end = behind;
        }
        if (next == first)
            continue;
        section.extents.push_back({start, end, first, next});
        m_used.push_back({start, end});
    }
    if (next == section.fragments.size())
        return true;
    m_used.resize(usedBefore);
    section.extents.clear();
    return false;
}

/// Fragments at fixed places, counted from the start or, if negative, from the end.
void LinkLayout::placeTable(OutputSection& section) {
    const AddressRange& room = section.placement->ranges.front();
    std::map<uint32_t, SOBFFragment*> taken;
    for (size_t index = 0; index < section.fragments.size(); ++index) {
        SOBFFragment* fragment = section.fragments[index];
        int64_t place = 0;
        for (SOBFInsn* insn : fragment->insns)
            if (const auto* origin = dynamic_cast<SOBFOriginInsn*>(insn))
                place = origin->address;
        const int64_t start = place < 0 ? int64_t{room.end} + place : int64_t{room.start} + place;
        const uint32_t end = assign(section, index, index + 1, static_cast<uint32_t>(start));
        if (start < room.start || end > room.end)
            m_tool.error("section " + section.name + ": what " + moduleOf(fragment) + " puts at " +
                         std::to_string(place) + " does not fit");
        const auto [other, isNew] = taken.emplace(static_cast<uint32_t>(start), fragment);
        if (!isNew)
            m_tool.error("section " + section.name + ": " + moduleOf(other->second) + " and " +
                         moduleOf(fragment) + " both define what lies at " +
                         hexadecimal(static_cast<uint32_t>(start)));
    }
    section.extents.push_back({room.start, room.end, 0, section.fragments.size()});
    m_used.push_back(room);
}

void LinkLayout::refuse(const OutputSection& section) {
    const uint32_t size = assign(section, 0, section.fragments.size(), 0);
    std::string free;
    for (const AddressRange& gap : freeIn(*section.placement))
        free += (free.empty() ? "" : ", ") + std::to_string(gap.end - gap.start) + " at " +
                hexadecimal(gap.start);
    m_tool.error("section " + section.name + " does not fit: it has " + std::to_string(size) +
                 " bytes, and free are " + (free.empty() ? "none" : free));
}

void LinkLayout::setSymbols() {
    for (const SectionSymbol& symbol : m_sectionSymbols) {
        symbol.value->value = 0;
        for (const OutputSection& section : m_sections) {
            if (symbolName(section.name) != symbol.section)
                continue;
            symbol.value->value = symbol.edge == Edge::Start ? section.start()
                                  : symbol.edge == Edge::End ? section.end()
                                                             : section.end() - section.start();
        }
    }
}

/// Lets jumps that do not reach grow. Returns whether one did.
bool LinkLayout::relax() {
    bool grown = false;
    for (const OutputSection& section : m_sections) {
        if (!(section.flags & section_flags::Code) || m_tool.hasFailed())
            continue;
        for (SOBFFragment* fragment : section.fragments)
            for (auto it = fragment->insns.begin(); it != fragment->insns.end();) {
                if ((*it)->recode(fragment->insns, it))
                    grown = true;
                else
                    ++it;
            }
    }
    return grown;
}
