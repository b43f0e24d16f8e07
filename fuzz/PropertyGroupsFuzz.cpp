// Property group files, conditionals and all. Every entry that a group offers must be found again.

#include "properties/PropertyValueGroups.h"
#include "support/MemoryFiles.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    MemoryFiles disk;
    const FilesInPlace inPlace(&disk);
    disk.write("/groups.xml", {reinterpret_cast<const char*>(data), size});
    disk.write("/more.xml", "<envelope><group name=\"More\"><groupEntry name=\"a\"/></group></envelope>");
    PropertyValueGroups groups;
    groups.setGroupFile("/groups.xml");
    if (!groups.current())
        return 0;
    for (const PropertyValueGroupClass* group : groups.current()->classes()) {
        if (!groups.getGroupClass(group->saveName()))
            std::abort();
        const qsizetype count = std::min<qsizetype>(group->enumerates().size(), 100);
        for (const QString& name : group->enumerates().first(count)) {
            const PropertyValueGroupEntry entry = group->getGroupEntry(name);
            if (!entry)
                std::abort();
            entry.properties();
            entry.hasDefines();
        }
    }
    return 0;
}
