#pragma once

#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

class HString;
class SOBFModule;
class SOBFSymbol;
class Tool;

/// Who defines and who needs the symbols of all modules of a link.
class SymbolTable {
public:
    explicit SymbolTable(Tool& tool) : m_tool(tool) {}

    /// Takes a module's symbols. `module` must outlive the table; `name` is what messages call it.
    void add(const std::string& name, SOBFModule& module);
    /// Asks for a symbol on behalf of the command line: a library may have it.
    void want(HString* name) { m_wanted.push_back(name); }

    /// The symbols that a library might have: needed, defined nowhere yet, and not content with being absent.
    std::vector<HString*> missing() const;
    /// Which symbol stands for a name; null if none does.
    SOBFSymbol* definition(HString* name) const;
    /// The names of symbols that stay though nothing refers to them.
    const std::vector<HString*>& kept() const { return m_kept; }

    /// Gives each symbol that is needed the value of the one that stands for its name, and those that gave
    /// way too. What may be absent, and is, becomes 0.
    void bind();
    /// Tells of symbols that are needed by what is reachable and defined nowhere.
    void reportUndefined();
    /// The modules that need a symbol, in order, by the first one that does.
    const std::vector<std::pair<SOBFSymbol*, std::string>>& needed() const { return m_needed; }

private:
    enum Strength { Weak, Common, Strong };
    struct Definition {
        SOBFSymbol* symbol;
        std::string module;
        Strength strength;
    };

    void define(SOBFSymbol* symbol, const std::string& module, Strength strength);
    static int sizeOf(const SOBFSymbol* symbol);

    Tool& m_tool;
    std::unordered_map<HString*, Definition> m_definitions;
    std::vector<std::pair<SOBFSymbol*, std::string>> m_needed;
    std::unordered_set<SOBFSymbol*> m_optional; ///< of those: what may be absent
    std::vector<SOBFSymbol*> m_overruled;
    std::vector<HString*> m_wanted;
    std::vector<HString*> m_kept;
};
