#include "build/Archive2.h"

#include "foundation/Text.h"

#include <QHash>
#include <QtEndian>
#include <algorithm>
#include <cstring>

namespace {

constexpr quint32 magic = 0x4152'C3C8;

// The fields of a directory entry.
constexpr size_t offsetAt = 1024;
constexpr size_t sizeAt = 1028;
constexpr size_t flagAt = 1032;
constexpr size_t timeAt = 1036;

quint32 wordAt(std::string_view bytes, size_t at) { return qFromLittleEndian<quint32>(bytes.data() + at); }

void putWord(char* to, quint32 value) { qToLittleEndian(value, to); }

QByteArray bytesOf(std::string_view view) { return {view.data(), static_cast<qsizetype>(view.size())}; }

} // namespace

std::string_view ArchiveChunk2::data() const {
    if (offset > contents.size() || size > contents.size() - offset)
        return {};
    return contents.data() ? contents.substr(offset, size) : std::string_view("");
}

QByteArray Archive2::storedName(const QByteArray& name) {
    const qsizetype end = name.indexOf('\0');
    return name.left(std::min(end < 0 ? name.size() : end, nameSize));
}

Archive2::Result Archive2::open(std::string_view image, const QString& path) {
    m_chunks.clear();
    if (image.size() < headerSize || wordAt(image, 0) != magic)
        return BadHeader;
    const auto count = static_cast<qint32>(wordAt(image, 4));
    if (count < 0)
        return BadHeader;
    const size_t whole = (image.size() - headerSize) / entrySize;
    m_chunks.reserve(std::min(whole, static_cast<size_t>(count)));
    for (size_t i = 0; i < static_cast<size_t>(count); ++i) {
        if (i == whole)
            return ShortDirectory;
        const std::string_view entry = image.substr(headerSize + i * entrySize, entrySize);
        const std::string_view name = entry.substr(0, nameSize);
        addMember(path, image, bytesOf(name.substr(0, name.find('\0'))), wordAt(entry, offsetAt),
                  wordAt(entry, sizeAt), static_cast<quint8>(entry[flagAt]), wordAt(entry, timeAt));
    }
    return Ok;
}

void Archive2::addMember(const QString& source, std::string_view contents, const QByteArray& name,
                         quint32 offset, quint32 size, quint8 flag, quint32 time) {
    m_chunks.push_back({storedName(name), offset, size, flag, time, source, contents});
}

const ArchiveChunk2* Archive2::findMember(const QByteArray& name) const {
    const auto found = std::ranges::find(m_chunks, name, &ArchiveChunk2::name);
    return found == m_chunks.end() ? nullptr : &*found;
}

// A container holds every byte of data once. Members that claim more bytes than their source has would let a
// small hostile image grow without bound.
bool Archive2::isWritable(const QString& path) {
    quint64 total = headerSize;
    QHash<const void*, quint64> claimed;
    for (const ArchiveChunk2& chunk : m_chunks) {
        quint64& ofSource = claimed[chunk.contents.data()];
        ofSource += chunk.size;
        total += entrySize + chunk.size;
        if (!chunk.data().data() || ofSource > chunk.contents.size()) {
            m_errorText = "FATAL: read error on " + chunk.source + ".\n";
            return false;
        }
    }
    if (total > mostBytes)
        m_errorText = "FATAL: write error on " + path + ".\n";
    return total <= mostBytes;
}

Archive2::Result Archive2::write(const QString& path, QByteArray& image) {
    image.clear();
    if (!isWritable(path))
        return WriteFailed;
    const auto count = static_cast<qsizetype>(m_chunks.size());
    const qsizetype directoryEnd = headerSize + count * entrySize;
    image.fill('\0', directoryEnd);
    putWord(image.data(), magic);
    putWord(image.data() + 4, static_cast<quint32>(count));
    auto offset = static_cast<quint32>(directoryEnd);
    char* entry = image.data() + headerSize;
    for (const ArchiveChunk2& chunk : m_chunks) {
        std::memcpy(entry, chunk.name.constData(), static_cast<size_t>(chunk.name.size()));
        putWord(entry + offsetAt, offset);
        putWord(entry + sizeAt, chunk.size);
        entry[flagAt] = static_cast<char>(chunk.flag);
        putWord(entry + timeAt, chunk.time);
        offset += chunk.size;
        entry += entrySize;
    }
    image.reserve(offset);
    for (const ArchiveChunk2& chunk : m_chunks)
        image.append(chunk.contents.data() + chunk.offset, chunk.size);
    return Ok;
}
