#include "toolchain/common/FragmentMaker.h"

#include "foundation/HException.h"
#include "object/SOBFMSP430Insn.h"
#include "object/SOBFPseudoInsn.h"
#include "object/SOBFSection.h"
#include "toolchain/common/ElfFile.h"
#include "toolchain/common/Relocations.h"

#include <algorithm>
#include <climits>
#include <elf.h>

namespace {

/// Bytes that are all the same become one record from this many on.
constexpr uint32_t shortestRun = 8;

SOBFExpr* number(int64_t value) { return new SOBFConstExpr(value); }

int64_t signExtended(uint32_t value, unsigned bits) {
    const uint32_t sign = uint32_t{1} << (bits - 1);
    return static_cast<int64_t>(value) - (value & sign ? int64_t{sign} * 2 : 0);
}

} // namespace

FragmentMaker::FragmentMaker(FragmentContext& context, SOBFSection* into, const ElfSection& from)
    : m_context(context), m_into(into), m_from(from) {}

void FragmentMaker::setOrigin(int place) {
    m_hasOrigin = true;
    m_origin = place;
}

SOBFMarker* FragmentMaker::markerAt(uint32_t offset) {
    SOBFMarker*& marker = m_markers[offset];
    if (!marker)
        marker = new SOBFMarker;
    return marker;
}

SOBFExpr* FragmentMaker::place(int64_t offset) {
    if (offset >= 0 && offset <= m_from.size)
        return new SOBFMarkerExpr(markerAt(static_cast<uint32_t>(offset)));
    return SOBFBinaryExpr::make(TAG_ADD, new SOBFMarkerExpr(markerAt(0)), number(offset));
}

void FragmentMaker::resolveRelocations() {
    for (const ElfRelocation& relocation : m_from.relocations) {
        const RelocationRow* row = relocationRow(relocation.type);
        if (!row)
            throw HException("section " + m_from.name + ": relocations of type " +
                             std::to_string(relocation.type) + " have no counterpart in an object file");
        if (relocation.offset > m_from.size || row->bytes > m_from.size - relocation.offset)
            throw HException("section " + m_from.name + ": a relocation lies outside");
        if (row->bytes > 0)
            m_targets[relocation.offset] = {relocation.type, m_context.target(relocation)};
    }
}

void FragmentMaker::takeApart() {
    if (m_from.type == SHT_NOBITS)
        return takeRoomApart();
    if (m_from.holdsCode() && !m_hasOrigin)
        takeCodeApart();
    else
        takeDataApart(0, m_from.size);
    resolvePlaces();
}

void FragmentMaker::takeRoomApart() {
    for (uint32_t at = 0; at < m_from.size;) {
        const uint32_t stop = nextStop(at, m_from.size);
        m_pieces.push_back({at, new SOBFSpaceInsn(number(stop - at))});
        at = stop;
    }
}

uint32_t FragmentMaker::bytesAt(uint32_t at, uint32_t count) const {
    uint32_t value = 0;
    for (uint32_t index = 0; index < count; ++index)
        value |= uint32_t{static_cast<uint8_t>(m_from.bytes[at + index])} << (8 * index);
    return value;
}

void FragmentMaker::addPiece(uint32_t at, SOBFInsn* record, uint32_t length) {
    record->appendBytes(std::string_view(m_from.bytes).substr(at, length));
    m_pieces.push_back({at, record});
}

void FragmentMaker::takeCodeApart() {
    const std::string_view bytes = m_from.bytes;
    for (uint32_t at = 0; at < m_from.size;) {
        const auto insn = at % 2 == 0 ? decodeInsn(bytes.substr(at), m_context.extended) : std::nullopt;
        if (insn && !isInterrupted(at, *insn) && addInsn(at, *insn))
            at += insn->length;
        else
            at += addDatum(at, at % 2 == 0 ? std::min(at + 2, m_from.size) : at + 1);
    }
}

/// Whether a place inside is marked, or a relocation touches something else than an operand: then the words
/// are data.
bool FragmentMaker::isInterrupted(uint32_t at, const DecodedInsn& insn) const {
    const auto marker = m_markers.upper_bound(at);
    if (marker != m_markers.end() && marker->first < at + insn.length)
        return true;
    for (auto target = m_targets.lower_bound(at);
         target != m_targets.end() && target->first < at + insn.length; ++target) {
        const RelocationRow& row = *relocationRow(target->second.type);
        const uint32_t place = target->first - at;
        const bool isOperand = place != 0 && row.bytes == 2 && !row.jump &&
                               (place == insn.source.at || place == insn.destination.at);
        if (!isOperand && !(place == 0 && insn.isJump && row.jump))
            return true;
    }
    return false;
}

bool FragmentMaker::addInsn(uint32_t at, const DecodedInsn& insn) {
    auto* record = new SOBFMSP430Insn(insn.opcode, nullptr, nullptr, false);
    if (insn.isJump) {
        const auto target = m_targets.find(at);
        if (target != m_targets.end())
            record->operand1 = target->second.value;
        else
            m_jumps.push_back({at, int64_t{at} + insn.jumpOffset, record});
    }
    if (insn.source.isThere())
        record->operand1 = operand(at, insn, insn.source);
    if (insn.destination.isThere())
        record->operand2 = operand(at, insn, insn.destination);
    addPiece(at, record, insn.length);
    return true;
}

SOBFExpr* FragmentMaker::operand(uint32_t at, const DecodedInsn& insn, const DecodedInsn::Operand& operand) {
    const uint32_t where = at + operand.at;
    const auto target = m_targets.find(where);
    if (target == m_targets.end()) {
        const int64_t value = signExtended(operand.value, insn.isExtended ? 20 : 16);
        if (operand.symbolic)
            return placeFrom(at, int64_t{where} + value);
        return number(operand.indexed ? value : int64_t{operand.value});
    }
    const bool relative = relocationRow(target->second.type)->relative;
    if (relative == operand.symbolic)
        return target->second.value;
    return SOBFBinaryExpr::make(relative ? TAG_SUBTRACT : TAG_ADD, target->second.value,
                                placeFrom(at, where));
}

/// A place told by a distance from the record at `at`. It can be marked only if a record begins there, which
/// shows when all is taken apart.
SOBFExpr* FragmentMaker::placeFrom(uint32_t at, int64_t offset) {
    return SOBFBinaryExpr::make(TAG_ADD, new SOBFMarkerExpr(markerAt(at)), number(offset - at));
}

void FragmentMaker::resolvePlaces() {
    const auto begins = [&](int64_t offset) {
        if (offset == m_from.size)
            return true;
        const auto found =
            std::lower_bound(m_pieces.begin(), m_pieces.end(), offset,
                             [](const Piece& piece, int64_t place) { return piece.at < place; });
        return found != m_pieces.end() && found->at == offset;
    };
    for (const Jump& jump : m_jumps)
        jump.record->operand1 = begins(jump.to) ? place(jump.to) : placeFrom(jump.from, jump.to);
}

uint32_t FragmentMaker::nextStop(uint32_t at, uint32_t end) const {
    const auto marker = m_markers.upper_bound(at);
    if (marker != m_markers.end())
        end = std::min(end, marker->first);
    const auto target = m_targets.upper_bound(at);
    return target != m_targets.end() ? std::min(end, target->first) : end;
}

uint32_t FragmentMaker::runAt(uint32_t at, uint32_t end) const {
    uint32_t last = at;
    while (last < end && m_from.bytes[last] == m_from.bytes[at])
        ++last;
    return last - at;
}

void FragmentMaker::takeDataApart(uint32_t start, uint32_t end) {
    for (uint32_t at = start; at < end;)
        at += addDatum(at, end);
}

/// Adds a record for the data at a place, up to `end`, and returns its length.
uint32_t FragmentMaker::addDatum(uint32_t at, uint32_t end) {
    const auto target = m_targets.find(at);
    if (target != m_targets.end())
        return addRelocatedDatum(at, target->second);
    const uint32_t stop = nextStop(at, end);
    const uint32_t run = runAt(at, stop);
    if (run >= shortestRun) {
        auto* fill = new SOBFFillInsn(static_cast<int>(run), static_cast<uint8_t>(m_from.bytes[at]));
        m_pieces.push_back({at, fill});
        return run;
    }
    const uint32_t size = m_from.alignment >= 2 && at % 2 == 0 && stop - at >= 2 ? 2 : 1;
    addPiece(at, new SOBFDefBytesInsn(number(bytesAt(at, size)), static_cast<int>(size)), size);
    return size;
}

uint32_t FragmentMaker::addRelocatedDatum(uint32_t at, const Target& target) {
    const RelocationRow& row = *relocationRow(target.type);
    if (row.jump)
        throw HException("section " + m_from.name + ": a jump is no instruction");
    SOBFExpr* value = target.value;
    if (row.relative)
        value = SOBFBinaryExpr::make(TAG_SUBTRACT, value, place(at));
    if (row.bytes == 2)
        addPiece(at, new SOBFDefAddrInsn(value), 2);
    else
        addPiece(at, new SOBFDefBytesInsn(value, static_cast<int>(row.bytes)), row.bytes);
    return row.bytes;
}

void FragmentMaker::add(SOBFInsn* record) {
    if (!m_hasOrigin || m_origin >= 0)
        record->setPC(m_pc);
    m_into->addInsn(record);
    if (record->length() > INT_MAX - std::max(m_pc, 0))
        throw HException("section " + m_from.name + ": too large");
    m_pc += record->length();
}

void FragmentMaker::addLinesAt(size_t& nextLine, uint32_t at) {
    const LineRow* line = nullptr;
    for (; nextLine < m_lines.size() && m_lines[nextLine]->address <= at; ++nextLine)
        line = m_lines[nextLine];
    // Code that the compiler made for no line in particular stays with the line before it.
    if (!line || line->isEnd || line->line == 0)
        return;
    if (m_lastLine && m_lastLine->line == line->line && m_lastLine->file == line->file)
        return;
    m_lastLine = line;
    add(new SOBFLocus(TAG_LOCUS, static_cast<int>(line->line), m_context.files[line->file]));
}

void FragmentMaker::addRecords() {
    m_into->newFragment();
    m_pc = m_hasOrigin ? m_origin : m_context.cursors[m_into];
    if (m_hasOrigin)
        add(new SOBFOriginInsn(m_origin));
    else if (m_from.alignment > 1)
        add(new SOBFAlignInsn(static_cast<int>(m_from.alignment)));
    std::stable_sort(m_lines.begin(), m_lines.end(),
                     [](const LineRow* a, const LineRow* b) { return a->address < b->address; });
    const bool strings = m_from.flags & SHF_STRINGS && m_from.entrySize == 1;
    auto marker = m_markers.begin();
    size_t nextLine = 0;
    for (const Piece& piece : m_pieces) {
        // Texts are left out one by one, if nothing refers to them.
        if (strings && piece.at > 0 && m_from.bytes[piece.at - 1] == '\0')
            m_into->newFragment();
        if (marker != m_markers.end() && marker->first < piece.at)
            throw HException("section " + m_from.name + ": a label lies within a value");
        if (marker != m_markers.end() && marker->first == piece.at)
            add((marker++)->second);
        addLinesAt(nextLine, piece.at);
        add(piece.record);
    }
    for (; marker != m_markers.end(); ++marker)
        add(marker->second);
    if (!m_hasOrigin)
        m_context.cursors[m_into] = m_pc;
}
