#include "toolchain/qlink/LinkImage.h"

#include "object/SOBFMSP430Insn.h"
#include "object/SOBFModule.h"
#include "object/SOBFPseudoInsn.h"
#include "object/SOBFSection.h"
#include "object/SOBFSymbol.h"
#include "object/SOBFType.h"
#include "toolchain/common/ObjectLayout.h"
#include "toolchain/qlink/Checksum.h"
#include "toolchain/qlink/LinkInputs.h"
#include "toolchain/qlink/LinkLayout.h"

#include <algorithm>
#include <cstdio>
#include <unordered_map>

namespace {

std::string hexadecimal(int64_t value) {
    char text[24];
    std::snprintf(text, sizeof text, "0x%llX", static_cast<unsigned long long>(value));
    return text;
}

/// Bits that the value of an operand has at its disposal.
int bitsOf(const SOBFInsn* insn) {
    if (const auto* bytes = dynamic_cast<const SOBFDefBytesInsn*>(insn))
        return 8 * bytes->size;
    if (const auto* machine = dynamic_cast<const SOBFMSP430Insn*>(insn)) {
        const bool address =
            machine->opcode < 0x1000 || (machine->opcode >= 0x1380 && machine->opcode < 0x1400);
        return machine->formatIII() ? 64 : machine->isExtended() || address ? 20 : 16;
    }
    return 16;
}

bool fits(int64_t value, int bits) {
    return bits >= 64 || (value < int64_t{1} << bits && value >= -(int64_t{1} << (bits - 1)));
}

class ImageMaker {
public:
    ImageMaker(Tool& tool, const LinkOptions& options, LinkInputs& inputs, LinkLayout& layout)
        : m_tool(tool), m_options(options), m_inputs(inputs), m_layout(layout) {}

    Executable make() {
        m_program.entry = m_layout.entry();
        m_program.isExtended = m_options.extended;
        for (const OutputSection& section : m_layout.sections())
            for (SOBFFragment* fragment : section.fragments)
                encode(section, *fragment);
        if (m_tool.hasFailed())
            return {};
        makeChecksums();
        for (const OutputSection& section : m_layout.sections())
            for (const OutputSection::Extent& extent : section.extents)
                addExtent(section, extent);
        for (const auto& file : m_inputs.modules())
            addSymbols(file->module());
        addSymbols(m_inputs.own());
        return std::move(m_program);
    }

private:
    void encode(const OutputSection& section, const SOBFFragment& fragment) {
        for (SOBFInsn* insn : fragment.insns) {
            for (const SOBFExpr* operand : {insn->operand1, insn->operand2})
                if (operand)
                    check(section, fragment, *insn, *operand);
            insn->encode();
        }
    }

    void check(const OutputSection& section, const SOBFFragment& fragment, const SOBFInsn& insn,
               const SOBFExpr& operand) {
        const SOBFExprValue value = operand.evaluate();
        if (!value.failed && fits(value.value, bitsOf(&insn)))
            return;
        std::string place = m_layout.moduleOf(&fragment);
        if (insn.locus && insn.locus->fragment == &fragment && insn.locus->file && insn.locus->file->path)
            place = std::string(insn.locus->file->path->view()) + ":" + std::to_string(insn.locus->line);
        m_tool.error(place + ": " + operand.printString() + " in section " + section.name +
                     (value.failed ? " has no value: " + value.message
                                   : " is " + hexadecimal(value.value) + ", which does not fit"));
    }

    /// The bytes of a run of fragments. What no record covers reads as erased memory.
    std::string bytesOf(const OutputSection& section, const OutputSection::Extent& extent) const {
        std::string bytes(extent.end - extent.start, section.isTable ? '\xFF' : '\0');
        for (size_t index = extent.first; index < extent.last; ++index)
            for (SOBFInsn* insn : section.fragments[index]->insns)
                if (const int length = insn->length(); length > 0)
                    insn->copyBytes(reinterpret_cast<uint8_t*>(bytes.data()) +
                                        (static_cast<uint32_t>(insn->pc) - extent.start),
                                    length);
        return bytes;
    }

    void makeChecksums() {
        for (const LinkLayout::ChecksumRecord& record : m_layout.checksums()) {
            const OutputSection& section = *m_layout.find(record.section);
            const std::string bytes = bytesOf(section, section.extents.front()); // it has one only
            record.value->value = checksumAlgorithm(m_options.checksumAlgorithm)(bytes);
        }
        if (const OutputSection* table = m_layout.find("CHECKSUM"))
            for (SOBFFragment* fragment : table->fragments)
                encode(*table, *fragment);
    }

    void addExtent(const OutputSection& section, const OutputSection::Extent& extent) {
        if (extent.end == extent.start)
            return;
        for (size_t index = extent.first; index < extent.last; ++index)
            m_sectionOf[section.fragments[index]] = static_cast<int>(m_program.sections.size());
        m_program.sections.push_back({section.name, extent.start, extent.end - extent.start, section.flags,
                                      section.loaded ? bytesOf(section, extent) : std::string()});
        if (m_options.debug && section.loaded && section.flags & section_flags::Code)
            addLines(section, extent);
    }

    void addLines(const OutputSection& section, const OutputSection::Extent& extent) {
        bool open = false;
        const auto end = [&](uint32_t address) {
            if (open)
                m_program.lines.rows.push_back({0, address, 0, 0, true});
            open = false;
        };
        for (size_t index = extent.first; index < extent.last; ++index) {
            const auto& insns = section.fragments[index]->insns;
            if (!insns.empty())
                end(static_cast<uint32_t>(insns.front()->pc));
            for (const SOBFInsn* insn : insns) {
                const auto* locus = dynamic_cast<const SOBFLocus*>(insn);
                if (!locus || !locus->file || !locus->file->path)
                    continue;
                m_program.lines.rows.push_back({0, static_cast<uint32_t>(locus->pc), fileNumber(*locus->file),
                                                static_cast<uint32_t>(locus->line), false});
                open = true;
            }
        }
        end(extent.end);
    }

    uint32_t fileNumber(const SOBFFilename& file) {
        const auto [entry, isNew] =
            m_files.emplace(file.path, static_cast<uint32_t>(m_program.lines.files.size()));
        if (isNew)
            m_program.lines.files.emplace_back(file.path->view());
        return entry->second;
    }

    void addSymbols(const SOBFModule& module) {
        for (const SOBFSymbol* symbol : module.symbols) {
            const bool isGlobal = symbol->name && module.publics.value(symbol->name) == symbol;
            const bool isLocal = symbol->name && symbol->scope == &module;
            if (!symbol->value || !(isGlobal || isLocal))
                continue;
            // One that gave way to another has that one's value.
            if (isGlobal && m_inputs.symbols().definition(symbol->name) != symbol)
                continue;
            const auto* place = dynamic_cast<const SOBFMarkerExpr*>(symbol->value);
            const auto section = place ? m_sectionOf.find(place->marker->fragment) : m_sectionOf.end();
            if (place && section == m_sectionOf.end())
                continue;
            const SOBFExprValue value = symbol->value->evaluate();
            if (value.failed)
                continue;
            Executable::Symbol made;
            made.name = symbol->name->view();
            made.value = static_cast<uint32_t>(value.value);
            made.isGlobal = isGlobal;
            made.section = place ? section->second : -1;
            if (const auto* function = dynamic_cast<const SOBFFunctionType*>(symbol->type)) {
                made.isFunction = true;
                made.size = static_cast<uint32_t>(function->word0);
            } else if (symbol->type) {
                made.isObject = true;
                made.size = static_cast<uint32_t>(symbol->type->size);
            }
            // Debuggers pass over labels that are neither; those of assembly sources mostly have no type.
            if (place && isGlobal && !symbol->type) {
                const int flags = m_program.sections[static_cast<size_t>(made.section)].flags;
                made.isFunction = (flags & section_flags::Code) != 0;
                made.isObject = !made.isFunction;
            }
            m_program.symbols.push_back(std::move(made));
        }
    }

    Tool& m_tool;
    const LinkOptions& m_options;
    LinkInputs& m_inputs;
    LinkLayout& m_layout;
    Executable m_program;
    std::unordered_map<const SOBFFragment*, int> m_sectionOf;
    std::unordered_map<const HString*, uint32_t> m_files;
};

} // namespace

Executable makeExecutable(Tool& tool, const LinkOptions& options, LinkInputs& inputs, LinkLayout& layout) {
    return ImageMaker(tool, options, inputs, layout).make();
}
