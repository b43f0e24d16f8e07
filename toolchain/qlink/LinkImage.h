#pragma once

#include "toolchain/common/Executable.h"

class LinkInputs;
class LinkLayout;
class Tool;
struct LinkOptions;

/// The program out of records that have their addresses: their bytes, the symbols and, with debug
/// information, the source lines. Values that do not fit their place are told as errors.
Executable makeExecutable(Tool& tool, const LinkOptions& options, LinkInputs& inputs, LinkLayout& layout);
