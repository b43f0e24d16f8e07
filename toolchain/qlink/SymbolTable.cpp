#include "toolchain/qlink/SymbolTable.h"

#include "object/SOBFExpr.h"
#include "object/SOBFModule.h"
#include "object/SOBFSymbol.h"
#include "object/SOBFType.h"
#include "toolchain/common/ObjectLayout.h"
#include "toolchain/common/Tool.h"

namespace {

std::string text(const HString* name) { return std::string(name->view()); }

std::unordered_set<HString*> namesIn(const SOBFModule& module, std::string_view key) {
    std::unordered_set<HString*> names;
    for (const std::string_view entry : listAttribute(module, key))
        names.insert(intern(entry));
    return names;
}

} // namespace

int SymbolTable::sizeOf(const SOBFSymbol* symbol) { return symbol->type ? symbol->type->size : 0; }

void SymbolTable::add(const std::string& name, SOBFModule& module) {
    const auto weak = namesIn(module, attributes::weak);
    const auto common = namesIn(module, attributes::common);
    for (const std::string_view kept : listAttribute(module, attributes::keep))
        m_kept.push_back(intern(kept));
    for (SOBFSymbol* symbol : module.symbols) {
        if (!symbol->name)
            continue;
        if (!symbol->value) {
            m_needed.emplace_back(symbol, name);
            if (weak.count(symbol->name))
                m_optional.insert(symbol);
        } else if (module.publics.value(symbol->name) == symbol) {
            define(symbol, name,
                   weak.count(symbol->name)     ? Weak
                   : common.count(symbol->name) ? Common
                                                : Strong);
        }
    }
}

void SymbolTable::define(SOBFSymbol* symbol, const std::string& module, Strength strength) {
    const auto [entry, isNew] = m_definitions.try_emplace(symbol->name, Definition{symbol, module, strength});
    if (isNew)
        return;
    Definition& standing = entry->second;
    if (strength == Strong && standing.strength == Strong)
        return m_tool.error(text(symbol->name) + " is defined in " + standing.module + " and in " + module);
    const bool larger =
        strength == Common && standing.strength == Common && sizeOf(symbol) > sizeOf(standing.symbol);
    if (strength > standing.strength || larger) {
        m_overruled.push_back(standing.symbol);
        standing = {symbol, module, strength};
    } else {
        m_overruled.push_back(symbol);
    }
}

std::vector<HString*> SymbolTable::missing() const {
    std::vector<HString*> names;
    std::unordered_set<HString*> seen;
    const auto take = [&](HString* name) {
        if (!m_definitions.count(name) && seen.insert(name).second)
            names.push_back(name);
    };
    for (HString* name : m_wanted)
        take(name);
    for (const auto& [symbol, module] : m_needed)
        if (!m_optional.count(symbol))
            take(symbol->name);
    return names;
}

SOBFSymbol* SymbolTable::definition(HString* name) const {
    const auto found = m_definitions.find(name);
    return found == m_definitions.end() ? nullptr : found->second.symbol;
}

void SymbolTable::bind() {
    for (const auto& [symbol, module] : m_needed) {
        if (SOBFSymbol* standing = definition(symbol->name))
            symbol->value = new SOBFSymbolExpr(standing);
        else if (!symbol->value && m_optional.count(symbol))
            symbol->value = new SOBFConstExpr(0);
    }
    for (SOBFSymbol* symbol : m_overruled)
        symbol->value = new SOBFSymbolExpr(definition(symbol->name));
}

void SymbolTable::reportUndefined() {
    std::unordered_set<HString*> told;
    for (const auto& [symbol, module] : m_needed)
        if (!symbol->value && symbol->reachable && told.insert(symbol->name).second)
            m_tool.error("undefined symbol " + text(symbol->name) + ", needed in " + module);
}
