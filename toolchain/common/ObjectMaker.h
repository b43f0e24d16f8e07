#pragma once

#include "toolchain/common/ObjectLayout.h"

#include <string>
#include <vector>

class ElfFile;
class SOBFModule;

/// What an object file says beyond what stands in the ELF file that it is made from.
struct ObjectMakerOptions {
    SectionNames sections;
    std::vector<std::string> dependencies;
    bool extended = false;  ///< instructions of the MSP430X count as such
    std::string doubleBits; ///< empty if the source has no such type
};

/// Makes the model of an object file out of a relocatable ELF file. A section of the ELF file becomes a
/// fragment, code becomes instructions, relocations become expressions, and the line table becomes source
/// lines. Words in a code section that are no instructions become data.
///
/// The model lies in the current pool, and is never null. Throws HException if the file is damaged or asks
/// for what the format does not have.
SOBFModule* makeObject(const ElfFile& elf, const ObjectMakerOptions& options);
