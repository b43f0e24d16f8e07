#pragma once

#include "foundation/Text.h"

#include <cstdlib>
#include <filesystem>
#include <string>

/// A directory of a test's own, gone when the test ends.
class TemporaryDirectory {
public:
    TemporaryDirectory() {
        std::string name = std::filesystem::temp_directory_path() / "ostmake.XXXXXX";
        m_path = ::mkdtemp(name.data());
    }
    ~TemporaryDirectory() {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

    QString path() const { return toText(m_path); }
    const std::string& bytes() const { return m_path; }

private:
    std::string m_path;
};
