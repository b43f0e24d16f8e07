#pragma once

#include <QString>
#include <iosfwd>
#include <string>

/// Where errors go before the build starts. One line each: the program's name, ": error: ", the message.
class Report {
public:
    Report(std::string name, std::ostream& stream) : m_name(std::move(name)), m_stream(stream) {}

    /// Counts an error and writes the prefix. The caller puts the message and a line end behind it.
    std::ostream& error();
    int errors() const { return m_errors; }

private:
    std::string m_name;
    std::ostream& m_stream;
    int m_errors = 0;
};

/// The report of the process; made at the start of `main`.
extern Report* report;

/// Writes the bytes of the text.
std::ostream& operator<<(std::ostream& stream, const QString& text);
