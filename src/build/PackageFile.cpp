#include "build/PackageFile.h"

#include "build/Archive2.h"
#include "build/Words.h"
#include "foundation/Text.h"

#include <QtEndian>
#include <algorithm>
#include <cerrno>

namespace {

constexpr std::string_view compressedFileHeader("\x7A\xF4\x31\xB2\x01\x00\x00\x00", 8);

/// No zlib stream holds more than this many times its own bytes.
constexpr quint64 mostRatio = 1032;

/// A modification time as a package holds it: whole seconds.
quint32 packageTime(const FileStatus& status) {
    return static_cast<quint32>(std::clamp<qint64>(status.modified / 1'000'000'000, 0, UINT32_MAX));
}

/// The library warns of damaged data in words of its own, which change from release to release.
class WithoutWarnings {
public:
    WithoutWarnings() = default;
    ~WithoutWarnings() { qInstallMessageHandler(m_former); }
    WithoutWarnings(const WithoutWarnings&) = delete;
    WithoutWarnings& operator=(const WithoutWarnings&) = delete;

private:
    static void drop(QtMsgType, const QMessageLogContext&, const QString&) {}
    QtMessageHandler m_former = qInstallMessageHandler(drop);
};

bool isSame(const FileStatus& a, const FileStatus& b) {
    return a.kind == b.kind && a.size == b.size && a.modified == b.modified && a.changed == b.changed;
}

} // namespace

QTx::Decompressed QTx::decompress(std::string_view file, QByteArray& contents) {
    contents.clear();
    if (!file.starts_with(compressedFileHeader))
        return Decompressed::NotCompressed;
    const std::string_view stream = file.substr(compressedFileHeader.size());
    if (stream.size() <= 4)
        return Decompressed::NotCompressed;
    const quint64 declared = qFromBigEndian<quint32>(stream.data());
    if (declared > mostRatio * stream.size())
        return Decompressed::NotCompressed;
    if (declared > Archive2::mostBytes || stream.size() > Archive2::mostBytes)
        return Decompressed::Refused;
    const WithoutWarnings quiet;
    contents =
        qUncompress(reinterpret_cast<const uchar*>(stream.data()), static_cast<qsizetype>(stream.size()));
    return contents.isEmpty() ? Decompressed::NotCompressed : Decompressed::Ok;
}

QTx::Decompressed QTx::decompressFile(const QString& from, QByteArray& contents) {
    const FileBytes file = files().read(from);
    if (file)
        return decompress(file.view(), contents);
    contents.clear();
    return file.error == ENOENT ? Decompressed::NotCompressed : Decompressed::Refused;
}

bool QTx::compressFile(const QByteArray& contents, const QString& to) {
    const QByteArray stream = qCompress(contents);
    if (stream.isEmpty())
        return false;
    const QByteArray header(compressedFileHeader.data(), compressedFileHeader.size());
    return files().replace(to, viewOf(header + stream)) == 0;
}

/// One call of addToRemoveFromArchive.
struct PackageUpdater::Update {
    QString path;
    QString input;
    QByteArray name;
    QString title; ///< what messages call the member
    PackageListener* listener;

    void message(const QString& text) const {
        if (listener)
            listener->message(text);
    }
    bool carryOut() const;
};

bool PackageUpdater::Update::carryOut() const {
    QByteArray oldImage;
    const QTx::Decompressed result = QTx::decompressFile(path, oldImage);
    Archive2 old;
    old.open(viewOf(oldImage), path);
    Archive2 updated;
    for (const ArchiveChunk2& chunk : old.members()) {
        if (chunk.name != name)
            updated.addMember(chunk.source, chunk.contents, chunk.name, chunk.offset, chunk.size, chunk.flag,
                              chunk.time);
    }
    FileBytes contents;
    if (!input.isEmpty()) {
        const FileStatus status = files().status(input);
        if (status.kind == FileStatus::File)
            contents = files().read(input, Archive2::mostBytes);
        if (!contents || static_cast<quint64>(status.size) > Archive2::mostBytes)
            return false;
        updated.addMember(input, contents.view(), name, 0, static_cast<quint32>(contents.size), 1,
                          packageTime(status));
        message("adding " + input + " to " + title + ".");
    } else {
        message("removing " + title + ".");
    }
    QByteArray image;
    return result != QTx::Decompressed::Refused && updated.write(path, image) == Archive2::Ok &&
           QTx::compressFile(image, path);
}

/// 0 if there is no such member, or its time is unknown.
quint32 PackageUpdater::memberTime(const QString& path, const QByteArray& name) {
    const FileStatus status = files().status(path);
    if (path != m_path || !isSame(status, m_status)) {
        QByteArray image;
        QTx::decompressFile(path, image);
        Archive2 archive;
        archive.open(viewOf(image), path);
        m_path = path;
        m_status = status;
        m_times.clear();
        for (const ArchiveChunk2& chunk : archive.members()) {
            if (!m_times.contains(chunk.name))
                m_times.insert(chunk.name, chunk.time);
        }
    }
    return m_times.value(name);
}

bool PackageUpdater::isUpToDate(const Update& update, bool quiet) {
    const quint32 time = memberTime(update.path, update.name);
    const bool isNewer = packageTime(files().status(update.input)) > time;
    if (time != 0 && !isNewer) {
        if (!quiet && update.listener)
            update.listener->success("'" + update.title + "' is up to date.");
        return true;
    }
    if (!quiet && time != 0)
        update.message(update.input + " is newer than " + update.title + ".");
    else if (!quiet)
        update.message(update.title + " does not exist.");
    return false;
}

bool PackageUpdater::addToRemoveFromArchive(const QString& directory, const QString& package,
                                            const QString& member, const QString& input,
                                            PackageListener* listener, bool quiet, bool replace) {
    const Update update{getAbsPath(directory, package), input, Archive2::storedName(toBytes(member)),
                        package + "(" + member + ")", listener};
    if (!replace && isUpToDate(update, quiet))
        return true;
    m_path = QString();
    return update.carryOut();
}
