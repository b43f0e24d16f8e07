#include "foundation/Descriptor.h"
#include "foundation/FileAccess.h"
#include "foundation/ReadAhead.h"
#include "foundation/Text.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace {

/// What is larger is not worth being fetched ahead, in memory that may never be asked for.
constexpr off_t mostFetched = 1 << 20;

/// What has no size of its own is read up to this many bytes: some devices never end.
constexpr size_t mostUnsized = size_t{1} << 28;

qint64 nanoseconds(const timespec& time) { return qint64{time.tv_sec} * 1'000'000'000 + time.tv_nsec; }

FileBytes failure(FileBytes::Result result, int error) {
    FileBytes bytes;
    bytes.result = result;
    bytes.error = error;
    return bytes;
}

/// The temporary name lies beside the file, so that the rename stays within one file system.
QByteArray temporaryNameFor(const QByteArray& target) { return target + ".XXXXXX"; }

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

/// The permissions that a new file gets where an old one stood, or those of any new file.
mode_t modeFor(const QByteArray& target) {
    struct stat old {};
    if (::stat(target.constData(), &old) == 0)
        return old.st_mode & 07777;
    return 0666 & ~processMask();
}

/// The file to which a name leads, through links; the name itself if there is none yet.
QByteArray behindLinks(const QString& path) {
    const QString resolved = resolvedPath(path);
    return toBytes(resolved.isNull() ? path : resolved);
}

/// `fill` writes a new file, by its descriptor, that then stands in the place of `target`. Whatever fails,
/// the old file is whole and nothing else is left.
template<class Fill>
int putInPlace(const QByteArray& target, mode_t mode, Fill fill) {
    QByteArray temporary = temporaryNameFor(target);
    Descriptor file(::mkostemp(temporary.data(), O_CLOEXEC));
    if (!file.isOpen())
        return errno;
    int error = fill(file.number());
    if (error == 0 && ::fchmod(file.number(), mode) != 0)
        error = errno;
    if (error == 0 && ::fsync(file.number()) != 0)
        error = errno;
    if (const int closed = file.close(); error == 0)
        error = closed;
    if (error == 0 && ::rename(temporary.constData(), target.constData()) != 0)
        error = errno;
    if (error != 0)
        ::unlink(temporary.constData());
    return error;
}

class HostFiles : public FileAccess {
public:
    FileBytes read(const QString& path, size_t most) override;
    FileStatus status(const QString& path) override;
    QList<QString> list(const QString& directory) override;
    int replace(const QString& path, std::string_view contents) override;
    int replaceUnsynced(const QString& path, std::string_view contents) override;
    int remove(const QString& path) override;
    int copy(const QString& from, const QString& to) override;
    int setWritable(const QString& path, bool writable) override;
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
    m_ahead.forget();
    return ::unlink(toBytes(path).constData()) == 0 ? 0 : errno;
}

int HostFiles::replace(const QString& path, std::string_view contents) {
    m_ahead.forget();
    const QByteArray target = behindLinks(path);
    // What is written again and again without a change, such as settings, need not wait for the disk.
    if (holds(path, contents) && ::utimensat(AT_FDCWD, target.constData(), nullptr, 0) == 0)
        return 0;
    return putInPlace(target, modeFor(target), [&](int file) { return writeAll(file, contents); });
}

// Few calls of the system: there may be thousands of such files.
int HostFiles::replaceUnsynced(const QString& path, std::string_view contents) {
    m_ahead.forget();
    QByteArray target = toBytes(path);
    struct stat old {};
    const bool isThere = ::lstat(target.constData(), &old) == 0;
    if (isThere && S_ISLNK(old.st_mode)) {
        target = behindLinks(path);
        if (::stat(target.constData(), &old) != 0)
            old.st_mode = 0;
    }
    const QByteArray temporary = target + '.' + QByteArray::number(::getpid()) + "~";
    Descriptor file(::open(temporary.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
    if (!file.isOpen())
        return errno;
    int error = writeAll(file.number(), contents);
    if (error == 0 && isThere && old.st_mode != 0 && ::fchmod(file.number(), old.st_mode & 07777) != 0)
        error = errno;
    if (const int closed = file.close(); error == 0)
        error = closed;
    if (error == 0 && ::rename(temporary.constData(), target.constData()) != 0)
        error = errno;
    if (error != 0)
        ::unlink(temporary.constData());
    return error;
}

// The source may be a pipe that nobody writes to, which must not stop us.
int HostFiles::copy(const QString& from, const QString& to) {
    m_ahead.forget();
    const Descriptor source(::open(toBytes(from).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat info {};
    if (!source.isOpen() || ::fstat(source.number(), &info) != 0)
        return errno;
    const QByteArray target = behindLinks(to);
    if (target == behindLinks(from))
        return EINVAL;
    if (::access(target.constData(), W_OK) != 0 && errno != ENOENT)
        return errno;
    return putInPlace(target, info.st_mode & 07777 & ~processMask(), [&](int file) {
        const timespec times[] = {info.st_atim, info.st_mtim};
        const int error = copyAll(source.number(), file);
        return error != 0 || ::futimens(file, times) == 0 ? error : errno;
    });
}

int HostFiles::setWritable(const QString& path, bool writable) {
    const Descriptor file(::open(toBytes(path).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat info {};
    if (!file.isOpen() || ::fstat(file.number(), &info) != 0)
        return errno;
    const mode_t others = info.st_mode & 07777 & ~mode_t{S_IWUSR};
    return ::fchmod(file.number(), writable ? others | S_IWUSR : others) == 0 ? 0 : errno;
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
