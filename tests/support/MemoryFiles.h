#pragma once

#include "foundation/FileAccess.h"
#include "foundation/Text.h"

#include <QMap>
#include <QSet>
#include <cerrno>
#include <cstring>

/// Files in memory with a clock turned by hand. It counts what is asked of each file.
class MemoryFiles : public FileAccess {
public:
    /// Lets a second go by.
    void tick() { advance(1'000'000'000); }
    void advance(qint64 nanoseconds) { m_now += nanoseconds; }
    qint64 now() const { return m_now; }

    /// Writes a file with the present time, directories and all.
    void write(const QString& path, std::string_view contents) {
        m_files[path] = {QByteArray(contents.data(), static_cast<qsizetype>(contents.size())), m_now, true};
        for (qsizetype slash = path.lastIndexOf('/'); slash > 0; slash = path.lastIndexOf('/', slash - 1))
            m_directories.insert(path.left(slash));
    }
    void touch(const QString& path) { m_files[path].modified = m_now; }
    bool has(const QString& path) const { return m_files.contains(path); }
    QByteArray contents(const QString& path) const { return m_files.value(path).contents; }
    bool isWritable(const QString& path) const { return m_files.value(path).writable; }
    qint64 modified(const QString& path) const { return m_files.value(path).modified; }
    /// From now on every change fails with this error number; 0 ends that.
    void failWith(int error) { m_error = error; }

    QMap<QString, int> reads;    ///< how often each name was read
    QMap<QString, int> statuses; ///< how often the status of each name was asked for

    FileBytes read(const QString& path, size_t most) override {
        ++reads[path];
        FileBytes bytes;
        const auto found = m_files.constFind(path);
        if (found == m_files.constEnd()) {
            bytes.error = ENOENT;
            return bytes;
        }
        bytes.size = std::min(static_cast<size_t>(found->contents.size()), most);
        bytes.data.reset(static_cast<char*>(std::malloc(bytes.size + 1)));
        std::memcpy(bytes.data.get(), found->contents.constData(), bytes.size);
        bytes.data.get()[bytes.size] = '\0';
        bytes.result = FileBytes::Ok;
        return bytes;
    }

    FileStatus status(const QString& path) override {
        ++statuses[path];
        FileStatus status;
        if (m_directories.contains(path) || path == "/") {
            status.kind = FileStatus::Directory;
        } else if (const auto found = m_files.constFind(path); found != m_files.constEnd()) {
            status.kind = FileStatus::File;
            status.size = found->contents.size();
            status.modified = found->modified;
        }
        return status;
    }

    QList<QString> list(const QString& directory) override {
        QList<QString> names;
        const auto addBelow = [&](const QString& path) {
            if (path.startsWith(directory + "/") && !path.mid(directory.size() + 1).contains('/'))
                names.append(path.mid(directory.size() + 1));
        };
        for (auto file = m_files.keyBegin(); file != m_files.keyEnd(); ++file)
            addBelow(*file);
        for (const QString& path : m_directories)
            addBelow(path);
        return names;
    }

    int replace(const QString& path, std::string_view contents) override {
        const QString parent = path.left(path.lastIndexOf('/'));
        if (m_error == 0 && status(parent.isEmpty() ? "/" : parent).kind != FileStatus::Directory)
            return ENOENT;
        if (m_error == 0)
            write(path, contents);
        return m_error;
    }

    int remove(const QString& path) override {
        if (m_error == 0)
            return m_files.remove(path) ? 0 : ENOENT;
        return m_error;
    }

    int copy(const QString& from, const QString& to) override {
        const auto source = m_files.constFind(from);
        if (m_error != 0 || source == m_files.constEnd())
            return m_error != 0 ? m_error : ENOENT;
        if (from == to)
            return EINVAL;
        const File copied = *source;
        const int error = replace(to, viewOf(copied.contents));
        if (error == 0)
            m_files[to] = copied;
        return error;
    }

    int setWritable(const QString& path, bool writable) override {
        if (m_error == 0 && m_files.contains(path))
            m_files[path].writable = writable;
        return m_error == 0 && !m_files.contains(path) ? ENOENT : m_error;
    }

    int makeOldest(const QString& path) override {
        if (m_error == 0 && m_files.contains(path))
            m_files[path].modified = INT64_MIN;
        return m_error == 0 && !m_files.contains(path) ? ENOENT : m_error;
    }

    int makeDirectory(const QString& path) override {
        if (m_error != 0)
            return m_error;
        if (status(path).exists())
            return EEXIST;
        const QString parent = path.left(path.lastIndexOf('/'));
        if (status(parent.isEmpty() ? "/" : parent).kind != FileStatus::Directory)
            return ENOENT;
        m_directories.insert(path);
        return 0;
    }

private:
    struct File {
        QByteArray contents;
        qint64 modified = 0;
        bool writable = true;
    };
    QMap<QString, File> m_files;
    QSet<QString> m_directories;
    qint64 m_now = 1'000'000'000'000'000'000;
    int m_error = 0;
};
