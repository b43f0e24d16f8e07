#include "object/ObjectFile.h"

#include "foundation/HByteStream.h"
#include "foundation/Text.h"
#include "object/SOBFMSP430Reader.h"
#include "object/SOBFModule.h"

#include <algorithm>

namespace {

QStringList split(std::string_view text) {
    QStringList entries;
    entries.reserve(std::count(text.begin(), text.end(), ';') + 1);
    while (!text.empty()) {
        const size_t end = std::min(text.find(';'), text.size());
        if (end > 0)
            entries.append(toText(text.substr(0, end)));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return entries;
}

} // namespace

QStringList objectFileDependencies(const QString& path) {
    static HString* const key = HString::intern("dependencies", HString::AsIs);
    const HFileInputByteStream stream(path);
    // The module record itself lies outside the module's own pool.
    Pool pool;
    const CurrentPool current(&pool);
    SOBFMSP430Reader reader(&stream, false);
    SOBFModule* module = reader.readFileQuickly();
    if (!module)
        return {};
    const HString* value = module->attributes.value(key);
    const QStringList result = value ? split(value->view()) : QStringList();
    SOBFReader::release(module);
    return result;
}
