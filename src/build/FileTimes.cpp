#include "build/FileTimes.h"

#include "foundation/FileAccess.h"
#include "foundation/Text.h"
#include "macros/Path.h"

#include <algorithm>
#include <cstring>

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

// A build looks up every name of every object: eight bytes at a time, since the library's hash goes byte by
// byte through the end of a name.
size_t FileTimes::Hash::operator()(std::string_view name) const {
    constexpr uint64_t spread = 0x9E3779B97F4A7C15u;
    uint64_t hash = name.size();
    while (!name.empty()) {
        uint64_t bytes = 0;
        const size_t taken = std::min(name.size(), sizeof bytes);
        std::memcpy(&bytes, name.data(), taken);
        name.remove_prefix(taken);
        hash = (hash ^ bytes) * spread;
        hash ^= hash >> 32;
    }
    return hash;
}

QString FileTimes::resolved(const QString& directory, const QString& name) {
    return Path::isAbsolute(name) ? name : QString(directory + "/" + name);
}

// Most names that are asked for again are relative, a header's in the list of each object that it went into:
// they are found by the bytes that the object holds, without being made a text or an absolute path first.
std::optional<qint64> FileTimes::modified(const QString& directory, std::string_view name) {
    const bool isAbsolute = name.starts_with('/');
    if (!isAbsolute && directory != m_directory) {
        m_relative.clear();
        m_directory = directory;
    }
    Times& times = isAbsolute ? m_absolute : m_relative;
    if (const auto known = times.find(name); known != times.end())
        return known->second;
    return times.emplace(name, timeOnDisk(resolved(directory, toText(name)))).first->second;
}

void FileTimes::forget() {
    m_absolute.clear();
    m_relative.clear();
}
