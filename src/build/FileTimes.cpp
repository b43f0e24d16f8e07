#include "build/FileTimes.h"

#include "foundation/FileAccess.h"
#include "macros/Path.h"

namespace {

constexpr qint64 nanosecondsPerSecond = 1'000'000'000;

std::optional<qint64> timeOnDisk(const QString& path) {
    const FileStatus status = files().status(path);
    if (!status.exists())
        return std::nullopt;
    const qint64 seconds = status.modified / nanosecondsPerSecond;
    return status.modified % nanosecondsPerSecond < 0 ? seconds - 1 : seconds;
}

} // namespace

QString FileTimes::resolved(const QString& directory, const QString& name) {
    return Path::isAbsolute(name) ? name : QString(directory + "/" + name);
}

// Most names that are asked for again are relative, a header's in the list of each object that it went into:
// they are found by the text itself, without being made absolute first.
std::optional<qint64> FileTimes::modified(const QString& directory, const QString& name) {
    const bool isAbsolute = Path::isAbsolute(name);
    if (!isAbsolute && directory != m_directory) {
        m_relative.clear();
        m_directory = directory;
    }
    Times& times = isAbsolute ? m_absolute : m_relative;
    const auto known = times.constFind(name);
    if (known != times.cend())
        return *known;
    return *times.insert(name, timeOnDisk(resolved(directory, name)));
}

void FileTimes::forget() {
    m_absolute.clear();
    m_relative.clear();
}
