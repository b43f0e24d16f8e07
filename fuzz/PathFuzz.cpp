// Normalising twice changes nothing, and a relative path leads back. The input is two paths, a line each.

#include "foundation/Text.h"
#include "macros/Path.h"

#include <cstdint>
#include <cstdlib>

namespace {

/// An absolute path without "." and ".." components, so that a way along it can be walked back.
QString plainPath(const QString& text) {
    QStringList parts = text.split(u'/', Qt::SkipEmptyParts);
    parts.removeAll(".");
    parts.removeAll("..");
    return "/common/" + parts.join(u'/');
}

void require(bool holds) {
    if (!holds)
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QString input = toText({reinterpret_cast<const char*>(data), size});
    const QString normal = Path::normalised(input);
    require(Path::normalised(normal) == normal);
    require(normal.size() <= input.size());

    const QString from = plainPath(input.section(u'\n', 0, 0));
    const QString to = plainPath(input.section(u'\n', 1));
    QString way;
    require(Path::relativeDirPath(from, to, way));
    const QString there = Path::normalised(from + "/" + way + "/");
    require(there == Path::normalised(to + "/"));
    return 0;
}
