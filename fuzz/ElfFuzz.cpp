// What clang or a linker has left, as it may come from anywhere: an object that is read again, a listing and
// load files, or a refusal.

#include "foundation/HException.h"
#include "toolchain/common/ElfFile.h"
#include "toolchain/common/Listing.h"
#include "toolchain/common/ModuleFile.h"
#include "toolchain/common/ObjectMaker.h"
#include "toolchain/qcvt/LoadFormats.h"

namespace {

void makeAndRead(const ElfFile& elf, bool extended) {
    ObjectMakerOptions options;
    options.extended = extended;
    Pool pool;
    const CurrentPool current(&pool);
    std::string bytes;
    try {
        bytes = objectBytes(*makeObject(elf, options));
    } catch (const HException&) {
        return;
    }
    // What was made must be readable: this throws otherwise.
    const ModuleFile again("object", bytes);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    try {
        const ElfFile elf(bytes);
        makeAndRead(elf, size % 2);
        listingOf(elf, nullptr);
        for (const char* format : {"hex", "srec", "bin", "txt", "tek"})
            loadFile(format, loadBlocks(elf), elf.entry);
    } catch (const HException& exception) {
        if (exception.text().find("object: ") == 0)
            __builtin_trap();
    }
    return 0;
}
