#pragma once

#include <cerrno>
#include <unistd.h>
#include <utility>

/// A descriptor that closes itself.
class Descriptor {
public:
    explicit Descriptor(int number = -1) : m_number(number) {}
    ~Descriptor() { close(); }
    Descriptor(Descriptor&& other) noexcept : m_number(std::exchange(other.m_number, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(m_number, other.m_number);
        return *this;
    }

    bool isOpen() const { return m_number >= 0; }
    int number() const { return m_number; }
    /// 0 or the error number. A delayed write error shows here.
    int close() {
        const int number = std::exchange(m_number, -1);
        return number < 0 || ::close(number) == 0 ? 0 : errno;
    }

private:
    int m_number;
};
