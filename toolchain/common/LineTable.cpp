#include "toolchain/common/LineTable.h"

#include "foundation/HException.h"
#include "toolchain/common/ElfFile.h"

#include <algorithm>
#include <dwarf.h>
#include <string_view>
#include <unordered_map>

// The section holds units, and each unit a header with names of files and a program for a small machine. Its
// state is one row of the table; some instructions emit the row as it stands.

namespace {

[[noreturn]] void fail() { throw HException("bad ELF file: the line table is damaged"); }

/// Reads numbers off the front of some bytes.
class Cursor {
public:
    Cursor(std::string_view bytes, size_t start) : m_bytes(bytes), m_position(start) {}

    size_t position() const { return m_position; }
    bool atEnd() const { return m_position >= m_bytes.size(); }
    uint32_t fixed(size_t count) {
        if (count > m_bytes.size() - std::min(m_position, m_bytes.size()))
            fail();
        uint32_t value = 0;
        for (size_t index = 0; index < count && index < 4; ++index)
            value |= uint32_t{static_cast<uint8_t>(m_bytes[m_position + index])} << (8 * index);
        m_position += count;
        return value;
    }
    uint64_t unsignedNumber() {
        uint64_t value = 0;
        for (unsigned shift = 0;; shift += 7) {
            const uint32_t byte = fixed(1);
            if (shift < 64)
                value |= uint64_t{byte & 0x7F} << shift;
            if (!(byte & 0x80))
                return value;
        }
    }
    int64_t signedNumber() {
        uint64_t value = 0;
        unsigned shift = 0;
        uint32_t byte = 0x80;
        for (; byte & 0x80; shift += 7) {
            byte = fixed(1);
            if (shift < 64)
                value |= uint64_t{byte & 0x7F} << shift;
        }
        if (shift < 64 && byte & 0x40)
            value |= ~uint64_t{0} << shift;
        return static_cast<int64_t>(value);
    }
    std::string_view text() {
        const size_t end = m_bytes.find('\0', std::min(m_position, m_bytes.size()));
        if (end == std::string_view::npos)
            fail();
        const std::string_view found = m_bytes.substr(m_position, end - m_position);
        m_position = end + 1;
        return found;
    }

private:
    std::string_view m_bytes;
    size_t m_position;
};

class UnitReader {
public:
    UnitReader(const ElfFile& file, const ElfSection& section, LineTable& table)
        : m_file(file), m_section(section), m_table(table) {
        for (const ElfRelocation& relocation : section.relocations)
            m_relocations.emplace(relocation.offset, &relocation);
    }

    /// Reads the unit at `start`; returns where the next begins.
    size_t read(size_t start) {
        Cursor cursor(m_section.bytes, start);
        const uint32_t length = cursor.fixed(4);
        if (length > m_section.bytes.size() - cursor.position())
            fail();
        const size_t end = cursor.position() + length;
        const uint32_t version = cursor.fixed(2);
        if (version < 2 || version > 4)
            return end;
        readHeader(cursor, version);
        Cursor program(std::string_view(m_section.bytes).substr(0, end), m_programStart);
        startSequence();
        while (!program.atEnd())
            step(program);
        return end;
    }

private:
    void readHeader(Cursor& cursor, uint32_t version) {
        const uint32_t headerLength = cursor.fixed(4);
        m_programStart = cursor.position() + headerLength;
        m_unitLength = cursor.fixed(1);
        if (version >= 4)
            cursor.fixed(1);
        cursor.fixed(1);
        m_lineBase = static_cast<int8_t>(cursor.fixed(1));
        m_lineRange = cursor.fixed(1);
        m_opcodeBase = cursor.fixed(1);
        if (m_lineRange == 0 || m_opcodeBase == 0)
            fail();
        m_operandCounts.assign(m_opcodeBase, 0);
        for (uint32_t opcode = 1; opcode < m_opcodeBase; ++opcode)
            m_operandCounts[opcode] = cursor.fixed(1);
        m_directories.assign(1, std::string());
        for (std::string_view text; !(text = cursor.text()).empty();)
            m_directories.emplace_back(text);
        m_unitFiles.assign(1, 0);
        for (std::string_view text; !(text = cursor.text()).empty();)
            addFile(text, cursor);
    }

    void addFile(std::string_view name, Cursor& cursor) {
        const uint64_t directory = cursor.unsignedNumber();
        cursor.unsignedNumber();
        cursor.unsignedNumber();
        std::string path(name);
        if (directory < m_directories.size() && !m_directories[directory].empty() && name.front() != '/')
            path = m_directories[directory] + "/" + path;
        const auto known = m_fileNumbers.emplace(path, static_cast<uint32_t>(m_table.files.size()));
        if (known.second)
            m_table.files.push_back(path);
        m_unitFiles.push_back(known.first->second);
    }

    void startSequence() {
        m_address = 0;
        m_inSection = 0;
        m_fileRegister = 1;
        m_line = 1;
    }

    void emit(bool isEnd) {
        if (m_fileRegister == 0 || m_fileRegister >= m_unitFiles.size()) // 0 stands for no file
            fail();
        m_table.rows.push_back({m_inSection, m_address, m_unitFiles[m_fileRegister], m_line, isEnd});
    }

    void advance(uint64_t units) { m_address += static_cast<uint32_t>(units * m_unitLength); }

    void step(Cursor& program) {
        const uint32_t opcode = program.fixed(1);
        if (opcode >= m_opcodeBase) {
            const uint32_t adjusted = opcode - m_opcodeBase;
            advance(adjusted / m_lineRange);
            m_line += static_cast<uint32_t>(m_lineBase + static_cast<int>(adjusted % m_lineRange));
            emit(false);
        } else if (opcode == 0) {
            stepExtended(program);
        } else {
            stepStandard(opcode, program);
        }
    }

    void stepStandard(uint32_t opcode, Cursor& program) {
        switch (opcode) {
        case DW_LNS_copy:
            return emit(false);
        case DW_LNS_advance_pc:
            return advance(program.unsignedNumber());
        case DW_LNS_advance_line:
            m_line += static_cast<uint32_t>(program.signedNumber());
            return;
        case DW_LNS_set_file:
            m_fileRegister = static_cast<size_t>(program.unsignedNumber());
            return;
        case DW_LNS_const_add_pc:
            return advance((255 - m_opcodeBase) / m_lineRange);
        case DW_LNS_fixed_advance_pc:
            m_address += program.fixed(2);
            return;
        default:
            for (uint32_t count = m_operandCounts[opcode]; count > 0; --count)
                program.unsignedNumber();
        }
    }

    void stepExtended(Cursor& program) {
        const auto length = static_cast<size_t>(program.unsignedNumber());
        const size_t start = program.position();
        if (length == 0)
            return;
        switch (program.fixed(1)) {
        case DW_LNE_end_sequence:
            emit(true);
            startSequence();
            break;
        case DW_LNE_set_address:
            setAddress(program, length - 1);
            break;
        default:
            break;
        }
        const size_t done = program.position() - start;
        if (done > length)
            fail();
        program.fixed(length - done);
    }

    void setAddress(Cursor& program, size_t bytes) {
        const auto found = m_relocations.find(static_cast<uint32_t>(program.position()));
        m_address = program.fixed(bytes);
        m_inSection = 0;
        if (found == m_relocations.end())
            return;
        const ElfSymbol& symbol = m_file.symbols[found->second->symbol];
        m_inSection = symbol.section < m_file.sections.size() ? symbol.section : 0;
        m_address = symbol.value + static_cast<uint32_t>(found->second->addend);
    }

    const ElfFile& m_file;
    const ElfSection& m_section;
    LineTable& m_table;
    std::unordered_map<uint32_t, const ElfRelocation*> m_relocations;
    std::unordered_map<std::string, uint32_t> m_fileNumbers;

    size_t m_programStart = 0;
    uint32_t m_unitLength = 1;
    int m_lineBase = 0;
    uint32_t m_lineRange = 1;
    uint32_t m_opcodeBase = 1;
    std::vector<uint32_t> m_operandCounts;
    std::vector<std::string> m_directories;
    std::vector<uint32_t> m_unitFiles; ///< number in the table by number in the unit

    uint32_t m_address = 0;
    uint32_t m_inSection = 0;
    size_t m_fileRegister = 1;
    uint32_t m_line = 1;
};

void appendFixed(std::string& bytes, uint32_t value, int count) {
    for (int index = 0; index < count; ++index)
        bytes += static_cast<char>(value >> (8 * index));
}

void appendUnsigned(std::string& bytes, uint32_t value) {
    for (; value >= 0x80; value >>= 7)
        bytes += static_cast<char>(value | 0x80);
    bytes += static_cast<char>(value);
}

void appendSigned(std::string& bytes, int32_t value) {
    for (;;) {
        const auto low = static_cast<uint8_t>(value & 0x7F);
        value >>= 7;
        if ((value == 0 && !(low & 0x40)) || (value == -1 && low & 0x40)) {
            bytes += static_cast<char>(low);
            return;
        }
        bytes += static_cast<char>(low | 0x80);
    }
}

void appendHeader(std::string& header, const LineTable& table) {
    constexpr uint8_t operandCounts[] = {0, 1, 1, 1, 1, 0, 0, 0, 1};
    header += std::string{1, 1, 1, static_cast<char>(-5), 14, std::size(operandCounts) + 1};
    for (const uint8_t count : operandCounts)
        header += static_cast<char>(count);
    header += '\0';
    for (const std::string& file : table.files)
        header.append(file).append(4, '\0');
    header += '\0';
}

/// The rows as instructions, without the special ones that do two things at a time: what is written is small
/// anyway.
std::string programOf(const LineTable& table) {
    std::string program;
    LineRow state{0, 0, 0, 1, true};
    for (const LineRow& row : table.rows) {
        if (state.isEnd) {
            program += std::string{0, 5, DW_LNE_set_address};
            appendFixed(program, row.address, 4);
            state = {0, row.address, 0, 1, false};
        }
        if (row.address != state.address) {
            program += static_cast<char>(DW_LNS_advance_pc);
            appendUnsigned(program, row.address - state.address);
        }
        if (row.isEnd) {
            program += std::string{0, 1, DW_LNE_end_sequence};
            state.isEnd = true;
            continue;
        }
        if (row.file != state.file) {
            program += static_cast<char>(DW_LNS_set_file);
            appendUnsigned(program, row.file + 1);
        }
        if (row.line != state.line) {
            program += static_cast<char>(DW_LNS_advance_line);
            appendSigned(program, static_cast<int32_t>(row.line - state.line));
        }
        program += static_cast<char>(DW_LNS_copy);
        state = row;
    }
    return program;
}

} // namespace

LineTable readLines(const ElfFile& file) {
    LineTable table;
    const ElfSection* section = file.find(".debug_line");
    if (!section)
        return table;
    UnitReader reader(file, *section, table);
    for (size_t position = 0; position < section->bytes.size();)
        position = reader.read(position);
    return table;
}

std::string writeLines(const LineTable& table) {
    std::string header;
    appendHeader(header, table);
    const std::string program = programOf(table);
    std::string bytes;
    appendFixed(bytes, static_cast<uint32_t>(2 + 4 + header.size() + program.size()), 4);
    appendFixed(bytes, 4, 2);
    appendFixed(bytes, static_cast<uint32_t>(header.size()), 4);
    return bytes + header + program;
}
