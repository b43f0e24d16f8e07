#pragma once

#include <memory>

class ExpressionParser;
class ExpressionType;

/// A value that a host has named and not yet fetched, such as a place in the memory of a program. A host
/// derives from it to tell what the place is. Lives in a shared_ptr.
class MarkerType : public std::enable_shared_from_this<MarkerType> {
public:
    /// The host, which is not owned, must outlive the marker.
    explicit MarkerType(ExpressionParser& host) : m_host(host) {}
    virtual ~MarkerType() = default;
    /// Lets the host fetch it. Throws ParserException if it can't be had.
    virtual ExpressionType value() const;

private:
    ExpressionParser& m_host;
};
