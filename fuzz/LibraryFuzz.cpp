// A library: its members, or a refusal. What it holds makes a library again.

#include "foundation/HException.h"
#include "toolchain/common/Library.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    try {
        const Library library(bytes);
        std::vector<LibraryEntry> entries;
        for (const Library::Member& member : library.members())
            entries.push_back({member.name, std::string(member.bytes), {member.name}});
        const std::string again = libraryBytes(entries);
        if (Library(again).members().size() != entries.size())
            __builtin_trap();
        library.definer("main");
    } catch (const HException&) {
    }
    return 0;
}
