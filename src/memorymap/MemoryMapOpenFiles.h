#pragma once

#include "memorymap/MemoryMap.h"

#include <map>
#include <memory>

/// The memory maps that were loaded, so that each file is read once as long as it stays the same.
class MemoryMapOpenFiles {
public:
    /// The map of a file, loaded with these macros; null if it can't be loaded. It is the one that was handed
    /// out last for this path, unless a file of it or the macros have changed. A map stays as long as anyone
    /// holds it: the one that a file gives in another role, with other macros, does not end it.
    std::shared_ptr<MemoryMap> getMemoryMapFile(const QString& path, const QString& macros, bool preprocess);

private:
    struct OpenFile {
        std::shared_ptr<MemoryMap> map;
        QString macros;
    };
    std::map<QString, OpenFile> m_files; ///< by the path in the form of the operating system
};

/// The maps of the process.
extern MemoryMapOpenFiles memoryMapOpenFiles;
