#include "toolchain/common/Executable.h"

#include "toolchain/common/ObjectLayout.h"

#include <algorithm>
#include <dwarf.h>
#include <elf.h>

namespace {

constexpr uint16_t machineMSP430 = 105;
constexpr uint32_t flagMSP430X = 45; // EF_MSP430_MACH_MSP430X
constexpr uint8_t standalone = 255;

template<class Record>
void append(std::string& bytes, const Record& record) {
    bytes.append(reinterpret_cast<const char*>(&record), sizeof record);
}

/// Texts, one behind the other, known by where they begin.
class Strings {
public:
    uint32_t add(const std::string& text) {
        const auto place = static_cast<uint32_t>(m_bytes.size());
        m_bytes.append(text).append(1, '\0');
        return place;
    }
    const std::string& bytes() const { return m_bytes; }

private:
    std::string m_bytes = std::string(1, '\0');
};

/// The host has the byte order of the file: the records of elf.h go out as they are.
class ElfWriter {
public:
    explicit ElfWriter(const Executable& program) : m_program(program) {}

    std::string write() {
        m_headers.emplace_back();
        for (const Executable::Section& section : m_program.sections)
            addProgramSection(section);
        addSymbols();
        if (!m_program.lines.rows.empty())
            addDebugInformation();
        const uint32_t names = m_names.add(".shstrtab");
        addSection(names, SHT_STRTAB, m_names.bytes(), 1);
        return finish();
    }

private:
    static constexpr size_t fixedSize = sizeof(Elf32_Ehdr);

    Elf32_Shdr& addSection(uint32_t name, uint32_t type, const std::string& bytes, uint32_t alignment) {
        m_data.resize((m_data.size() + 3) & ~size_t{3}, '\0');
        Elf32_Shdr header{};
        header.sh_name = name;
        header.sh_type = type;
        header.sh_offset = static_cast<uint32_t>(m_data.size());
        header.sh_size = static_cast<uint32_t>(bytes.size());
        header.sh_addralign = alignment;
        m_data += bytes;
        m_headers.push_back(header);
        return m_headers.back();
    }

    void addProgramSection(const Executable::Section& section) {
        const bool loaded = !section.bytes.empty();
        Elf32_Shdr& header =
            addSection(m_names.add(section.name), loaded ? SHT_PROGBITS : SHT_NOBITS, section.bytes, 1);
        header.sh_flags = SHF_ALLOC;
        if (section.flags & section_flags::Code)
            header.sh_flags |= SHF_EXECINSTR;
        if (section.flags & section_flags::Writable)
            header.sh_flags |= SHF_WRITE;
        header.sh_addr = section.address;
        header.sh_size = section.size;
        if (!loaded)
            return;
        Elf32_Phdr segment{};
        segment.p_type = PT_LOAD;
        segment.p_offset = header.sh_offset;
        segment.p_vaddr = segment.p_paddr = section.address;
        segment.p_filesz = segment.p_memsz = section.size;
        segment.p_flags = PF_R | (section.flags & section_flags::Code ? PF_X : 0) |
                          (section.flags & section_flags::Writable ? PF_W : 0);
        segment.p_align = 1;
        m_segments.push_back(segment);
    }

    void addSymbols() {
        std::vector<const Executable::Symbol*> ordered;
        for (const Executable::Symbol& symbol : m_program.symbols)
            ordered.push_back(&symbol);
        const auto global = std::stable_partition(ordered.begin(), ordered.end(),
                                                  [](const auto* symbol) { return !symbol->isGlobal; });
        Strings names;
        std::string bytes(sizeof(Elf32_Sym), '\0');
        for (const Executable::Symbol* symbol : ordered) {
            Elf32_Sym record{};
            record.st_name = names.add(symbol->name);
            record.st_value = symbol->value;
            record.st_size = symbol->size;
            const int type = symbol->isFunction ? STT_FUNC : symbol->isObject ? STT_OBJECT : STT_NOTYPE;
            record.st_info =
                static_cast<uint8_t>(ELF32_ST_INFO(symbol->isGlobal ? STB_GLOBAL : STB_LOCAL, type));
            record.st_shndx = symbol->section < 0 ? static_cast<uint16_t>(SHN_ABS)
                                                  : static_cast<uint16_t>(symbol->section + 1);
            append(bytes, record);
        }
        Elf32_Shdr& header = addSection(m_names.add(".symtab"), SHT_SYMTAB, bytes, 4);
        header.sh_entsize = sizeof(Elf32_Sym);
        header.sh_info = static_cast<uint32_t>(global - ordered.begin()) + 1;
        header.sh_link = static_cast<uint32_t>(m_headers.size());
        addSection(m_names.add(".strtab"), SHT_STRTAB, names.bytes(), 1);
    }

    /// One unit that spans the program and knows its lines.
    void addDebugInformation() {
        const std::string abbreviations{1,
                                        DW_TAG_compile_unit,
                                        0,
                                        DW_AT_stmt_list,
                                        DW_FORM_sec_offset,
                                        DW_AT_low_pc,
                                        DW_FORM_addr,
                                        DW_AT_high_pc,
                                        DW_FORM_addr,
                                        0,
                                        0,
                                        0};
        uint32_t low = UINT32_MAX;
        uint32_t high = 0;
        for (const LineRow& row : m_program.lines.rows) {
            low = std::min(low, row.address);
            high = std::max(high, row.address);
        }
        std::string unit;
        append(unit, uint16_t{4});
        append(unit, uint32_t{0});
        unit += std::string{4, 1};
        append(unit, uint32_t{0});
        append(unit, low);
        append(unit, high);
        std::string info;
        append(info, static_cast<uint32_t>(unit.size()));
        addSection(m_names.add(".debug_abbrev"), SHT_PROGBITS, abbreviations, 1);
        addSection(m_names.add(".debug_info"), SHT_PROGBITS, info + unit, 1);
        addSection(m_names.add(".debug_line"), SHT_PROGBITS, writeLines(m_program.lines), 1);
    }

    std::string finish() {
        const auto dataStart = static_cast<uint32_t>(fixedSize + m_segments.size() * sizeof(Elf32_Phdr));
        m_data.resize((m_data.size() + 3) & ~size_t{3}, '\0');
        Elf32_Ehdr header{};
        const uint8_t identity[] = {0x7F, 'E', 'L', 'F', ELFCLASS32, ELFDATA2LSB, EV_CURRENT, standalone};
        std::copy(std::begin(identity), std::end(identity), header.e_ident);
        header.e_type = ET_EXEC;
        header.e_machine = machineMSP430;
        header.e_version = EV_CURRENT;
        header.e_flags = m_program.isExtended ? flagMSP430X : 0;
        header.e_entry = m_program.entry;
        header.e_phoff = fixedSize;
        header.e_shoff = dataStart + static_cast<uint32_t>(m_data.size());
        header.e_ehsize = fixedSize;
        header.e_phentsize = sizeof(Elf32_Phdr);
        header.e_phnum = static_cast<uint16_t>(m_segments.size());
        header.e_shentsize = sizeof(Elf32_Shdr);
        header.e_shnum = static_cast<uint16_t>(m_headers.size());
        header.e_shstrndx = static_cast<uint16_t>(m_headers.size() - 1);
        std::string bytes;
        append(bytes, header);
        for (Elf32_Phdr& segment : m_segments) {
            segment.p_offset += dataStart;
            append(bytes, segment);
        }
        bytes += m_data;
        for (size_t index = 0; index < m_headers.size(); ++index) {
            if (index > 0)
                m_headers[index].sh_offset += dataStart;
            append(bytes, m_headers[index]);
        }
        return bytes;
    }

    const Executable& m_program;
    Strings m_names;
    std::string m_data;
    std::vector<Elf32_Shdr> m_headers;
    std::vector<Elf32_Phdr> m_segments;
};

} // namespace

std::string elfBytes(const Executable& program) { return ElfWriter(program).write(); }
