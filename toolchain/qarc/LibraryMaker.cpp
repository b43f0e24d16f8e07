#include "toolchain/qarc/LibraryMaker.h"

#include "foundation/HException.h"
#include "toolchain/common/Library.h"
#include "toolchain/common/ModuleFile.h"
#include "toolchain/common/Tool.h"

namespace {

std::string baseName(const std::string& path) { return path.substr(path.rfind('/') + 1); }

std::vector<std::string> definedIn(const std::string& name, std::string_view bytes) {
    const ModuleFile file(name, bytes);
    std::vector<std::string> symbols;
    for (const auto& [symbol, object] : file.module().publics)
        symbols.emplace_back(symbol->view());
    return symbols;
}

LibraryEntry entryFor(const std::string& shown, const std::string& name, std::string_view bytes) {
    return {name, std::string(bytes), definedIn(shown, bytes)};
}

} // namespace

std::string makeLibrary(const std::vector<std::string>& inputs) {
    std::vector<LibraryEntry> entries;
    for (const std::string& path : inputs) {
        const std::string bytes = readInput(path);
        if (!Library::isLibrary(bytes)) {
            entries.push_back(entryFor(path, baseName(path), bytes));
            continue;
        }
        const Library library = openLibrary(path, bytes);
        for (const Library::Member& member : library.members())
            entries.push_back(entryFor(path + "(" + member.name + ")", member.name, member.bytes));
    }
    return libraryBytes(entries);
}

std::string listLibrary(const std::string& path) {
    const std::string bytes = readInput(path);
    std::string text;
    const Library library = openLibrary(path, bytes);
    for (const Library::Member& member : library.members()) {
        text += member.name + "\n";
        for (const std::string& symbol : definedIn(path + "(" + member.name + ")", member.bytes))
            text += "  " + symbol + "\n";
    }
    return text;
}
