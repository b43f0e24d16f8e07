#pragma once

#include "foundation/FileAccess.h"

#include <QByteArray>
#include <QHash>
#include <QString>
#include <string_view>

/// A package file on the disk is a container (Archive2) wrapped in a layer of compression:
///
///     offset  size  field
///     0       8     7A F4 31 B2 01 00 00 00
///     8       4     big-endian size of the container
///     12      ...   the container as a zlib stream
///
/// An update writes the whole file anew, and puts it in the place of the old one when it is complete.
namespace QTx {

enum class Decompressed {
    Ok,
    NotCompressed, ///< there is no such file, or nothing can be had from it
    Refused        ///< there may be something in it, but it can't be read, or is beyond our bounds
};

/// The contents of a compressed file, empty unless Ok.
Decompressed decompressFile(const QString& from, QByteArray& contents);
/// The same, of the bytes of a file.
Decompressed decompress(std::string_view file, QByteArray& contents);

/// Writes a compressed file; false if that fails, and then an old one stands as it was.
bool compressFile(const QByteArray& contents, const QString& to);

} // namespace QTx

/// Hears what happens to a package.
class PackageListener {
public:
    virtual ~PackageListener() = default;
    virtual void success(const QString& text) = 0;
    virtual void message(const QString& text) = 0;
};

/// Brings packages up to date, member by member. Failures are silent; they leave the package as it was. What
/// is known of the last package is kept, so that looking for many members in turn reads it once.
class PackageUpdater {
public:
    /// Puts `input`, a file, into `package` as `member`, behind all others, or removes that member if `input`
    /// is empty. Unless `replace`, nothing is done if the member is as new as the file. A relative package
    /// counts from `directory`; texts show it as it is given. `listener` may be null, and hears of the
    /// decision only if not `quiet`. False if the package could not be brought up to date.
    bool addToRemoveFromArchive(const QString& directory, const QString& package, const QString& member,
                                const QString& input, PackageListener* listener, bool quiet, bool replace);

private:
    struct Update;

    quint32 memberTime(const QString& path, const QByteArray& name);
    bool isUpToDate(const Update& update, bool quiet);

    QString m_path;                     ///< the package that the rest is known of
    FileStatus m_status;                ///< as it was when that was read
    QHash<QByteArray, quint32> m_times; ///< the time of the first member of each name
};
