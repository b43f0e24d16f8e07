#pragma once

#include "foundation/FileAccess.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

/// A buffer of bytes with a write end and a read position. Owns its buffer. Pointers into it stand until the
/// next write.
class HByteStream {
public:
    /// Bytes by which every stream of the system grows.
    static constexpr size_t usualGrowth = 1024;

    explicit HByteStream(size_t growth = usualGrowth);
    virtual ~HByteStream();
    HByteStream(const HByteStream&) = delete;
    HByteStream& operator=(const HByteStream&) = delete;

    void write(uint8_t byte);
    void write(std::string_view bytes);

    /// The contents, from their first byte to the write position.
    const char* start() const { return m_start; }
    const char* end() const { return m_end; }
    size_t size() const { return static_cast<size_t>(m_end - m_start); }
    std::string_view view() const { return {m_start, size()}; }
    /// The end of the buffer.
    const char* limit() const { return m_limit; }

    /// The read position.
    const char* position() const { return m_position; }
    bool atEnd() const { return m_position == m_end; }
    /// The byte at the read position, which moves on; -1 at the end.
    int read() { return atEnd() ? -1 : static_cast<uint8_t>(*m_position++); }

protected:
    /// Begins with the contents of a file.
    explicit HByteStream(FileBytes bytes);

private:
    void makeRoom(size_t bytes);

    size_t m_growth;
    char* m_start;
    char* m_end;
    char* m_position;
    char* m_limit;
};

/// A whole file in memory. The file itself is closed again when the constructor returns.
class HFileInputByteStream : public HByteStream {
public:
    /// Throws HException, "can't open file " or "can't read file " and the path.
    explicit HFileInputByteStream(const QString& path);
};
