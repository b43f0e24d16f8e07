#include "build/FileTimes.h"

#include "foundation/FileAccess.h"
#include "foundation/Text.h"
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

size_t FileTimes::Hash::operator()(std::string_view name) const {
    return std::hash<std::string_view>()(name);
}

QString FileTimes::resolved(const QString& directory, const QString& name) {
    return Path::isAbsolute(name) ? name : QString(directory + "/" + name);
}

// Headers stand in much the same order in the list of each object that they went into: what came behind a
// name the last time comes behind it most often, and is compared before anything is looked up.
const std::optional<qint64>* FileTimes::Times::find(std::string_view name) {
    Map::value_type* const foreseen = m_last ? m_last->second.next : nullptr;
    if (foreseen && foreseen->first == name) {
        m_last = foreseen;
        return &foreseen->second.modified;
    }
    const auto known = m_map.find(name);
    return known == m_map.end() ? nullptr : &moveTo(*known);
}

const std::optional<qint64>& FileTimes::Times::add(std::string_view name, std::optional<qint64> time) {
    return moveTo(*m_map.emplace(name, Known{time}).first);
}

const std::optional<qint64>& FileTimes::Times::moveTo(Map::value_type& entry) {
    if (m_last)
        m_last->second.next = &entry;
    m_last = &entry;
    return entry.second.modified;
}

// Names are found by the bytes that the object holds, without being made a text or an absolute path first.
std::optional<qint64> FileTimes::modified(const QString& directory, std::string_view name,
                                          const QString& path) {
    const bool isAbsolute = name.starts_with('/');
    if (!isAbsolute && directory.constData() != m_directory.constData() && directory != m_directory) {
        m_relative = {};
        m_directory = directory;
    }
    Times& times = isAbsolute ? m_absolute : m_relative;
    if (const auto known = times.find(name))
        return *known;
    return times.add(name, timeOnDisk(path.isNull() ? resolved(directory, toText(name)) : path));
}

void FileTimes::forget() {
    m_absolute = {};
    m_relative = {};
}
