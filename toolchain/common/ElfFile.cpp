#include "toolchain/common/ElfFile.h"

#include "foundation/HException.h"

#include <cstring>
#include <gelf.h>
#include <libelf.h>
#include <memory>

namespace {

constexpr uint16_t machineMSP430 = 105;
constexpr uint32_t flagMSP430X = 45; // EF_MSP430_MACH_MSP430X

/// The most that a section without bytes in the file may claim: the address space.
constexpr uint64_t mostSize = 0x100000;

struct EndElf {
    void operator()(Elf* elf) const { elf_end(elf); }
};

[[noreturn]] void fail(const std::string& what) { throw HException("bad ELF file: " + what); }

std::string nameAt(Elf* elf, size_t table, size_t offset) {
    const char* text = elf_strptr(elf, table, offset);
    return text ? text : "";
}

ElfSection readSection(Elf* elf, Elf_Scn* scn, size_t names) {
    GElf_Shdr header;
    if (!gelf_getshdr(scn, &header))
        fail("a section has no header");
    ElfSection section;
    section.name = nameAt(elf, names, header.sh_name);
    section.type = header.sh_type;
    section.flags = static_cast<uint32_t>(header.sh_flags);
    section.address = static_cast<uint32_t>(header.sh_addr);
    section.alignment = header.sh_addralign ? static_cast<uint32_t>(header.sh_addralign) : 1;
    section.entrySize = static_cast<uint32_t>(header.sh_entsize);
    if (header.sh_type == SHT_NOBITS) {
        if (header.sh_size > mostSize)
            fail("section " + section.name + " is larger than any memory");
        section.size = static_cast<uint32_t>(header.sh_size);
        return section;
    }
    const Elf_Data* data = elf_rawdata(scn, nullptr);
    if (header.sh_type != SHT_NULL && header.sh_size && (!data || data->d_size != header.sh_size))
        fail("section " + section.name + " lies outside the file");
    if (data && data->d_buf)
        section.bytes.assign(static_cast<const char*>(data->d_buf), data->d_size);
    section.size = static_cast<uint32_t>(section.bytes.size());
    return section;
}

void readSymbols(Elf* elf, Elf_Scn* scn, std::vector<ElfSymbol>& symbols) {
    GElf_Shdr header;
    Elf_Data* data = elf_getdata(scn, nullptr);
    if (!gelf_getshdr(scn, &header) || !data)
        fail("the symbols can't be read");
    GElf_Sym symbol;
    for (int index = 0; gelf_getsym(data, index, &symbol); ++index)
        symbols.push_back({nameAt(elf, header.sh_link, symbol.st_name),
                           static_cast<uint32_t>(symbol.st_value), static_cast<uint32_t>(symbol.st_size),
                           static_cast<uint8_t>(GELF_ST_TYPE(symbol.st_info)),
                           static_cast<uint8_t>(GELF_ST_BIND(symbol.st_info)), symbol.st_shndx});
}

void readRelocations(Elf_Scn* scn, ElfFile& file) {
    GElf_Shdr header;
    Elf_Data* data = elf_getdata(scn, nullptr);
    if (!gelf_getshdr(scn, &header) || !data || header.sh_info >= file.sections.size())
        fail("the relocations can't be read");
    GElf_Rela entry;
    auto& into = file.sections[header.sh_info].relocations;
    for (int index = 0; gelf_getrela(data, index, &entry); ++index) {
        const auto symbol = static_cast<uint32_t>(GELF_R_SYM(entry.r_info));
        if (symbol >= file.symbols.size())
            fail("a relocation names a symbol that is not there");
        into.push_back({static_cast<uint32_t>(entry.r_offset),
                        static_cast<uint32_t>(GELF_R_TYPE(entry.r_info)), symbol,
                        static_cast<int32_t>(entry.r_addend)});
    }
}

} // namespace

bool ElfSection::holdsCode() const { return (flags & SHF_EXECINSTR) != 0; }

bool ElfSection::isAllocated() const { return (flags & SHF_ALLOC) != 0; }

ElfFile::ElfFile(std::string_view bytes) {
    elf_version(EV_CURRENT);
    // The library only reads from an image that is not opened for writing.
    const std::unique_ptr<Elf, EndElf> elf(elf_memory(const_cast<char*>(bytes.data()), bytes.size()));
    GElf_Ehdr header;
    size_t names = 0;
    if (!elf || elf_kind(elf.get()) != ELF_K_ELF || !gelf_getehdr(elf.get(), &header) ||
        gelf_getclass(elf.get()) != ELFCLASS32 || header.e_ident[EI_DATA] != ELFDATA2LSB)
        fail("no 32-bit little-endian ELF file");
    if (header.e_machine != machineMSP430)
        fail("not for the MSP430");
    if (elf_getshdrstrndx(elf.get(), &names) != 0)
        fail("the sections have no names");
    entry = static_cast<uint32_t>(header.e_entry);
    isExecutable = header.e_type == ET_EXEC;
    isExtended = header.e_flags == flagMSP430X;
    sections.emplace_back();
    for (Elf_Scn* scn = nullptr; (scn = elf_nextscn(elf.get(), scn));)
        sections.push_back(readSection(elf.get(), scn, names));
    for (size_t index = 1; index < sections.size(); ++index)
        if (sections[index].type == SHT_SYMTAB && symbols.empty())
            readSymbols(elf.get(), elf_getscn(elf.get(), index), symbols);
    for (size_t index = 1; index < sections.size(); ++index)
        if (sections[index].type == SHT_RELA)
            readRelocations(elf_getscn(elf.get(), index), *this);
}

const ElfSection* ElfFile::find(std::string_view name) const {
    for (const ElfSection& section : sections)
        if (section.name == name)
            return &section;
    return nullptr;
}
