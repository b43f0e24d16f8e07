#include "toolchain/qlink/MapFile.h"

#include "object/SOBFSection.h"
#include "toolchain/common/ObjectLayout.h"
#include "toolchain/qlink/LinkLayout.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>

namespace {

[[gnu::format(printf, 2, 3)]] void append(std::string& text, const char* format, ...) {
    char line[512];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(line, sizeof line, format, arguments);
    va_end(arguments);
    text += line;
}

const char* kindOf(const OutputSection& section) {
    if (section.flags & section_flags::Zeroed)
        return "zeroed";
    if (!section.loaded)
        return "copied at start";
    return section.flags & section_flags::Code       ? "code"
           : section.flags & section_flags::Writable ? "data"
                                                     : "constant";
}

void appendSections(std::string& text, const std::vector<const OutputSection*>& sections) {
    text += "Sections\n\n  Start   End     Bytes  Section           Kind\n";
    for (const OutputSection* section : sections)
        for (const OutputSection::Extent& extent : section->extents)
            append(text, "  %06X  %06X  %5u  %-16s  %s\n", extent.start,
                   extent.end - (extent.end > extent.start), extent.end - extent.start, section->name.c_str(),
                   kindOf(*section));
}

/// The addresses that a fragment takes.
AddressRange spanOf(const SOBFFragment& fragment) {
    SOBFInsn* first = fragment.insns.front();
    SOBFInsn* last = fragment.insns.back();
    return {static_cast<uint32_t>(first->pc), static_cast<uint32_t>(last->pc + last->length())};
}

/// Fragments of one module that lie side by side are one line.
void appendContents(std::string& text, const std::vector<const OutputSection*>& sections,
                    const LinkLayout& layout) {
    text += "\nContents\n";
    for (const OutputSection* section : sections) {
        append(text, "\n  %s\n", section->name.c_str());
        for (size_t index = 0; index < section->fragments.size();) {
            AddressRange span = spanOf(*section->fragments[index]);
            const std::string& module = layout.moduleOf(section->fragments[index]);
            while (++index < section->fragments.size() &&
                   layout.moduleOf(section->fragments[index]) == module) {
                const AddressRange next = spanOf(*section->fragments[index]);
                if (next.start != span.end)
                    break;
                span.end = next.end;
            }
            append(text, "    %06X  %5u  ", span.start, span.end - span.start);
            text += module + "\n";
        }
    }
}

void appendSymbols(std::string& text, const Executable& program) {
    std::vector<const Executable::Symbol*> symbols;
    for (const Executable::Symbol& symbol : program.symbols)
        if (symbol.isGlobal)
            symbols.push_back(&symbol);
    std::sort(symbols.begin(), symbols.end(), [](const auto* a, const auto* b) {
        return std::tie(a->value, a->name) < std::tie(b->value, b->name);
    });
    text += "\nSymbols\n\n";
    for (const Executable::Symbol* symbol : symbols) {
        const char* section =
            symbol->section < 0 ? "-" : program.sections[static_cast<size_t>(symbol->section)].name.c_str();
        append(text, "  %06X  %5u  %-16s  ", symbol->value, symbol->size, section);
        text += symbol->name + "\n";
    }
}

} // namespace

std::string mapText(const std::string& title, const LinkLayout& layout, const Executable& program) {
    std::vector<const OutputSection*> sections;
    for (const OutputSection& section : layout.sections())
        sections.push_back(&section);
    std::stable_sort(sections.begin(), sections.end(),
                     [](const auto* a, const auto* b) { return a->start() < b->start(); });
    std::string text = "Map of " + title + "\n\n";
    appendSections(text, sections);
    appendContents(text, sections, layout);
    appendSymbols(text, program);
    return text;
}
