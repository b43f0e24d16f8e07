#include "toolchain/common/ObjectMaker.h"

#include "foundation/HException.h"
#include "object/SOBFModule.h"
#include "object/SOBFPseudoInsn.h"
#include "object/SOBFSection.h"
#include "object/SOBFSymbol.h"
#include "object/SOBFType.h"
#include "toolchain/common/ElfFile.h"
#include "toolchain/common/FragmentMaker.h"

#include <algorithm>
#include <charconv>
#include <deque>
#include <elf.h>
#include <map>

namespace {

constexpr uint32_t flagRetain = 0x200000; // SHF_GNU_RETAIN

bool startsWith(std::string_view text, std::string_view start) {
    return text.substr(0, start.size()) == start;
}

/// Whether `name` is `base`, or `base` and a suffix behind a point.
bool isOrBelongsTo(std::string_view name, std::string_view base) {
    return startsWith(name, base) && (name.size() == base.size() || name[base.size()] == '.');
}

constexpr std::string_view vectorPrefix = "__interrupt_vector_";

class ObjectMaker {
public:
    ObjectMaker(const ElfFile& elf, const ObjectMakerOptions& options)
        : m_elf(elf),
          m_options(options),
          m_lines(readLines(elf)),
          m_module(new SOBFModule(Pool::currentPool)) {
        m_context.extended = options.extended;
        m_context.target = [this](const ElfRelocation& relocation) { return targetOf(relocation); };
        for (const std::string& file : m_lines.files)
            m_context.files.push_back(new SOBFFilename(intern(file)));
    }

    SOBFModule* make() {
        setListAttribute(*m_module, attributes::dependencies, m_options.dependencies);
        setAttribute(*m_module, attributes::processor, m_options.extended ? "MSP430X" : "MSP430");
        if (!m_options.doubleBits.empty())
            setAttribute(*m_module, attributes::doubleBits, m_options.doubleBits);
        makeFragments();
        makeSymbols();
        for (auto& [index, fragment] : m_fragments)
            fragment.resolveRelocations();
        for (auto& [index, fragment] : m_fragments)
            fragment.takeApart();
        for (auto& [index, fragment] : m_fragments)
            fragment.addRecords();
        setListAttribute(*m_module, attributes::weak, m_weak);
        setListAttribute(*m_module, attributes::common, m_common);
        setListAttribute(*m_module, attributes::keep, m_keep);
        return m_module;
    }

private:
    /// Which of the module's sections takes a section of the ELF file.
    std::string nameFor(const ElfSection& section) const {
        const SectionNames& names = m_options.sections;
        if (isOrBelongsTo(section.name, ".text"))
            return names.code;
        if (isOrBelongsTo(section.name, ".data"))
            return names.data;
        if (isOrBelongsTo(section.name, ".bss"))
            return names.zeroed;
        if (isOrBelongsTo(section.name, ".rodata"))
            return names.constant;
        return startsWith(section.name, vectorPrefix) ? names.vector : section.name;
    }

    SOBFSection* sectionFor(const std::string& name, const ElfSection& section) {
        HString* const key = intern(name);
        SOBFSection* made = m_module->sectionsByName.value(key);
        if (!made) {
            made = new SOBFSection(key);
            m_module->sectionsByName.set(key, made);
            m_module->sections.push_back(made);
            made->flags = section.type == SHT_NOBITS ? section_flags::Zeroed : 0;
        }
        // Vectors are values, though clang calls them code.
        if (section.holdsCode() && !startsWith(section.name, vectorPrefix))
            made->flags |= section_flags::Code;
        if (section.flags & SHF_WRITE)
            made->flags |= section_flags::Writable;
        if (section.type != SHT_NOBITS)
            made->flags &= ~section_flags::Zeroed;
        return made;
    }

    /// Where a vector lies in its section: its number in words, or -1, the last word, for that of the reset.
    static int vectorPlace(const ElfSection& section) {
        const std::string_view text = std::string_view(section.name).substr(vectorPrefix.size());
        if (text == "reset")
            return -2;
        int number = 0;
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
        if (error != std::errc() || end != text.data() + text.size() || number < 0 || number > 63)
            throw HException("section " + section.name +
                             ": a vector has a number from 0 to 63, or is \"reset\"");
        return 2 * number;
    }

    void makeFragments() {
        for (size_t index = 1; index < m_elf.sections.size(); ++index) {
            const ElfSection& section = m_elf.sections[index];
            if (!section.isAllocated() || (section.size == 0 && !hasSymbols(index)))
                continue;
            const std::string name = nameFor(section);
            FragmentMaker& fragment = newFragment(index, sectionFor(name, section), section);
            if (startsWith(section.name, vectorPrefix))
                fragment.setOrigin(vectorPlace(section));
        }
        for (const LineRow& row : m_lines.rows) {
            const auto found = m_fragments.find(row.section);
            if (found != m_fragments.end())
                found->second.addLine(row);
        }
    }

    bool hasSymbols(size_t index) const {
        return std::any_of(m_elf.symbols.begin(), m_elf.symbols.end(), [&](const ElfSymbol& symbol) {
            return symbol.section == index && symbol.type != STT_SECTION;
        });
    }

    FragmentMaker& newFragment(size_t index, SOBFSection* into, const ElfSection& section) {
        return m_fragments.try_emplace(index, m_context, into, section).first->second;
    }

    /// Shares types, which carry no more than a kind and a size.
    SOBFType* typeOf(const ElfSymbol& symbol) {
        if (symbol.type != STT_FUNC && (symbol.type != STT_OBJECT || symbol.size == 0))
            return nullptr;
        SOBFType*& type = m_types[{symbol.type, symbol.size}];
        if (!type && symbol.type == STT_FUNC) {
            auto* function = new SOBFFunctionType;
            function->word0 = static_cast<int>(symbol.size);
            type = function;
        } else if (!type) {
            type = new SOBFUntypedType(static_cast<int>(symbol.size));
        }
        return type;
    }

    void makeSymbols() {
        m_symbols.assign(m_elf.symbols.size(), nullptr);
        for (size_t index = 1; index < m_elf.symbols.size(); ++index) {
            const ElfSymbol& symbol = m_elf.symbols[index];
            if (symbol.type == STT_FILE || symbol.type == STT_SECTION || symbol.name.empty())
                continue;
            SOBFExpr* value = valueOf(symbol);
            if (symbol.section != SHN_UNDEF && !value)
                continue;
            m_symbols[index] = makeSymbol(symbol, value);
        }
    }

    SOBFSymbol* makeSymbol(const ElfSymbol& from, SOBFExpr* value) {
        auto* symbol = new SOBFSymbol(intern(from.name));
        symbol->value = value;
        symbol->type = typeOf(from);
        m_module->symbols.push_back(symbol);
        if (from.binding == STB_LOCAL)
            symbol->setScope(m_module);
        else if (value)
            m_module->publics.set(symbol->name, symbol);
        if (from.binding == STB_WEAK)
            m_weak.push_back(from.name);
        if (from.section < m_elf.sections.size() && m_elf.sections[from.section].flags & flagRetain)
            m_keep.push_back(from.name);
        return symbol;
    }

    /// Null for an undefined symbol, and for one in a section that is not taken over.
    SOBFExpr* valueOf(const ElfSymbol& symbol) {
        if (symbol.section == SHN_ABS)
            return new SOBFConstExpr(symbol.value);
        if (symbol.section == SHN_COMMON)
            return placeOfCommon(symbol);
        const auto found = m_fragments.find(symbol.section);
        return found == m_fragments.end() ? nullptr : found->second.place(symbol.value);
    }

    /// A common symbol takes a fragment of its own among the zeroed data; its value is its alignment.
    SOBFExpr* placeOfCommon(const ElfSymbol& symbol) {
        ElfSection& section = m_commonSections.emplace_back();
        section.type = SHT_NOBITS;
        section.flags = SHF_ALLOC | SHF_WRITE;
        section.size = symbol.size;
        section.alignment = std::max(1U, symbol.value);
        m_common.push_back(symbol.name);
        const size_t index = m_elf.sections.size() + m_commonSections.size();
        return newFragment(index, sectionFor(m_options.sections.zeroed, section), section).place(0);
    }

    /// The expression that a relocation puts in its place.
    SOBFExpr* targetOf(const ElfRelocation& relocation) {
        const ElfSymbol& symbol = m_elf.symbols[relocation.symbol];
        const int64_t addend = relocation.addend;
        if (symbol.type == STT_SECTION) {
            const auto found = m_fragments.find(symbol.section);
            if (found != m_fragments.end())
                return found->second.place(symbol.value + addend);
        } else if (SOBFSymbol* made = m_symbols[relocation.symbol]) {
            auto* const value = new SOBFSymbolExpr(made);
            return addend ? SOBFBinaryExpr::make(TAG_ADD, value, new SOBFConstExpr(addend)) : value;
        } else if (relocation.symbol == 0) {
            return new SOBFConstExpr(addend);
        }
        throw HException("a relocation refers to " + (symbol.name.empty() ? "a section" : symbol.name) +
                         ", which is in no memory");
    }

    const ElfFile& m_elf;
    const ObjectMakerOptions& m_options;
    const LineTable m_lines;
    SOBFModule* m_module;
    FragmentContext m_context;
    std::map<size_t, FragmentMaker> m_fragments; ///< by the index of the section in the ELF file
    std::deque<ElfSection> m_commonSections;
    std::vector<SOBFSymbol*> m_symbols;
    std::map<std::pair<uint8_t, uint32_t>, SOBFType*> m_types;
    std::vector<std::string> m_weak, m_common, m_keep;
};

} // namespace

SOBFModule* makeObject(const ElfFile& elf, const ObjectMakerOptions& options) {
    return ObjectMaker(elf, options).make();
}
