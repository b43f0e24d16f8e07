#pragma once

#include <QMap>
#include <QString>
#include <functional>
#include <optional>

/// Macro names and their texts, in the order of the names.
using MacroMap = QMap<QString, QString>;

/// Where an expansion looks its names up. Computes only what is asked of it.
class MacroScope {
public:
    virtual ~MacroScope() = default;
    /// The text of the macro, or nothing if there is no macro of this name. An empty text is a text.
    virtual std::optional<QString> value(const QString& name) const = 0;
};

/// The scope of a finished map, which must outlive it.
class MapScope : public MacroScope {
public:
    explicit MapScope(const MacroMap& macros) : m_macros(macros) {}
    std::optional<QString> value(const QString& name) const override {
        const auto found = m_macros.constFind(name);
        return found == m_macros.constEnd() ? std::nullopt : std::optional(*found);
    }

private:
    const MacroMap& m_macros;
};

/// The scope of a map that is made when the first name is looked up, and not at all for a text without
/// references.
class LazyScope : public MacroScope {
public:
    explicit LazyScope(std::function<MacroMap()> make) : m_make(std::move(make)) {}
    std::optional<QString> value(const QString& name) const override {
        if (!m_macros)
            m_macros = m_make();
        return MapScope(*m_macros).value(name);
    }

private:
    std::function<MacroMap()> m_make;
    mutable std::optional<MacroMap> m_macros;
};
