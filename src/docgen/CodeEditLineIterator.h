#pragma once

#include "foundation/FileAccess.h"

#include <string_view>

/// The lines of a text, one after the other, without their ends. A byte order mark in front is no part of the
/// first.
class CodeEditLineIterator {
public:
    /// A file that can't be read has no lines.
    explicit CodeEditLineIterator(const QString& path);
    /// The bytes stay the caller's, and must last as long as the lines are used.
    explicit CodeEditLineIterator(std::string_view bytes);

    /// The next line, which lasts as long as this iterator; false at the end.
    bool getLine(std::string_view& line);

private:
    void start(std::string_view bytes);

    FileBytes m_file;
    std::string_view m_rest;
};

/// A text out of a source file: UTF-8 if it is that, otherwise one character a byte.
QString decodedSource(std::string_view bytes);
