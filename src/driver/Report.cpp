#include "driver/Report.h"

#include "foundation/Text.h"

#include <ostream>

Report* report = nullptr;

std::ostream& Report::error() {
    ++m_errors;
    return m_stream << m_name << ": error: ";
}

std::ostream& operator<<(std::ostream& stream, const QString& text) {
    return stream << viewOf(toBytes(text));
}
