#include "toolchain/compiler/DoubtfulCode.h"

#include "object/SOBFMSP430Fields.h"
#include "object/SOBFMSP430Insn.h"
#include "object/SOBFModule.h"
#include "object/SOBFPseudoInsn.h"
#include "object/SOBFSection.h"
#include "object/SOBFSymbol.h"
#include "toolchain/common/ObjectLayout.h"

#include <array>
#include <map>
#include <optional>

using namespace msp430;

// Follows, through one straight run of code, what each register holds: some unknown value and what was added
// to it. Two reads of one value and distance are reads of one place, whatever registers they go through.

namespace {

/// A value that nothing is known of, and a distance from it.
using Place = std::pair<unsigned, int64_t>;

class StraightRun {
public:
    StraightRun() { forget(); }

    /// Nothing is known of any register any more.
    void forget() {
        for (Place& held : m_held)
            held = {m_fresh++, 0};
        m_reads.clear();
    }

    /// Takes the next instruction. Returns whether it, or an earlier one together with it, is doubtful.
    bool take(const SOBFMSP430Insn& insn) {
        const unsigned word = insn.opcode & 0xFFFF;
        if (insn.isExtended() || !insn.formatI()) {
            forgetTarget(insn, word);
            return false;
        }
        const std::optional<Place> from = source(insn, word);
        const bool doubtful = from && readsMemory(word) && noteRead(word, *from);
        advance(word);
        write(insn, word);
        return doubtful;
    }

private:
    static bool readsMemory(unsigned word) { return mode(word) != Direct; }
    static bool fromGenerator(unsigned word) {
        const unsigned number = sourceRegister(word);
        return number == R3 || (number == SR && mode(word) != Direct);
    }
    static bool advances(unsigned word) {
        return mode(word) == IndirectIncrement && sourceRegister(word) != PC && !fromGenerator(word);
    }
    /// ADD, SUB, AND, BIS, XOR: those that clang combines with a read.
    static bool combines(unsigned word) {
        const unsigned operation = word >> 12;
        return advances(word) &&
               (operation == 5 || operation == 8 || operation == 13 || operation == 14 || operation == 15);
    }

    std::optional<Place> source(const SOBFMSP430Insn& insn, unsigned word) const {
        if (fromGenerator(word) || sourceRegister(word) == PC)
            return {};
        Place place = m_held[sourceRegister(word)];
        if (mode(word) != Indexed)
            return place;
        if (!insn.source() || !insn.source()->isConstant())
            return {};
        place.second += insn.source()->evaluate().value;
        return place;
    }

    /// Whether a place is read twice, and one of the two combines.
    bool noteRead(unsigned word, const Place& place) {
        const auto [earlier, isFirst] = m_reads.try_emplace(place, combines(word));
        return !isFirst && (combines(word) || earlier->second);
    }

    void advance(unsigned word) {
        if (advances(word))
            m_held[sourceRegister(word)].second += word & byteBit ? 1 : 2;
    }

    /// The constant that an instruction adds or takes away; nothing if it does something else.
    static std::optional<int64_t> added(const SOBFMSP430Insn& insn, unsigned word) {
        constexpr int64_t generated[] = {0, 1, 2, -1};
        std::optional<int64_t> value;
        if (sourceRegister(word) == R3)
            value = generated[mode(word)];
        else if (sourceRegister(word) == SR && mode(word) >= Indirect)
            value = mode(word) == Indirect ? 4 : 8;
        else if (sourceRegister(word) == PC && mode(word) == IndirectIncrement && insn.source() &&
                 insn.source()->isConstant())
            value = static_cast<int16_t>(insn.source()->evaluate().value);
        if (!value || word & byteBit || (word >> 12 != 5 && word >> 12 != 8))
            return {};
        return word >> 12 == 5 ? *value : -*value;
    }

    void write(const SOBFMSP430Insn& insn, unsigned word) {
        const unsigned operation = word >> 12;
        if (destinationIndexed(word) || operation == 9 || operation == 11) // CMP and BIT write nothing
            return;
        Place& held = m_held[destinationRegister(word)];
        if (const auto constant = added(insn, word))
            held.second += *constant;
        else if (operation == 4 && !(word & byteBit) && mode(word) == Direct && sourceRegister(word) != R3)
            held = m_held[sourceRegister(word)];
        else
            held = {m_fresh++, 0};
    }

    /// Instructions of one operand change it, if they change anything; those that push move the stack
    /// pointer.
    void forgetTarget(const SOBFMSP430Insn& insn, unsigned word) {
        if (insn.isExtended() || insn.formatIII() || word < 0x1000 || word >= 0x1280)
            return forget();
        if ((word & 0xFF80) == 0x1200)
            m_held[SP].second -= 2;
        else if (mode(word) == Direct)
            m_held[destinationRegister(word)] = {m_fresh++, 0};
    }

    unsigned m_fresh = 0;
    std::array<Place, 16> m_held;
    std::map<Place, bool> m_reads; ///< whether an operation that advances the pointer has read it
};

/// The functions of a module by their first records.
std::map<const SOBFMarker*, std::string> functionsOf(const SOBFModule& module) {
    std::map<const SOBFMarker*, std::string> functions;
    for (const SOBFSymbol* symbol : module.symbols)
        if (const auto* place = dynamic_cast<const SOBFMarkerExpr*>(symbol->value); place && symbol->name)
            functions[place->marker] = symbol->name->view();
    return functions;
}

std::string placeText(const std::string& function, const SOBFLocus* line) {
    if (!line || !line->file->path)
        return function;
    return function + ", " + std::string(line->file->path->view()) + ":" + std::to_string(line->line);
}

} // namespace

std::vector<std::string> doubtfulPlaces(const SOBFModule& module) {
    const auto functions = functionsOf(module);
    std::vector<std::string> places;
    for (const SOBFSection* section : module.sections) {
        if (!(section->flags & section_flags::Code))
            continue;
        for (const SOBFFragment* fragment : section->fragments) {
            StraightRun run;
            std::string function;
            const SOBFLocus* line = nullptr;
            for (const SOBFInsn* record : fragment->insns) {
                if (const auto* insn = dynamic_cast<const SOBFMSP430Insn*>(record)) {
                    if (run.take(*insn))
                        places.push_back(placeText(function, line));
                } else if (const auto* locus = dynamic_cast<const SOBFLocus*>(record)) {
                    line = locus;
                } else if (const auto* marker = dynamic_cast<const SOBFMarker*>(record)) {
                    run.forget();
                    if (const auto named = functions.find(marker); named != functions.end())
                        function = named->second;
                }
            }
        }
    }
    return places;
}
