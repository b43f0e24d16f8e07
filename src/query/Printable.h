#pragma once

#include <string>
#include <string_view>

/// A text out of a file as a terminal may have it: control characters as "\x1B" and the like.
std::string printable(std::string_view text);
