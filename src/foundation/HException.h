#pragma once

#include <string>

/// The general error of the lower layers: a text for the user.
class HException {
public:
    explicit HException(std::string text) : m_text(std::move(text)) { ++m_count; }
    HException(const HException& other) : m_text(other.m_text) { ++m_count; }
    HException& operator=(const HException&) = default;
    virtual ~HException() { --m_count; }

    /// What went wrong, without a line end.
    const std::string& text() const { return m_text; }

    /// The number of exceptions that exist at this moment.
    static int m_count;

private:
    std::string m_text;
};
