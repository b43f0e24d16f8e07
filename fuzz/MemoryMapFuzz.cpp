// Memory maps with what they import: the parts of an input are the map and an imported file.

#include "FuzzFiles.h"
#include "build/LinkPlacement.h"
#include "memorymap/MemoryMapOpenFiles.h"

#include <cstdint>
#include <cstdlib>

namespace {

class Map : public MemoryMap {
public:
    Map() { setGrowthLimit(1 << 20); }
    void warning(const QString&) override {}
};

void check(Map& map) {
    const QList<MemoryMapElement*> segments = map.getSegments(true);
    map.upToDate();
    if (map.getSegments(false).size() != segments.size())
        std::abort();
    for (MemoryMapElement* segment : segments) {
        if (!segment->name().isNull() && !map.getSegment(segment->name()))
            std::abort();
        std::vector<AddressRange> used;
        for (const MemoryMapElement* section : MemoryMap::getSections(segment, true))
            used.push_back({section->address(), uint64_t{section->address()} + section->size()});
        const AddressRange memory = {segment->address(), uint64_t{segment->address()} + segment->size()};
        for (const AddressRange& range : LinkPlacement::findUnusedRanges(used, memory)) {
            if (range.start >= range.end)
                std::abort();
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::vector<std::string_view> parts = partsOf({reinterpret_cast<const char*>(data), size});
    MemoryFiles disk;
    const FilesInPlace inPlace(&disk);
    disk.write("/part.xml", parts.size() > 1 ? parts[1] : "<Root/>");
    disk.write("/map.xml", parts[0]);
    for (bool preprocess : {true, false}) {
        Map map;
        if (map.load("/map.xml", "A=1;B=;Size=0x10", preprocess))
            check(map);
    }
    return 0;
}
