#pragma once

#include <QList>
#include <QString>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string_view>

/// The whole contents of a file, or why there are none.
struct FileBytes {
    enum Result { Ok, CannotOpen, CannotRead };
    struct Free {
        void operator()(char* memory) const { std::free(memory); }
    };

    Result result = CannotOpen;
    int error = 0; ///< the system's error number when `result` is not Ok
    std::unique_ptr<char, Free>
        data; ///< from malloc, `size` bytes and a zero byte behind them; null unless Ok
    size_t size = 0;

    explicit operator bool() const { return result == Ok; }
    std::string_view view() const { return {data.get(), size}; }
};

/// What the file system says of a name, links followed, in one look.
struct FileStatus {
    enum Kind { Missing, File, Directory, Other };

    Kind kind = Missing;
    qint64 size = 0;     ///< bytes
    qint64 modified = 0; ///< all times: nanoseconds since the epoch
    qint64 accessed = 0;
    qint64 changed = 0;

    bool exists() const { return kind != Missing; }
};

/// The half of the file system that readers of formats need.
class FileReader {
public:
    virtual ~FileReader() = default;
    /// The contents of a file, at most the first `most` bytes of them.
    virtual FileBytes read(const QString& path, size_t most = SIZE_MAX) = 0;
};

/// The one door to files. Names are text, a byte a character; relative ones count from the current directory.
/// Operations that change something return 0 or the system's error number.
class FileAccess : public FileReader {
public:
    virtual FileStatus status(const QString& path) = 0;
    /// The names in a directory, without "." and "..", in no order; empty if it can't be read.
    virtual QList<QString> list(const QString& directory) = 0;
    /// Puts `contents` in the place of the file, or makes it: a crash or a full disk leaves the old file or
    /// the new one, whole. The permissions of an old file stay, and a link to it stays a link. A file that
    /// holds just these contents already only gets a new time.
    virtual int replace(const QString& path, std::string_view contents) = 0;
    /// The same for what can be made again at any time, such as pages of documentation: it is not waited for
    /// until the disk has them, so that after a loss of power a file may be missing or empty.
    virtual int replaceUnsynced(const QString& path, std::string_view contents) {
        return replace(path, contents);
    }
    /// Writes over the beginning of the file, or makes it. What stood behind that stays.
    virtual int writeOver(const QString& path, std::string_view contents) { return replace(path, contents); }
    virtual int remove(const QString& path) = 0;
    /// Copies a file's contents, times and permissions (less the process's umask) to `to`, in whole or not at
    /// all. A file already there is replaced, read-only or not; a link stays a link. EINVAL if it is `from`.
    virtual int copy(const QString& from, const QString& to) = 0;
    /// Sets or clears the owner's permission to write; the file must be readable.
    virtual int setWritable(const QString& path, bool writable) = 0;
    /// Gives the file a time of modification before that of any other. A file with further names is removed
    /// instead, which leaves them as they are; behind a link nothing is changed.
    virtual int makeOldest(const QString& path) = 0;
    /// Makes one directory; its parent must be there.
    virtual int makeDirectory(const QString& path) = 0;

    /// Tells which files will soon be looked at, counted from `directory` and in this order, so that they can
    /// be fetched ahead, contents and all. What is said of them then is as it was at some moment from now on.
    virtual void expect(const QString& directory, const QList<QString>& names);
    /// Something else may have changed files: nothing that was fetched ahead counts any more.
    virtual void forget() {}
};

/// The files of this process: those of the host, unless a test has put others in their place.
FileAccess& files();

/// Puts other files in the place of the host's for the length of a scope.
class FilesInPlace {
public:
    explicit FilesInPlace(FileAccess* files);
    ~FilesInPlace();
    FilesInPlace(const FilesInPlace&) = delete;
    FilesInPlace& operator=(const FilesInPlace&) = delete;

private:
    FileAccess* m_former;
};

enum class AccessMode { Read, Write };
/// Whether this process may read or write the file.
bool isAccessible(const QString& path, AccessMode mode);
/// The absolute path of the current directory; empty if it is gone.
QString currentDirectory();
/// The path with links, "." and ".." resolved on the disk; null if there is no such file.
QString resolvedPath(const QString& path);
/// The value of an environment variable; null if it is not set.
QString environmentVariable(const char* name);
/// The system's words for an error number.
QString systemError(int error);
