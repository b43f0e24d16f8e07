#pragma once

#include "support/TemporaryDirectory.h"

#include <QStringList>
#include <fstream>
#include <iterator>

/// A directory in which a shell stands for a tool.
class ShellTool {
public:
    /// The words that run a script.
    static QStringList words(const char* script) { return {"/bin/sh", "-c", script}; }

    const TemporaryDirectory& directory() const { return m_directory; }
    QString path() const { return m_directory.path(); }
    std::string pathOf(const char* name) const { return m_directory.bytes() + "/" + name; }

    void write(const char* name, std::string_view contents) const {
        std::ofstream(pathOf(name), std::ios::binary) << contents;
    }
    bool has(const char* name) const { return std::filesystem::exists(pathOf(name)); }
    std::string read(const char* name) const {
        std::ifstream file(pathOf(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    /// Whether the process whose number the tool has written to a file still runs.
    bool isRunning(const char* name) const {
        std::string number = read(name);
        number.erase(number.find_last_not_of('\n') + 1);
        std::ifstream status("/proc/" + number + "/stat");
        std::string line;
        std::getline(status, line);
        return !number.empty() && !line.empty() && line.find(") Z ") == std::string::npos;
    }

private:
    TemporaryDirectory m_directory;
};
