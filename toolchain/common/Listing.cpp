#include "toolchain/common/Listing.h"

#include "object/SOBFMSP430Fields.h"
#include "object/SOBFMSP430Insn.h"
#include "object/SOBFSymbol.h"
#include "toolchain/common/Decode.h"
#include "toolchain/common/ElfFile.h"
#include "toolchain/common/LineTable.h"
#include "toolchain/common/ObjectLayout.h"

#include <algorithm>
#include <cstdio>
#include <elf.h>
#include <map>
#include <unordered_map>

namespace {

constexpr size_t bytesInLine = 16;
constexpr size_t textColumn = 28;

std::string hexadecimal(uint32_t value, int digits) {
    char text[16];
    std::snprintf(text, sizeof text, "%0*X", digits, value);
    return text;
}

/// Tabs become blanks, so that the text stands in columns.
std::string columns(std::string_view text) {
    std::string result;
    for (const char character : text) {
        if (character == '\t')
            result.append(8 - result.size() % 8, ' ');
        else
            result += character;
    }
    return result;
}

class Listing {
public:
    Listing(const ElfFile& elf, const SourceReader& readSource) : m_elf(elf), m_readSource(readSource) {
        for (const ElfSymbol& symbol : elf.symbols)
            if (!symbol.name.empty() && symbol.section != SHN_ABS && symbol.section != SHN_UNDEF)
                m_labels[symbol.value].push_back(&symbol);
        const LineTable lines = readLines(elf);
        m_files = lines.files;
        for (const LineRow& row : lines.rows)
            if (!row.isEnd)
                m_lines.emplace(row.address, row);
    }

    std::string write() {
        std::vector<const ElfSection*> sections;
        for (const ElfSection& section : m_elf.sections)
            if (section.isAllocated() && section.size > 0)
                sections.push_back(&section);
        std::stable_sort(sections.begin(), sections.end(),
                         [](const auto* a, const auto* b) { return a->address < b->address; });
        for (const ElfSection* section : sections)
            list(*section);
        return std::move(m_text);
    }

private:
    void list(const ElfSection& section) {
        m_text += std::string(m_text.empty() ? "" : "\n") + "Section " + section.name + ": " +
                  hexadecimal(section.address, 6) + " to " +
                  hexadecimal(section.address + section.size - 1, 6) + ", " + std::to_string(section.size) +
                  " bytes\n\n";
        for (uint32_t at = 0; at < section.size;) {
            addLabels(section, section.address + at);
            if (section.type == SHT_NOBITS)
                at += addRoom(section, at);
            else if (section.holdsCode())
                at += addInsn(section, at);
            else
                at += addBytes(section, at, std::min<size_t>(bytesInLine, section.size - at));
        }
    }

    void addLabels(const ElfSection& section, uint32_t address) {
        const auto labels = m_labels.find(address);
        if (labels != m_labels.end())
            for (const ElfSymbol* label : labels->second)
                if (&m_elf.sections[std::min<size_t>(label->section, m_elf.sections.size() - 1)] == &section)
                    m_text += label->name + ":\n";
        const auto line = m_lines.find(address);
        if (line != m_lines.end() && section.holdsCode())
            addSourceLine(line->second);
    }

    void addSourceLine(const LineRow& row) {
        const std::string& path = m_files[row.file];
        std::string text = "; " + path + ":" + std::to_string(row.line);
        const std::vector<std::string>& lines = sourceOf(path);
        if (row.line >= 1 && row.line <= lines.size())
            text += "  " + lines[row.line - 1];
        m_text += text + "\n";
    }

    const std::vector<std::string>& sourceOf(const std::string& path) {
        const auto [entry, isNew] = m_sources.try_emplace(path);
        if (!isNew || !m_readSource)
            return entry->second;
        const std::string contents = m_readSource(path);
        for (size_t at = 0; at < contents.size();) {
            const size_t end = std::min(contents.find('\n', at), contents.size());
            std::string line = contents.substr(at, end - at);
            line.erase(line.find_last_not_of(" \t\r") + 1);
            entry->second.push_back(columns(line));
            at = end + 1;
        }
        return entry->second;
    }

    void addLine(uint32_t address, std::string_view bytes, const std::string& text) {
        std::string line = "  " + hexadecimal(address, 6) + "  ";
        for (const char byte : bytes)
            line += hexadecimal(static_cast<uint8_t>(byte), 2);
        line.resize(std::max(line.size() + 2, textColumn), ' ');
        m_text += line + columns(text) + "\n";
    }

    /// Bytes up to the next label.
    size_t untilLabel(uint32_t address, size_t most) const {
        const auto next = m_labels.upper_bound(address);
        return next == m_labels.end() ? most : std::min<size_t>(most, next->first - address);
    }

    uint32_t addRoom(const ElfSection& section, uint32_t at) {
        const size_t count = untilLabel(section.address + at, section.size - at);
        addLine(section.address + at, {}, "\t.SPACE\t" + std::to_string(count));
        return static_cast<uint32_t>(count);
    }

    uint32_t addBytes(const ElfSection& section, uint32_t at, size_t most) {
        const size_t count = untilLabel(section.address + at, most);
        const std::string_view bytes = std::string_view(section.bytes).substr(at, count);
        std::string line = "  " + hexadecimal(section.address + at, 6) + " ";
        std::string characters;
        for (const char byte : bytes) {
            line += " " + hexadecimal(static_cast<uint8_t>(byte), 2);
            characters += byte >= ' ' && byte <= '~' ? byte : '.';
        }
        line.resize(9 + 3 * bytesInLine + 2, ' ');
        m_text += line + characters + "\n";
        return static_cast<uint32_t>(count);
    }

    uint32_t addInsn(const ElfSection& section, uint32_t at) {
        const uint32_t address = section.address + at;
        const auto insn = decodeInsn(std::string_view(section.bytes).substr(at), m_elf.isExtended);
        if (!insn || untilLabel(address, insn->length) < insn->length)
            return addBytes(section, at, std::min<size_t>(2, section.size - at));
        SOBFMSP430Insn record(insn->opcode, nullptr, nullptr, false);
        record.setPC(address);
        if (insn->isJump)
            record.operand1 = placeAt(address + static_cast<uint32_t>(insn->jumpOffset));
        if (insn->source.isThere())
            record.operand1 = operand(address, *insn, insn->source);
        if (insn->destination.isThere())
            record.operand2 = operand(address, *insn, insn->destination);
        addLine(address, std::string_view(section.bytes).substr(at, insn->length), record.printString());
        return insn->length;
    }

    SOBFExpr* operand(uint32_t address, const DecodedInsn& insn, const DecodedInsn::Operand& operand) {
        const unsigned bits = insn.isExtended ? 20 : 16;
        const uint32_t mask = (uint32_t{1} << bits) - 1;
        if (operand.symbolic)
            return placeAt((address + operand.at + operand.value) & mask);
        const unsigned word = insn.opcode & 0xFFFF;
        const bool immediate = &operand == &insn.source && isImmediate(word);
        const bool branches = (word & 0xFFC0) == 0x1280 || word == msp430::BR_Immediate;
        if (operand.indexed && operand.value & (mask + 1) >> 1)
            return new SOBFConstExpr(int64_t{operand.value} - mask - 1);
        if (operand.indexed || (immediate && !branches))
            return new SOBFConstExpr(operand.value);
        return placeAt(operand.value);
    }

    static bool isImmediate(unsigned word) {
        const unsigned number =
            word >= 0x4000 ? msp430::sourceRegister(word) : msp430::destinationRegister(word);
        return msp430::mode(word) == msp430::IndirectIncrement && number == msp430::PC;
    }

    /// The name of what lies at an address, or the address itself.
    SOBFExpr* placeAt(uint32_t address) {
        const auto labels = m_labels.find(address);
        auto* const number = new SOBFConstExpr(address);
        if (labels == m_labels.end())
            return number;
        auto* symbol = new SOBFSymbol(intern(labels->second.front()->name));
        symbol->value = number;
        return new SOBFSymbolExpr(symbol);
    }

    const ElfFile& m_elf;
    const SourceReader& m_readSource;
    std::map<uint32_t, std::vector<const ElfSymbol*>> m_labels;
    std::vector<std::string> m_files;
    std::unordered_map<uint32_t, LineRow> m_lines;
    std::unordered_map<std::string, std::vector<std::string>> m_sources;
    std::string m_text;
};

} // namespace

std::string listingOf(const ElfFile& elf, const SourceReader& readSource) {
    Pool pool;
    const CurrentPool current(&pool);
    return Listing(elf, readSource).write();
}
