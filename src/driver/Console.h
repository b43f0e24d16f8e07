#pragma once

#include <QByteArray>

/// The standard output. Nothing is kept back: what was printed is out before the next tool starts and when
/// the process ends, however it ends. Callers put together what belongs together, and print it with one call.
class Console {
public:
    /// Writes to this descriptor, which stays open.
    explicit Console(int descriptor = 1) : m_descriptor(descriptor) {}

    /// Writes all of the bytes. Throws HException if they can't be written: the reader has gone, the disk is
    /// full.
    void print(const QByteArray& bytes);

private:
    int m_descriptor;
};
