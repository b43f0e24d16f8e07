#pragma once

#include "docgen/SourceBrowserCParser.h"
#include "foundation/Text.h"

#include <string>

/// A header that is scanned, and what it declares as one line of text.
class Scan {
public:
    explicit Scan(std::string_view header, BuildLog* log = nullptr,
                  SourceBrowserEventInterface* events = nullptr)
        : m_parser(database, log, events) {
        parse(header);
    }
    void parse(std::string_view header, const QString& path = "/p/a.h") { m_parser.parseText(path, header); }

    Metrics metrics() const { return database.metrics("/p/a.h"); }
    /// The first function at file level of that name; null if there is none.
    const SourceBrowserMethod* method(const char* name) const {
        for (const auto& method : database.methods())
            if (method->name() == QLatin1String(name))
                return method.get();
        return nullptr;
    }

    /// "int|f (int a); int|variable; struct s{...}; class c : public b{...}; namespace n{...}".
    std::string dump() const { return dump(database); }

    static std::string dump(const SourceBrowserContainer& container) {
        std::string text;
        const auto add = [&](const std::string& item) { text += (text.empty() ? "" : "; ") + item; };
        for (const auto& [name, variable] : container.variables())
            add(std::string(variable->isStatic ? "static " : "") + bytes(variable->type()) + "|" +
                bytes(name));
        for (const auto& method : container.methods())
            add(std::string(method->isVirtual ? "virtual " : "") + (method->isStatic ? "static " : "") +
                bytes(method->type()) + "|" + bytes(method->asString()) + (method->isConst ? " const" : ""));
        for (const auto& [name, inner] : container.structs())
            add("struct " + bytes(name) + braced(*inner));
        for (const auto& [name, inner] : container.classes())
            add("class " + bytes(name) + braced(*inner));
        for (const auto& [name, inner] : container.namespaces())
            add("namespace " + bytes(name) + braced(*inner));
        return text;
    }

    static std::string bytes(const QString& text) { return text.toStdString(); }

    SourceBrowserDatabase database;

private:
    static std::string braced(const SourceBrowserContainer& container) {
        std::string bases;
        for (const SourceBrowserBaseClass& base : container.baseClasses())
            bases += (bases.empty() ? " : " : ", ") + std::to_string(base.access) + " " + bytes(base.name);
        return bases + "{" + dump(container) + "}";
    }

    SourceBrowserCParser m_parser;
};
