// An object file of anyone's making in a link: an executable that can be read, or errors.

#include "foundation/HException.h"
#include "support/MemoryFiles.h"
#include "toolchain/common/ElfFile.h"
#include "toolchain/qlink/Link.h"
#include "toolchain/qlink/LinkOptions.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    MemoryFiles memory;
    const FilesInPlace inPlace(&memory);
    memory.write("in.vko", {reinterpret_cast<const char*>(data), size});
    LinkOptions options;
    options.inputs = {"in.vko"};
    options.output = "out.vkx";
    options.mapFile = "out.map";
    options.debug = true;
    options.dropUnused = size % 2;
    for (const char* word :
         {"INTVEC=ffe0-ffff", "CODE,CONST=1100-2000,3000-10000", "UDATA0,IDATA0,DATA=200-a00"})
        options.placements.push_back(parsePlacement(word));
    options.definitions = {{"heap_size", "64"}};
    options.checksumSections = {"CODE"};
    options.checksumAlgorithm = "crc16";
    Tool tool("qlink", "");
    tool.messages = nullptr;
    std::optional<LinkResult> result;
    try {
        result = linkInMemory(tool, options);
    } catch (const HException&) {
        return 0;
    }
    if (result)
        const ElfFile readable(result->executable);
    return 0;
}
