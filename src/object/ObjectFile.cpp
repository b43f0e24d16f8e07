#include "object/ObjectFile.h"

#include "foundation/HByteStream.h"
#include "object/SOBFMSP430Reader.h"

DependencyList objectFileDependencies(const QString& path) {
    const HFileInputByteStream stream(path);
    // The module record itself lies outside the module's own pool.
    Pool pool;
    const CurrentPool current(&pool);
    return DependencyList(SOBFMSP430Reader(&stream, false).readAttribute("dependencies").value_or(""));
}
