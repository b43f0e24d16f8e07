#include "memorymap/MemoryMapOpenFiles.h"

#include "macros/Path.h"

MemoryMapOpenFiles memoryMapOpenFiles;

std::shared_ptr<MemoryMap> MemoryMapOpenFiles::getMemoryMapFile(const QString& path, const QString& macros,
                                                                bool preprocess) {
    const QString key = Path(path).osPathQString();
    const auto known = m_files.find(key);
    if (known != m_files.end()) {
        if (known->second.map->upToDate() && known->second.macros == macros)
            return known->second.map;
        m_files.erase(known);
    }
    auto map = std::make_shared<MemoryMap>();
    if (!map->load(key, macros, preprocess))
        return nullptr;
    m_files[key] = {map, macros};
    return map;
}
