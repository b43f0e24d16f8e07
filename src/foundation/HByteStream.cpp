#include "foundation/HByteStream.h"

#include "foundation/HException.h"
#include "foundation/Text.h"

#include <cstdlib>
#include <cstring>
#include <new>

HByteStream::HByteStream(size_t growth)
    : m_growth(growth),
      m_start(static_cast<char*>(std::malloc(growth))),
      m_end(m_start),
      m_position(m_start),
      m_limit(m_start + growth) {
    if (!m_start)
        throw std::bad_alloc();
}

HByteStream::HByteStream(FileBytes bytes)
    : m_growth(usualGrowth),
      m_start(bytes.data.release()),
      m_end(m_start + bytes.size),
      m_position(m_start),
      m_limit(m_end) {}

HByteStream::~HByteStream() { std::free(m_start); }

void HByteStream::write(uint8_t byte) {
    if (m_end == m_limit)
        makeRoom(1);
    *m_end++ = static_cast<char>(byte);
}

void HByteStream::write(std::string_view bytes) {
    if (bytes.empty())
        return;
    if (bytes.size() > static_cast<size_t>(m_limit - m_end))
        makeRoom(bytes.size());
    std::memcpy(m_end, bytes.data(), bytes.size());
    m_end += bytes.size();
}

/// Growth by a fixed step is linear in time only because `realloc` moves the pages of a large block, not its
/// bytes.
void HByteStream::makeRoom(size_t bytes) {
    const size_t free = static_cast<size_t>(m_limit - m_end);
    const size_t steps = (bytes - free + m_growth - 1) / m_growth;
    const size_t capacity = static_cast<size_t>(m_limit - m_start) + steps * m_growth;
    const std::ptrdiff_t end = m_end - m_start;
    const std::ptrdiff_t position = m_position - m_start;
    char* grown = static_cast<char*>(std::realloc(m_start, capacity));
    if (!grown)
        throw std::bad_alloc();
    m_start = grown;
    m_end = grown + end;
    m_position = grown + position;
    m_limit = grown + capacity;
}

namespace {

FileBytes contentsOf(const QString& path) {
    FileBytes bytes = files().read(path);
    if (bytes.result == FileBytes::CannotOpen)
        throw HException("can't open file " + toBytes(path).toStdString());
    if (bytes.result == FileBytes::CannotRead)
        throw HException("can't read file " + toBytes(path).toStdString());
    return bytes;
}

} // namespace

HFileInputByteStream::HFileInputByteStream(const QString& path) : HByteStream(contentsOf(path)) {}
