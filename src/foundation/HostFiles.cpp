#include "foundation/Descriptor.h"
#include "foundation/FileAccess.h"
#include "foundation/ReadAhead.h"
#include "foundation/Text.h"

#include <QScopeGuard>
#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <optional>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace {

/// What is larger is not worth being fetched ahead, in memory that may never be asked for.
constexpr off_t mostFetched = 1 << 18;

/// What has no size of its own is read up to this many bytes: some devices never end.
constexpr size_t mostUnsized = size_t{1} << 28;

qint64 nanoseconds(const timespec& time) { return qint64{time.tv_sec} * 1'000'000'000 + time.tv_nsec; }

FileBytes failure(FileBytes::Result result, int error) {
    FileBytes bytes;
    bytes.result = result;
    bytes.error = error;
    return bytes;
}

int writeAll(int descriptor, std::string_view contents) {
    while (!contents.empty()) {
        const ssize_t written = ::write(descriptor, contents.data(), contents.size());
        if (written < 0 && errno != EINTR)
            return errno;
        if (written > 0)
            contents.remove_prefix(static_cast<size_t>(written));
    }
    return 0;
}

int copyAll(int from, int to) {
    const auto block = std::make_unique<char[]>(131'072);
    for (;;) {
        const ssize_t got = ::read(from, block.get(), 131'072);
        if (got == 0)
            return 0;
        if (got < 0 && errno != EINTR)
            return errno;
        const std::string_view bytes(block.get(), got > 0 ? static_cast<size_t>(got) : 0);
        if (const int error = writeAll(to, bytes); error != 0)
            return error;
    }
}

mode_t processMask() {
    const mode_t mask = ::umask(0);
    ::umask(mask);
    return mask;
}

/// A name in the directory of `target`, so that the rename stays within one file system, and no longer than
/// names may be.
QByteArray temporaryName(const QByteArray& target, int number) {
    const QByteArray end = ".ostmake-" + QByteArray::number(number) + "~";
    return target.left(target.lastIndexOf('/') + 1 + NAME_MAX - end.size()) + end;
}

/// Locks the file for as long as the descriptor is open, without waiting. False if another process has it, or
/// if `name` no longer leads to it.
bool claim(const Descriptor& file, const QByteArray& name) {
    struct stat own {};
    struct stat named {};
    return (::flock(file.number(), LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK) &&
           ::fstat(file.number(), &own) == 0 && ::lstat(name.constData(), &named) == 0 &&
           own.st_dev == named.st_dev && own.st_ino == named.st_ino;
}

/// Removes what a process has left that was killed in the midst of writing. False if it is still at it.
bool removeLeft(const QByteArray& name) {
    const Descriptor file(::open(name.constData(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    return file.isOpen() && ::flock(file.number(), LOCK_EX | LOCK_NB) == 0 && claim(file, name) &&
           ::unlink(name.constData()) == 0;
}

/// Opens a new file that is to stand in the place of `target`, and gives its name. Several processes may
/// write the same file: each has the lock on its own, which the system drops with the process. Closed, with
/// errno set, if that fails.
Descriptor openTemporary(const QByteArray& target, QByteArray& name) {
    constexpr int mostNames = 100;
    constexpr int flags = O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC;
    for (int number = 1; number <= mostNames; ++number) {
        name = temporaryName(target, number);
        Descriptor file(::open(name.constData(), flags, 0666));
        if (!file.isOpen() && errno == EEXIST) {
            if (!removeLeft(name))
                continue;
            file = Descriptor(::open(name.constData(), flags, 0666));
        }
        if (file.isOpen() ? claim(file, name) : errno != EEXIST)
            return file;
    }
    errno = EEXIST;
    return Descriptor();
}

/// What the system keeps back of what was written, to find that there is no room, it tells at a close.
int flush(int file) {
    const int second = ::dup(file);
    return second >= 0 && ::close(second) == 0 ? 0 : errno;
}

enum class Until { Written, OnDisk };

/// `fill` writes a new file, by its descriptor, that then stands in the place of `target`, with `mode` or
/// else with the permissions of any new file. Whatever fails, the old file is whole and nothing else is left.
template<class Fill>
int putInPlace(const QByteArray& target, std::optional<mode_t> mode, Until until, Fill fill) {
    QByteArray temporary;
    const Descriptor file = openTemporary(target, temporary);
    if (!file.isOpen())
        return errno;
    int error = fill(file.number());
    if (error == 0 && mode && ::fchmod(file.number(), *mode) != 0)
        error = errno;
    if (error == 0 && until == Until::OnDisk && ::fsync(file.number()) != 0)
        error = errno;
    if (error == 0)
        error = flush(file.number());
    if (error == 0 && ::rename(temporary.constData(), target.constData()) != 0)
        error = errno;
    if (error != 0)
        ::unlink(temporary.constData()); // it is ours as long as it is open
    return error;
}

/// Makes the file, which is not there yet, in one go: it has no name before it is whole. EEXIST if it is
/// there by then, or another error if the file system can't do that.
int makeWhole(const QByteArray& target, std::string_view contents) {
    const QByteArray directory = target.left(target.lastIndexOf('/') + 1) + '.';
    const Descriptor file(::open(directory.constData(), O_WRONLY | O_TMPFILE | O_CLOEXEC, 0666));
    if (!file.isOpen())
        return errno;
    int error = writeAll(file.number(), contents);
    if (error == 0)
        error = flush(file.number());
    const QByteArray itself = "/proc/self/fd/" + QByteArray::number(file.number());
    if (error == 0 &&
        ::linkat(AT_FDCWD, itself.constData(), AT_FDCWD, target.constData(), AT_SYMLINK_FOLLOW) != 0)
        error = errno;
    return error;
}

/// The file to which a name leads, through links; the name itself if there is none yet.
QByteArray behindLinks(const QString& path) {
    const QString resolved = resolvedPath(path);
    return toBytes(resolved.isNull() ? path : resolved);
}

// Few calls of the system: there may be thousands of such files.
int putContents(const QString& path, std::string_view contents, Until until) {
    QByteArray target = toBytes(path);
    std::optional<mode_t> mode;
    struct stat old {};
    bool isThere = ::lstat(target.constData(), &old) == 0;
    if (isThere && S_ISLNK(old.st_mode)) {
        target = behindLinks(path);
        isThere = ::stat(target.constData(), &old) == 0;
    }
    if (isThere && !S_ISREG(old.st_mode) && !S_ISDIR(old.st_mode)) {
        // A device or a pipe takes what it gets, and stays.
        const Descriptor file(::open(target.constData(), O_WRONLY | O_CLOEXEC));
        return file.isOpen() ? writeAll(file.number(), contents) : errno;
    }
    if (isThere)
        mode = old.st_mode & 07777;
    else if (until == Until::Written && makeWhole(target, contents) == 0)
        return 0;
    return putInPlace(target, mode, until, [&](int file) { return writeAll(file, contents); });
}

class HostFiles : public FileAccess {
public:
    FileBytes read(const QString& path, size_t most) override;
    FileStatus status(const QString& path) override;
    QList<QString> list(const QString& directory) override;
    int replace(const QString& path, std::string_view contents) override;
    int replaceUnsynced(const QString& path, std::string_view contents) override;
    int writeOver(const QString& path, std::string_view contents) override;
    int remove(const QString& path) override;
    int copy(const QString& from, const QString& to) override;
    int setWritable(const QString& path, bool writable) override;
    int makeOldest(const QString& path) override;
    int makeDirectory(const QString& path) override {
        return ::mkdir(toBytes(path).constData(), 0777) == 0 ? 0 : errno;
    }

    void expect(const QString& directory, const QList<QString>& names) override {
        m_ahead.expect(directory, names);
    }
    void forget() override { m_ahead.forget(); }

private:
    static FileBytes readAll(const Descriptor& file, const struct stat& info, size_t most);
    static FileStatus statusOf(const struct stat& info);
    static ReadAhead::Fetched fetch(const QString& path);
    /// Held by whoever changes a file: what was fetched ahead by the end of that does not count.
    auto changing() {
        return qScopeGuard([this] { m_ahead.forget(); });
    }
    /// Whether the file has just these contents.
    bool holds(const QString& path, std::string_view contents) {
        const FileStatus now = status(path);
        return now.kind == FileStatus::File && static_cast<size_t>(now.size) == contents.size() &&
               read(path, SIZE_MAX).view() == contents;
    }

    ReadAhead m_ahead{fetch};
};

FileBytes HostFiles::read(const QString& path, size_t most) {
    if (auto bytes = m_ahead.read(path); bytes && bytes->size <= most)
        return std::move(*bytes);
    const Descriptor file(::open(toBytes(path).constData(), O_RDONLY | O_CLOEXEC));
    if (!file.isOpen())
        return failure(FileBytes::CannotOpen, errno);
    struct stat info {};
    if (::fstat(file.number(), &info) != 0)
        return failure(FileBytes::CannotRead, errno);
    return readAll(file, info, most);
}

FileBytes HostFiles::readAll(const Descriptor& file, const struct stat& info, size_t most) {
    FileBytes bytes;
    size_t expected = std::min(static_cast<size_t>(info.st_size), most);
    bytes.data.reset(static_cast<char*>(std::malloc(expected + 1)));
    while (bytes.data) {
        const size_t wanted = std::min(expected + 1, most) - bytes.size;
        const ssize_t got = ::read(file.number(), bytes.data.get() + bytes.size, wanted);
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0)
            return failure(FileBytes::CannotRead, errno);
        bytes.size += static_cast<size_t>(got);
        const bool asExpected = S_ISREG(info.st_mode) && bytes.size == expected;
        if (got == 0 || asExpected || bytes.size == most) {
            bytes.data.get()[bytes.size] = '\0';
            bytes.result = FileBytes::Ok;
            return bytes;
        }
        if (bytes.size > expected) { // a pipe, or a file that grows while it is read
            if (bytes.size > mostUnsized)
                return failure(FileBytes::CannotRead, EFBIG);
            expected = std::min(2 * expected + 4096, most);
            bytes.data.reset(static_cast<char*>(std::realloc(bytes.data.release(), expected + 1)));
        }
    }
    return failure(FileBytes::CannotRead, ENOMEM);
}

ReadAhead::Fetched HostFiles::fetch(const QString& path) {
    ReadAhead::Fetched fetched;
    const Descriptor file(::open(toBytes(path).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat info {};
    if (!file.isOpen() && errno == ENOENT)
        fetched.status = FileStatus();
    if (!file.isOpen() || ::fstat(file.number(), &info) != 0)
        return fetched;
    fetched.status = statusOf(info);
    if (S_ISREG(info.st_mode) && info.st_size <= mostFetched)
        fetched.contents = readAll(file, info, SIZE_MAX);
    return fetched;
}

FileStatus HostFiles::status(const QString& path) {
    if (const auto fetched = m_ahead.status(path))
        return *fetched;
    struct stat info {};
    return ::stat(toBytes(path).constData(), &info) == 0 ? statusOf(info) : FileStatus();
}

FileStatus HostFiles::statusOf(const struct stat& info) {
    FileStatus status;
    status.kind = S_ISREG(info.st_mode)   ? FileStatus::File
                  : S_ISDIR(info.st_mode) ? FileStatus::Directory
                                          : FileStatus::Other;
    status.size = info.st_size;
    status.modified = nanoseconds(info.st_mtim);
    status.accessed = nanoseconds(info.st_atim);
    status.changed = nanoseconds(info.st_ctim);
    return status;
}

QList<QString> HostFiles::list(const QString& directory) {
    QList<QString> names;
    const std::unique_ptr<DIR, int (*)(DIR*)> handle(::opendir(toBytes(directory).constData()), &::closedir);
    if (!handle)
        return names;
    while (const dirent* entry = ::readdir(handle.get())) {
        const std::string_view name(entry->d_name);
        if (name != "." && name != "..")
            names.append(toText(name));
    }
    return names;
}

int HostFiles::remove(const QString& path) {
    const auto change = changing();
    return ::unlink(toBytes(path).constData()) == 0 ? 0 : errno;
}

int HostFiles::replace(const QString& path, std::string_view contents) {
    const auto change = changing();
    // What is written again and again without a change, such as settings, need not wait for the disk.
    if (holds(path, contents) && ::utimensat(AT_FDCWD, toBytes(path).constData(), nullptr, 0) == 0) {
        removeLeft(temporaryName(behindLinks(path), 1));
        return 0;
    }
    return putContents(path, contents, Until::OnDisk);
}

int HostFiles::replaceUnsynced(const QString& path, std::string_view contents) {
    const auto change = changing();
    return putContents(path, contents, Until::Written);
}

int HostFiles::writeOver(const QString& path, std::string_view contents) {
    const auto change = changing();
    const Descriptor file(::open(toBytes(path).constData(), O_WRONLY | O_CREAT | O_CLOEXEC, 0666));
    return file.isOpen() ? writeAll(file.number(), contents) : errno;
}

// The source may be a pipe that nobody writes to, which must not stop us.
int HostFiles::copy(const QString& from, const QString& to) {
    const auto change = changing();
    const Descriptor source(::open(toBytes(from).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat info {};
    if (!source.isOpen() || ::fstat(source.number(), &info) != 0)
        return errno;
    const QByteArray target = behindLinks(to);
    if (target == behindLinks(from))
        return EINVAL;
    const mode_t mode = info.st_mode & 07777 & ~processMask();
    return putInPlace(target, mode, Until::OnDisk, [&](int file) {
        const timespec times[] = {info.st_atim, info.st_mtim};
        const int error = copyAll(source.number(), file);
        return error != 0 || ::futimens(file, times) == 0 ? error : errno;
    });
}

int HostFiles::setWritable(const QString& path, bool writable) {
    const auto change = changing();
    const Descriptor file(::open(toBytes(path).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat info {};
    if (!file.isOpen() || ::fstat(file.number(), &info) != 0)
        return errno;
    const mode_t others = info.st_mode & 07777 & ~mode_t{S_IWUSR};
    return ::fchmod(file.number(), writable ? others | S_IWUSR : others) == 0 ? 0 : errno;
}

// The system takes the nearest time that the file system knows.
int HostFiles::makeOldest(const QString& path) {
    const auto change = changing();
    const QByteArray name = toBytes(path);
    struct stat info {};
    if (::lstat(name.constData(), &info) != 0)
        return errno;
    if (S_ISLNK(info.st_mode))
        return ELOOP;
    if (info.st_nlink > 1)
        return ::unlink(name.constData()) == 0 ? 0 : errno;
    const timespec times[] = {{0, UTIME_OMIT}, {INT32_MIN, 0}};
    return ::utimensat(AT_FDCWD, name.constData(), times, AT_SYMLINK_NOFOLLOW) == 0 ? 0 : errno;
}

HostFiles hostFiles;
FileAccess* current = &hostFiles;

} // namespace

void FileAccess::expect(const QString&, const QList<QString>&) {}

FileAccess& files() { return *current; }

FilesInPlace::FilesInPlace(FileAccess* files) : m_former(std::exchange(current, files)) {}

FilesInPlace::~FilesInPlace() { current = m_former; }

bool isAccessible(const QString& path, AccessMode mode) {
    return ::access(toBytes(path).constData(), mode == AccessMode::Read ? R_OK : W_OK) == 0;
}

QString currentDirectory() {
    char buffer[PATH_MAX];
    return ::getcwd(buffer, sizeof buffer) ? toText(buffer) : QString("");
}

QString resolvedPath(const QString& path) {
    const std::unique_ptr<char, FileBytes::Free> resolved(::realpath(toBytes(path).constData(), nullptr));
    return resolved ? toText(resolved.get()) : QString();
}

QString environmentVariable(const char* name) {
    const char* value = ::getenv(name);
    return value ? toText(value) : QString();
}

QString systemError(int error) { return toText(std::strerror(error)); }
