#pragma once

#include <QHash>
#include <QString>
#include <list>
#include <utility>

/// Values by name, walked in the order in which they came. A name that comes again replaces the old entry and
/// goes to the end.
template<class Value>
class SourceBrowserDictionary {
public:
    using Entry = std::pair<QString, Value>;

    SourceBrowserDictionary() = default;
    SourceBrowserDictionary(const SourceBrowserDictionary&) = delete;
    SourceBrowserDictionary& operator=(const SourceBrowserDictionary&) = delete;

    void insert(const QString& name, Value value) {
        remove(name);
        m_places.insert(name, m_entries.insert(m_entries.end(), Entry(name, std::move(value))));
    }
    /// Null if there is no such entry.
    const Value* find(const QString& name) const {
        const auto found = m_places.constFind(name);
        return found == m_places.constEnd() ? nullptr : &(*found)->second;
    }
    void remove(const QString& name) {
        const auto found = m_places.constFind(name);
        if (found == m_places.constEnd())
            return;
        m_entries.erase(*found);
        m_places.erase(found);
    }
    /// Takes out each value for which `isGone(value)` holds.
    template<class Predicate>
    void removeIf(Predicate isGone) {
        for (auto entry = m_entries.begin(); entry != m_entries.end();) {
            const auto next = std::next(entry);
            if (isGone(entry->second)) {
                m_places.remove(entry->first);
                m_entries.erase(entry);
            }
            entry = next;
        }
    }

    qsizetype size() const { return m_places.size(); }
    bool isEmpty() const { return m_places.isEmpty(); }
    auto begin() const { return m_entries.begin(); }
    auto end() const { return m_entries.end(); }

private:
    std::list<Entry> m_entries;
    QHash<QString, typename std::list<Entry>::iterator> m_places;
};
