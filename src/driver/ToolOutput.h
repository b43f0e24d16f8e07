#pragma once

#include <QByteArray>
#include <QStringList>
#include <string_view>

/// The lines of what a tool wrote. A newline ends a line, and so does a carriage return together with the
/// byte behind it, whatever that is. A line is null if it is empty. What stands behind the last line end is a
/// line if it has at least two bytes.
QStringList linesOf(std::string_view bytes);

/// The same lines as the console takes them, each with a newline, put together in the bytes given.
QByteArray consoleLinesOf(QByteArray bytes);
