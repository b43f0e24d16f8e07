#pragma once

#include "foundation/Text.h"

#include <algorithm>
#include <iterator>
#include <string_view>

/// The files that an object file was made from, as the object names them: a text with ";" between the names.
/// Goes through those that are not empty, in place: a build looks at every name of every object, and needs
/// hardly any of them as a text of its own. Copies share the text.
class DependencyList {
public:
    class Iterator {
    public:
        using iterator_category = std::forward_iterator_tag;
        using value_type = std::string_view;
        using difference_type = std::ptrdiff_t;
        using pointer = const std::string_view*;
        using reference = std::string_view;

        explicit Iterator(std::string_view rest) : m_rest(rest) { find(); }
        std::string_view operator*() const { return m_rest.substr(0, m_size); }
        Iterator& operator++() {
            m_rest.remove_prefix(m_size);
            find();
            return *this;
        }
        bool operator==(const Iterator& other) const { return m_rest.size() == other.m_rest.size(); }

    private:
        void find() {
            while (m_rest.starts_with(separator))
                m_rest.remove_prefix(1);
            m_size = std::min(m_rest.find(separator), m_rest.size());
        }

        std::string_view m_rest; ///< from the name in hand on
        size_t m_size = 0;       ///< of the name in hand
    };

    DependencyList() = default;
    explicit DependencyList(std::string_view text)
        : m_text(text.data(), static_cast<qsizetype>(text.size())) {}

    Iterator begin() const { return Iterator(viewOf(m_text)); }
    Iterator end() const { return Iterator(std::string_view()); }
    bool isEmpty() const { return begin() == end(); }

private:
    static constexpr char separator = ';';

    QByteArray m_text;
};
