#include "toolchain/qlink/LinkLayout.h"

#include "foundation/HException.h"
#include "object/SOBFMSP430Insn.h"
#include "object/SOBFModule.h"
#include "object/SOBFPseudoInsn.h"
#include "object/SOBFSection.h"
#include "object/SOBFSymbol.h"
#include "toolchain/common/ObjectLayout.h"
#include "toolchain/qlink/LinkInputs.h"

#include <algorithm>
#include <cctype>

// What stays is decided first, by reachability. Then addresses are given out, again and again, until nothing
// moves any more: a jump that does not reach grows, and a copy is as large as what it copies.

namespace {

/// Addresses settle in two or three rounds; each jump grows once.
constexpr int mostRounds = 1000;

LinkLayout* currentLayout = nullptr;

bool takesRoom(const SOBFFragment* fragment) {
    return std::any_of(fragment->insns.begin(), fragment->insns.end(),
                       [](SOBFInsn* insn) { return dynamic_cast<SOBFOriginInsn*>(insn); });
}

} // namespace

LinkLayout::LinkLayout(Tool& tool, const LinkOptions& options, LinkInputs& inputs)
    : m_tool(tool), m_options(options), m_inputs(inputs) {
    currentLayout = this;
    SOBFInitInsn::findSection = [](HString* name) -> SOBFSection* {
        OutputSection* found = currentLayout->find(std::string(name->view()));
        return found ? found->merged : nullptr;
    };
}

LinkLayout::~LinkLayout() {
    SOBFInitInsn::findSection = nullptr;
    currentLayout = nullptr;
}

void LinkLayout::lay() {
    g_msp430x = m_options.extended;
    defineSectionSymbols();
    pruneConditionals();
    mark();
    m_inputs.symbols().reportUndefined();
    collect();
    addOwnSections();
    findPlacements();
    if (m_tool.hasFailed())
        return;
    for (int round = 0; placeAll() || relax(); ++round)
        if (round == mostRounds)
            throw HException("the addresses do not settle");
}

OutputSection* LinkLayout::find(const std::string& name) {
    const auto found = std::find_if(m_sections.begin(), m_sections.end(),
                                    [&](const OutputSection& section) { return section.name == name; });
    return found == m_sections.end() ? nullptr : &*found;
}

const std::string& LinkLayout::moduleOf(const SOBFFragment* fragment) const {
    static const std::string linker = "(linker)";
    const auto found = m_modules.find(fragment);
    return found == m_modules.end() ? linker : found->second;
}

std::string LinkLayout::symbolName(const std::string& section) {
    std::string text = section;
    for (char& character : text)
        if (!std::isalnum(static_cast<unsigned char>(character)) && character != '_')
            character = '_';
    return text;
}

uint32_t LinkLayout::entry() const {
    const SOBFSymbol* symbol = m_inputs.symbols().definition(intern(m_options.entry));
    return symbol ? static_cast<uint32_t>(symbol->value->evaluate().value) : 0;
}

/// Symbols that nobody defines and that ask for the edges of a section: __NAME_start__, __NAME_end__,
/// __NAME_size__.
void LinkLayout::defineSectionSymbols() {
    static constexpr struct {
        std::string_view suffix;
        Edge edge;
    } rows[] = {{"_start__", Edge::Start}, {"_end__", Edge::End}, {"_size__", Edge::Size}};
    for (const auto& [symbol, module] : m_inputs.symbols().needed()) {
        const std::string_view name = symbol->name->view();
        for (const auto& row : rows) {
            if (symbol->value || name.size() <= 2 + row.suffix.size() || name.substr(0, 2) != "__" ||
                name.substr(name.size() - row.suffix.size()) != row.suffix)
                continue;
            symbol->value =
                edgeOf(std::string(name.substr(2, name.size() - 2 - row.suffix.size())), row.edge);
        }
    }
}

SOBFExpr* LinkLayout::edgeOf(const std::string& section, Edge edge) {
    auto* value = new SOBFConstExpr(0);
    m_sectionSymbols.push_back({section, edge, value});
    // Behind a symbol, so that no expression takes it for a constant.
    auto* symbol = new SOBFSymbol(nullptr);
    symbol->value = value;
    return new SOBFSymbolExpr(symbol);
}

/// Removes records between LINKIF and ENDLINKIF where the condition does not hold.
void LinkLayout::pruneConditionals() {
    for (const auto& file : m_inputs.modules()) {
        for (SOBFSection* section : file->module().sections) {
            int skipping = 0;
            for (SOBFFragment* fragment : section->fragments) {
                for (auto it = fragment->insns.begin(); it != fragment->insns.end();) {
                    const auto* condition = dynamic_cast<SOBFLinkIf*>(*it);
                    if (condition && (skipping > 0 || condition->operand1->evaluate().value == 0))
                        ++skipping;
                    const bool drop = skipping > 0;
                    if (drop && dynamic_cast<SOBFEndLinkIf*>(*it))
                        --skipping;
                    it = drop ? fragment->insns.erase(it) : std::next(it);
                }
            }
        }
    }
}

void LinkLayout::mark() {
    SymbolTable& symbols = m_inputs.symbols();
    const auto keep = [&](HString* name, bool mustBeThere) {
        if (SOBFSymbol* symbol = symbols.definition(name))
            symbol->markReachable(true);
        else if (mustBeThere)
            m_tool.error("there is no symbol " + std::string(name->view()) + " to keep");
    };
    keep(intern(m_options.entry), false);
    if (!symbols.definition(intern(m_options.entry)))
        keep(intern("main"), false);
    for (const std::string& name : m_options.keep)
        keep(intern(name), true);
    for (HString* name : symbols.kept())
        keep(name, true);
    for (const auto& file : m_inputs.modules())
        for (SOBFSection* section : file->module().sections)
            for (SOBFFragment* fragment : section->fragments)
                if (!m_options.dropUnused || takesRoom(fragment))
                    fragment->markReachable(true);
}

OutputSection& LinkLayout::sectionFor(const std::string& name) {
    if (OutputSection* found = find(name))
        return *found;
    OutputSection& section = m_sections.emplace_back();
    section.name = name;
    section.merged = new SOBFSection(intern(name));
    return section;
}

void LinkLayout::collect() {
    for (const auto& file : m_inputs.modules())
        for (SOBFSection* section : file->module().sections)
            addFragments(file->name(), *section);
}

void LinkLayout::addFragments(const std::string& moduleName, SOBFSection& section) {
    for (SOBFFragment* fragment : section.fragments) {
        if (!fragment->reachable || fragment->insns.empty())
            continue;
        OutputSection& output = sectionFor(std::string(section.name->view()));
        const int both = output.fragments.empty() ? section.flags : output.flags & section.flags;
        output.flags =
            ((output.flags | section.flags) & ~section_flags::Zeroed) | (both & section_flags::Zeroed);
        output.isTable = output.isTable || takesRoom(fragment);
        output.fragments.push_back(fragment);
        output.merged->fragments.push_back(fragment);
        m_modules.emplace(fragment, moduleName);
    }
}

bool LinkLayout::isLoadedWhereItIs(const OutputSection& section) const {
    if (section.flags & section_flags::Zeroed)
        return false;
    if (m_options.loaded.empty())
        return !(section.flags & section_flags::Writable);
    return std::find(m_options.loaded.begin(), m_options.loaded.end(), section.name) !=
           m_options.loaded.end();
}

bool LinkLayout::hasChecksum(const OutputSection& section) const {
    const auto& names = m_options.checksumSections;
    return std::find(names.begin(), names.end(), section.name) != names.end();
}

OutputSection& LinkLayout::addOwn(const std::string& name, SOBFSection* section, bool loaded) {
    OutputSection& output = sectionFor(name);
    output.loaded = loaded;
    output.flags = section->flags;
    for (SOBFFragment* fragment : section->fragments) {
        output.fragments.push_back(fragment);
        output.merged->fragments.push_back(fragment);
    }
    return output;
}

void LinkLayout::addOwnSections() {
    for (OutputSection& section : m_sections)
        section.loaded = isLoadedWhereItIs(section);
    addHeap();
    addCopies();
    addInitTable();
    addChecksums();
}

/// As large as the symbol heap_size says, if anything asks for it.
void LinkLayout::addHeap() {
    const SOBFSymbol* size = m_inputs.symbols().definition(intern("heap_size"));
    const bool asked = std::any_of(m_sectionSymbols.begin(), m_sectionSymbols.end(),
                                   [](const SectionSymbol& symbol) { return symbol.section == "HEAP"; });
    if (!size || !asked || find("HEAP"))
        return;
    auto* section = new SOBFSection(intern("HEAP"));
    section->flags = section_flags::Writable | section_flags::Zeroed;
    section->addInsn(new SOBFAlignInsn(2));
    section->addInsn(new SOBFSpaceInsn(new SOBFConstExpr(size->value->evaluate().value)));
    addOwn("HEAP", section, false);
}

void LinkLayout::addCopies() {
    std::vector<std::string> names;
    for (const OutputSection& section : m_sections)
        if (!section.loaded && !(section.flags & section_flags::Zeroed))
            names.push_back(section.name);
    for (const std::string& name : names) {
        auto* section = new SOBFSection(intern(name + "_INIT"));
        section->addInsn(new SOBFAlignInsn(2));
        section->addInsn(new SOBFInitInsn(intern(name), &m_inputs.own()));
        addOwn(name + "_INIT", section, true);
    }
}

/// What start-up code has to do: copy from, to, bytes; and for zeroed data 0, to, bytes.
void LinkLayout::addInitTable() {
    const bool asked = std::any_of(m_sectionSymbols.begin(), m_sectionSymbols.end(),
                                   [](const SectionSymbol& symbol) { return symbol.section == "INITTAB"; });
    if (!asked)
        return;
    auto* table = new SOBFSection(intern("INITTAB"));
    table->addInsn(new SOBFAlignInsn(2));
    for (const OutputSection& section : m_sections) {
        const bool zeroed = section.flags & section_flags::Zeroed;
        if (section.loaded || (zeroed && section.name == "HEAP"))
            continue;
        const std::string name = symbolName(section.name);
        SOBFExpr* const none = new SOBFConstExpr(0);
        table->addInsn(new SOBFDefAddrInsn(zeroed ? none : edgeOf(name + "_INIT", Edge::Start)));
        table->addInsn(new SOBFDefAddrInsn(edgeOf(name, Edge::Start)));
        table->addInsn(new SOBFDefAddrInsn(edgeOf(name, Edge::Size)));
    }
    addOwn("INITTAB", table, true);
}

/// For each section: its start, its size and, in four bytes, its checksum.
void LinkLayout::addChecksums() {
    if (m_options.checksumSections.empty())
        return;
    auto* table = new SOBFSection(intern("CHECKSUM"));
    table->addInsn(new SOBFAlignInsn(2));
    for (const std::string& name : m_options.checksumSections) {
        const OutputSection* section = find(name);
        if (!section || !section->loaded) {
            m_tool.error("there is no section " + name + " in the executable that could have a checksum");
            continue;
        }
        auto* value = new SOBFConstExpr(0);
        m_checksums.push_back({name, value});
        table->addInsn(new SOBFDefAddrInsn(edgeOf(symbolName(name), Edge::Start)));
        table->addInsn(new SOBFDefAddrInsn(edgeOf(symbolName(name), Edge::Size)));
        table->addInsn(new SOBFDefBytesInsn(value, 4));
    }
    addOwn("CHECKSUM", table, true);
}

const Placement* LinkLayout::placementOf(const std::string& name) const {
    for (const Placement& placement : m_options.placements)
        if (std::find(placement.sections.begin(), placement.sections.end(), name) != placement.sections.end())
            return &placement;
    return nullptr;
}

/// Where the first section of a kind lies.
const Placement* LinkLayout::placementOfKind(int mask, int flags) const {
    for (const OutputSection& section : m_sections)
        if (!section.isTable && (section.flags & mask) == flags)
            if (const Placement* placement = placementOf(section.name))
                return placement;
    return nullptr;
}

void LinkLayout::findPlacements() {
    using namespace section_flags;
    for (OutputSection& section : m_sections) {
        section.placement = placementOf(section.name);
        const bool isOwn = !m_modules.count(section.fragments.front());
        if (!section.placement && isOwn && section.flags & Zeroed)
            section.placement = placementOfKind(Zeroed, Zeroed);
        if (!section.placement && isOwn && !(section.flags & Zeroed))
            section.placement = placementOfKind(Code | Writable | Zeroed, 0);
        if (!section.placement && isOwn)
            section.placement = placementOfKind(Code, section.flags & Zeroed ? 0 : Code);
        if (!section.placement)
            m_tool.error("section " + section.name + " is placed nowhere, needed in " +
                         moduleOf(section.fragments.front()));
        else if (section.placement->ranges.empty())
            m_tool.error("section " + section.name + " has no room: its segment is full");
        m_order.push_back(&section);
    }
    if (m_tool.hasFailed())
        return;
    const auto rank = [&](const OutputSection* section) {
        const Placement& placement = *section->placement;
        const auto name = std::find(placement.sections.begin(), placement.sections.end(), section->name);
        return std::tuple(placement.sections.size() > 1, &placement - m_options.placements.data(),
                          name - placement.sections.begin());
    };
    // A section that has a place of its own may lie within the room of others.
    std::stable_sort(m_order.begin(), m_order.end(),
                     [&](const OutputSection* a, const OutputSection* b) { return rank(a) < rank(b); });
}
