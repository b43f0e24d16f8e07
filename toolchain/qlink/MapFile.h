#pragma once

#include "toolchain/common/Executable.h"

#include <string>

class LinkLayout;

/// A map of the program as text: sections, what each module has put there, and symbols by address.
std::string mapText(const std::string& title, const LinkLayout& layout, const Executable& program);
