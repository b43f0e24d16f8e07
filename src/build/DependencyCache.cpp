#include "build/DependencyCache.h"

#include "foundation/Text.h"

namespace {
constexpr QChar between = u'\0'; // stands in no file name
}

QStringList DependencyCache::find(const QString& output) const {
    const auto found = m_lists.constFind(output);
    return found == m_lists.cend() ? QStringList() : toText(viewOf(*found)).split(between);
}

void DependencyCache::store(const QString& output, const QStringList& dependencies) {
    m_lists.insert(output, toBytes(dependencies.join(between)));
}
