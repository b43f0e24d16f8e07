#pragma once

#include "macros/MacroScope.h"

#include <QStringList>

/// Keeps the user's global macros, entries in the form `name=value`.
class GlobalMacroStore {
public:
    virtual ~GlobalMacroStore() = default;
    virtual QStringList read() const = 0;
    virtual void write(const QStringList& entries) = 0;
};

/// The one text-substitution language of the system: references of the form `$(name)`, expanded with a scope
/// that gives each name its text. Also owns how a list is written as one text. Knows nothing of projects.
///
///     $(name)           the macro's text; if undefined, the reference stays as it is
///     $(name:default)   if undefined, the default, whose references a further pass expands
///     $(name::default)  if undefined, the default as it stands; no further pass follows
///
/// Nothing here reports an error.
class MacroSystem {
public:
    MacroSystem();

    /// The expanded text. A text without "$(" is returned itself, null included. A cycle, or a text that
    /// grows without end, gives the text as it stands when the bound is reached.
    static QString replaceMacros(const MacroScope& macros, const QString& text);
    static QString replaceMacros(const MacroMap& macros, const QString& text);
    /// The same on a text of its own, which each pass replaces.
    static QString replaceMacros2(const MacroScope& macros, QString text);

    /// Whether `name` is one of the macros that tell the date and time of their use; `text` gets it if so.
    static bool dynamicMacro(QStringView name, QString& text);

    /// The text with a "\" before each ";" and each "\".
    static QString escape(const QString& text);
    /// The escaped entries joined by ";".
    static QString stringFromStringList(const QStringList& entries);
    /// The entries of list text; empty ones only with `keepEmpty`. Of an empty text: no entry, or the empty
    /// one.
    static QStringList stringListFromString(const QString& text, bool keepEmpty);
    /// A map of `name=value` entries, split at the first "="; of two entries of a name the later holds.
    static MacroMap macrosFromStringList(const QStringList& entries);
    /// `name=value` entries in the order of the names, which lose the white space at both ends.
    static QStringList stringListFromMacros(const MacroMap& macros);
    /// `base` with every entry of `overrides` added or replaced.
    static MacroMap overwriteMacros(const MacroMap& base, const MacroMap& overrides);

    MacroMap systemMacros() const { return m_systemMacros; }
    /// The text, or null if there is no such system macro.
    QString systemMacro(const QString& name) const { return m_systemMacros.value(name); }
    void setSystemMacro(const QString& name, const QString& value) { m_systemMacros[name] = value; }
    /// Sets a macro to a normalised path.
    void setSystemMacroPath(const QString& name, const QString& path);

    /// The global macros; with `includeSystem`, laid over the system macros.
    MacroMap globalMacros(bool includeSystem) const;
    /// The text of a global or system macro, or an empty text.
    QString globalMacro(const QString& name) const;
    /// Sets a global macro; an empty value removes it.
    void setGlobalMacro(const QString& name, const QString& value);
    /// Global macros live in `store` from now on, which is not owned. Null: they last as long as this object.
    void setGlobalMacroStore(GlobalMacroStore* store) { m_store = store; }

private:
    QStringList globalMacroEntries() const { return m_store ? m_store->read() : m_entries; }

    MacroMap m_systemMacros;
    QStringList m_entries; ///< the global macros as long as there is no store
    GlobalMacroStore* m_store = nullptr;
};

/// The one macro system of the process; ready before `main`.
extern MacroSystem macroSystem;
