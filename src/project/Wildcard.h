#pragma once

#include <QString>

/// Whether `text` as a whole matches the pattern: "*" is any text, "?" any character, "[abc]", "[a-c]" and
/// "[^abc]" one character of a set or outside it. A set that is not closed matches nothing. Everything else
/// stands for itself, "\" too.
bool wildcardMatches(QStringView pattern, QStringView text, Qt::CaseSensitivity sensitivity);
