#pragma once

#include <QString>

/// Whether the library would take the text for a binary number, such as "0b11". In no file of the system is
/// that a number: "0x" and "0" are the only prefixes.
inline bool isBinaryNumber(const QString& text) {
    return text.contains(u'b', Qt::CaseInsensitive) && !text.contains(u'x', Qt::CaseInsensitive);
}
