#pragma once

#include "toolchain/common/Library.h"
#include "toolchain/common/ModuleFile.h"
#include "toolchain/qlink/SymbolTable.h"

#include <memory>
#include <set>

class SOBFExpr;
struct LinkOptions;

/// The modules that take part in a link: all object files, of the libraries what they need, and one of the
/// linker's own.
class LinkInputs {
public:
    LinkInputs(Tool& tool, const LinkOptions& options);

    /// Reads the inputs, adds members of libraries for as long as one defines a symbol that is missing, and
    /// binds. Throws HException if an input can't be read.
    void load();

    /// In the order in which their fragments are placed.
    const std::vector<std::unique_ptr<ModuleFile>>& modules() const { return m_modules; }
    /// The module of what the linker makes, in the current pool.
    SOBFModule& own() { return *m_own; }
    SymbolTable& symbols() { return m_symbols; }

    /// Defines a symbol in the linker's own module.
    SOBFSymbol* define(const std::string& name, SOBFExpr* value);

private:
    void addFile(const std::string& path);
    void addModule(const std::string& name, std::string_view bytes);
    void addDefinitions();
    bool searchLibraries();
    void compareAttributes() const;

    struct SearchedLibrary {
        std::string path;
        std::string bytes;
        Library library;
        std::set<int> taken;
        SearchedLibrary(std::string p, std::string b)
            : path(std::move(p)), bytes(std::move(b)), library(openLibrary(path, bytes)) {}
    };

    Tool& m_tool;
    const LinkOptions& m_options;
    SymbolTable m_symbols;
    std::vector<std::unique_ptr<ModuleFile>> m_modules;
    std::vector<std::unique_ptr<SearchedLibrary>> m_libraries;
    SOBFModule* m_own;
};
