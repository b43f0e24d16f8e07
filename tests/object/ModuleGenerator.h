#pragma once

#include "object/SOBFMSP430Insn.h"
#include "object/SOBFModule.h"
#include "object/SOBFPseudoInsn.h"
#include "object/SOBFSection.h"
#include "object/SOBFSymbol.h"
#include "object/SOBFType.h"

#include <algorithm>
#include <random>
#include <string>
#include <vector>

/// Modules out of random numbers: scopes, symbols that are defined by each other, types that hold themselves,
/// sections with every kind of record. All that a file can say may occur, useful or not.
class ModuleGenerator {
public:
    explicit ModuleGenerator(unsigned seed) : m_random(seed) {}

    /// A module of about `records` records. The caller gives it up with SOBFReader::release, and makes a pool
    /// current for the module record itself.
    SOBFModule* make(int records) {
        m_module = new SOBFModule;
        const CurrentPool current(m_module->pool);
        m_files = {new SOBFFilename(text("file")), new SOBFFilename(text("file"))};
        for (int i = 0; i < 4 + records / 4; ++i)
            m_markers.push_back(new SOBFMarker);
        makeSymbols(3 + records / 5);
        makeTypes(3 + records / 10);
        for (SOBFSymbol* symbol : m_module->symbols)
            complete(symbol);
        makeScopes(records / 20);
        for (int i = below(5); i > 0; --i) {
            m_module->libraries.set(text("lib"), true);
            m_module->attributes.set(text("key"), text("value"));
        }
        m_module->isProtected = oneIn(4);
        m_module->linkOrderPriority = oneIn(2) ? SOBFModule::usualPriority : below(1000) - 500;
        for (int i = 1 + below(3); i > 0; --i)
            makeSection(records / 2);
        nameMarkers();
        return m_module;
    }

private:
    unsigned bits() { return static_cast<unsigned>(m_random()); }
    int below(int limit) { return static_cast<int>(bits() % static_cast<unsigned>(limit)); }
    bool oneIn(int times) { return below(times) == 0; }
    template<class T>
    T& pick(std::vector<T>& values) {
        return values[static_cast<size_t>(below(static_cast<int>(values.size())))];
    }
    template<class T>
    T pick(const PoolVector<T>& values) {
        return values[static_cast<size_t>(below(static_cast<int>(values.size())))];
    }
    HString* text(const char* stem) {
        return HString::intern(stem + std::to_string(below(50)), HString::AsIs);
    }
    int64_t number() {
        const auto wide = static_cast<int64_t>(uint64_t{bits()} << 32 | bits());
        return oneIn(3) ? wide : oneIn(3) ? -below(1000) : below(300);
    }

    SOBFExpr* expr(int depth = 3) {
        static const int operators[] = {TAG_ADD,
                                        TAG_SUBTRACT,
                                        TAG_DIVIDE,
                                        TAG_LOGICAL_OR,
                                        TAG_PAIR,
                                        TAG_WORD_ADDRESS,
                                        TAG_ARITHMETIC_SHIFT_RIGHT};
        switch (below(depth > 0 ? 6 : 4)) {
        case 0:
            return new SOBFConstExpr(number());
        case 1:
            return new SOBFRegisterExpr(below(18));
        case 2:
            return new SOBFSymbolExpr(pick(m_module->symbols));
        case 3:
            return new SOBFMarkerExpr(pick(m_markers));
        default:
            return SOBFBinaryExpr::make(operators[below(std::size(operators))], expr(depth - 1),
                                        expr(depth - 1));
        }
    }

    void makeSymbols(int count) {
        while (count-- > 0)
            m_module->symbols.push_back(new SOBFSymbol(text("symbol")));
    }
    void complete(SOBFSymbol* symbol) {
        if (!oneIn(4))
            symbol->value = expr();
        if (!oneIn(4))
            symbol->type = pick(m_types);
        if (oneIn(3))
            symbol->locus = new SOBFLocus(TAG_SYMBOL_LOCUS, below(5000), pick(m_files));
        if (oneIn(6))
            symbol->codelet = below(100) - 1;
        if (oneIn(6)) {
            symbol->patchable = true;
            symbol->patchValue = below(100) - 1;
        }
        symbol->patched = oneIn(6);
        if (symbol->codelet != -1 || symbol->patchable)
            m_module->specialSymbols.push_back(symbol);
        if (oneIn(3))
            m_module->publics.set(symbol->name, symbol);
    }
    SOBFType* makeType() {
        switch (below(m_types.empty() ? 3 : 10)) {
        case 0:
            return new SOBFSimpleType(below(5), TAG_CHAR + below(3));
        case 1:
            return new SOBFFloatType(4);
        case 2:
            return new SOBFUntypedType(below(3));
        case 3:
            return new SOBFQualifiedType(shallow(), TAG_FIRST_MEMSPACE + below(4));
        case 4:
            return new SOBFArrayType(shallow(), below(100));
        case 5:
            return new SOBFCountedArrayType(shallow(), shallow(), below(100));
        case 6:
            return new SOBFMemberFunctionType(shallow());
        case 7:
            return new SOBFFunctionType;
        case 8:
            return new SOBFStrucType(below(100));
        default:
            return new SOBFPtrType(2);
        }
    }
    SOBFType* shallow() {
        SOBFType* type = pick(m_types);
        return type->parts < SOBFType::mostParts / 2 ? type : m_types.front();
    }
    void makeTypes(int count) {
        while (count-- > 0) {
            m_types.push_back(makeType());
            if (oneIn(3))
                m_types.back()->name = text("type");
        }
        // Only now, so that types may hold those that hold them.
        for (SOBFType* type : m_types)
            fill(type);
    }
    void fill(SOBFType* type) {
        if (auto* pointer = dynamic_cast<SOBFPtrType*>(type); pointer && !oneIn(5)) {
            pointer->target = pick(m_types);
            pointer->representation = TAG_PTR_REP_1 + below(2);
        }
        for (int i = below(4); i > 0; --i) {
            if (auto* structure = dynamic_cast<SOBFStrucType*>(type)) {
                if (oneIn(3))
                    structure->fields.push_back(new SOBFStaticField(text("field"), expr(), pick(m_types)));
                else
                    structure->fields.push_back(
                        new SOBFDynamicField(text("field"), below(50) - 5, below(50), pick(m_types)));
            }
            if (auto* function = dynamic_cast<SOBFFunctionType*>(type)) {
                (oneIn(2) ? function->inputs : function->outputs).push_back(pick(m_module->symbols));
                if (!function->isMemberFunction())
                    function->word1 = below(20) - 10;
            }
        }
    }
    void makeScopes(int count) {
        std::vector<SOBFScope*> scopes{m_module};
        while (count-- > 0) {
            auto* scope = new SOBFScope(oneIn(2) ? TAG_SCOPE_FUNCTION : TAG_SCOPE_BLOCK);
            scope->setScope(pick(scopes));
            if (oneIn(2)) {
                scope->start = new SOBFMarkerExpr(pick(m_markers));
                scope->end = new SOBFMarkerExpr(pick(m_markers));
            }
            if (oneIn(2))
                scope->functionSymbol = pick(m_module->symbols);
            scopes.push_back(scope);
        }
        for (SOBFSymbol* symbol : m_module->symbols)
            if (oneIn(2))
                symbol->setScope(pick(scopes));
    }

    SOBFInsn* makeInsn() {
        switch (below(16)) {
        case 0:
            return new SOBFDefAddrInsn(expr());
        case 1:
            return new SOBFAlignInsn(below(9) - 1);
        case 2:
            return new SOBFOriginInsn(below(0x10000));
        case 3:
            return new SOBFFillInsn(below(40) - 1, below(300) - 20);
        case 4:
            return new SOBFSpaceInsn(expr());
        case 5:
            return new SOBFLinkIf(expr());
        case 6:
            return new SOBFEndLinkIf;
        case 7:
            return new SOBFLocalInsn(expr());
        case 8:
            return new SOBFInitInsn(text("section"), m_module);
        case 9:
            return new SOBFLocus(TAG_LOCUS, below(5000), pick(m_files));
        case 10:
            return new SOBFResetLocusInsn;
        case 11:
            return pick(m_markers);
        case 12:
            return new SOBFDefBytesInsn(expr(), 1 + below(4));
        default:
            return makeInstruction();
        }
    }
    SOBFInsn* makeInstruction() {
        SOBFExpr* source = oneIn(2) ? expr() : nullptr;
        SOBFExpr* destination = oneIn(3) ? expr() : nullptr;
        auto* insn = new SOBFMSP430Insn(bits() >> (oneIn(3) ? 0 : 16), source, destination, oneIn(2));
        insn->stackAdjust = oneIn(4) ? below(9) - 4 : 0;
        insn->extensionWord = oneIn(5) ? below(0x10000) : 0;
        return insn;
    }
    void makeSection(int records) {
        auto* section = new SOBFSection(text("section"));
        m_module->sections.push_back(section);
        m_module->sectionsByName.set(section->name, section);
        section->flags = oneIn(2) ? below(0x8000) : 0;
        const bool placed = !oneIn(3);
        for (int pc = below(0x8000); records > 0; --records) {
            if (section->fragments.empty() || oneIn(15))
                startFragment(section, placed ? pc : -1);
            SOBFInsn* insn = makeInsn();
            if (placed && !oneIn(20))
                insn->setPC(pc);
            if (oneIn(2))
                insn->encode();
            section->addInsn(insn);
            pc += std::min(insn->length(), 64);
        }
    }
    void startFragment(SOBFSection* section, int pc) {
        section->newFragment();
        if (oneIn(4))
            return;
        auto* start = new SOBFBreakInsn;
        start->setPC(pc);
        section->addInsn(start);
    }
    void nameMarkers() {
        for (SOBFSymbol* symbol : m_module->symbols)
            if (const auto* expr = dynamic_cast<SOBFMarkerExpr*>(symbol->value); expr && !oneIn(3))
                expr->marker->name = symbol->name;
    }

    std::mt19937 m_random;
    SOBFModule* m_module = nullptr;
    std::vector<SOBFMarker*> m_markers;
    std::vector<SOBFFilename*> m_files;
    std::vector<SOBFType*> m_types;
};
