#pragma once

#include <QString>
#include <functional>
#include <string_view>

/// The name of an attribute or of a configuration, once for the whole process: a tree holds hundreds of
/// thousands of them and few different ones, and a search compares pointers. Symbols are never freed.
class Symbol {
public:
    /// The null symbol, which no text has.
    Symbol() = default;
    /// The symbol of the text, made if there is none yet.
    static Symbol of(const QString& text);
    /// The same for bytes, taken as Latin-1.
    static Symbol of(std::string_view bytes);
    /// The symbol of the text, or the null symbol if nothing has this name.
    static Symbol find(const QString& text);

    /// The same for a configuration. A build asks for one, by one and the same text, many thousand times.
    static Symbol findConfiguration(const QString& name);
    /// The configuration that holds beside every other.
    static Symbol common();
    /// How many symbols there are. What `find` did not find is not there either until this number has grown.
    static size_t count();

    const QString& text() const { return m_entry->text; }
    explicit operator bool() const { return m_entry != nullptr; }
    bool operator==(const Symbol& other) const = default;
    /// An order without meaning, for sorted containers.
    bool operator<(const Symbol& other) const { return std::less<>()(m_entry, other.m_entry); }

private:
    struct Entry {
        QString text;
    };
    struct Table;

    explicit Symbol(const Entry* entry) : m_entry(entry) {}

    const Entry* m_entry = nullptr;
};
