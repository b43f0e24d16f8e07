#pragma once

#include <string>
#include <utility>

/// Every failure of an expression, in reading it as in evaluating it.
class ParserException {
public:
    explicit ParserException(std::string cause) : m_cause(std::move(cause)) {}
    const std::string& getCause() const { return m_cause; }

private:
    std::string m_cause;
};
