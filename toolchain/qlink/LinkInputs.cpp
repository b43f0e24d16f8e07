#include "toolchain/qlink/LinkInputs.h"

#include "foundation/HException.h"
#include "object/SOBFExpr.h"
#include "object/SOBFSymbol.h"
#include "toolchain/common/ObjectLayout.h"
#include "toolchain/common/Tool.h"
#include "toolchain/qlink/LinkOptions.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <optional>

namespace {

/// A number as C writes it, decimal or hexadecimal, perhaps negative.
std::optional<int64_t> number(std::string_view text) {
    const bool negative = !text.empty() && text[0] == '-';
    if (negative)
        text.remove_prefix(1);
    int base = 10;
    if (text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X')) {
        base = 16;
        text.remove_prefix(2);
    }
    int64_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, base);
    if (text.empty() || error != std::errc() || end != text.data() + text.size())
        return {};
    return negative ? -value : value;
}

} // namespace

LinkInputs::LinkInputs(Tool& tool, const LinkOptions& options)
    : m_tool(tool), m_options(options), m_symbols(tool), m_own(new SOBFModule(Pool::currentPool)) {}

SOBFSymbol* LinkInputs::define(const std::string& name, SOBFExpr* value) {
    auto* symbol = new SOBFSymbol(intern(name));
    symbol->value = value;
    m_own->symbols.push_back(symbol);
    if (value)
        m_own->publics.set(symbol->name, symbol);
    return symbol;
}

void LinkInputs::load() {
    for (const std::string& path : m_options.inputs)
        addFile(path);
    addDefinitions();
    m_symbols.want(intern(m_options.entry));
    for (const std::string& name : m_options.keep)
        m_symbols.want(intern(name));
    while (searchLibraries()) {
    }
    std::stable_sort(m_modules.begin(), m_modules.end(), [](const auto& a, const auto& b) {
        return a->module().linkOrderPriority < b->module().linkOrderPriority;
    });
    m_symbols.bind();
    compareAttributes();
}

void LinkInputs::addFile(const std::string& path) {
    std::string bytes = readInput(path);
    if (Library::isLibrary(bytes))
        m_libraries.push_back(std::make_unique<SearchedLibrary>(path, std::move(bytes)));
    else
        addModule(path, bytes);
}

void LinkInputs::addModule(const std::string& name, std::string_view bytes) {
    m_modules.push_back(std::make_unique<ModuleFile>(name, bytes));
    m_symbols.add(name, m_modules.back()->module());
}

/// The same symbol may be defined again and again on the command line; the last one counts.
void LinkInputs::addDefinitions() {
    for (const auto& [name, text] : m_options.definitions) {
        SOBFExpr* value = nullptr;
        if (const auto known = number(text))
            value = new SOBFConstExpr(*known);
        else
            value = new SOBFSymbolExpr(define(text, nullptr));
        if (SOBFSymbol* earlier = m_own->publics.value(intern(name)))
            earlier->value = value;
        else
            define(name, value);
    }
    m_symbols.add("the command line", *m_own);
}

bool LinkInputs::searchLibraries() {
    bool found = false;
    for (HString* name : m_symbols.missing()) {
        if (m_symbols.definition(name))
            continue;
        for (const auto& searched : m_libraries) {
            const int number = searched->library.definer(name->view());
            if (number < 0 || !searched->taken.insert(number).second)
                continue;
            const Library::Member& member = searched->library.members()[static_cast<size_t>(number)];
            m_tool.say("takes " + searched->path + "(" + member.name + ") for " + std::string(name->view()));
            addModule(searched->path + "(" + member.name + ")", member.bytes);
            found = true;
            break;
        }
    }
    return found;
}

/// Modules that were made for different machines do not work together.
void LinkInputs::compareAttributes() const {
    const ModuleFile* first = nullptr;
    for (const auto& file : m_modules) {
        const auto valueOf = [](const ModuleFile& of, std::string_view key) {
            const HString* value = of.module().attributes.value(intern(key));
            return value ? std::string(value->view()) : std::string();
        };
        if (!m_options.extended && valueOf(*file, attributes::processor) == "MSP430X")
            m_tool.warn(file->name() + " was made for the MSP430X");
        const std::string bits = valueOf(*file, attributes::doubleBits);
        if (bits.empty())
            continue;
        if (!first)
            first = file.get();
        else if (bits != valueOf(*first, attributes::doubleBits))
            m_tool.warn("a double has " + bits + " bits in " + file->name() + ", but not in " +
                        first->name());
    }
}
