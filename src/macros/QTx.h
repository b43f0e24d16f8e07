#pragma once

#include <QString>

/// Services of the host: where the program lies, where the user's data lie.
namespace QTx {

/// The application directory becomes the directory of `argv0`, resolved on the disk, without a search along
/// PATH; the root directory lies `levels` above it. Both are empty if there is no such directory.
void setApplicationPath(const QString& argv0, int levels);
const QString& applicationDirectory();
const QString& rootDirectory();

QString userDocumentsDirectory();
/// The user's directory for an application's data: `name` in lower case, blanks as "_". Not created here.
QString userLocalAppDataDirectory(const QString& name);

/// Makes a directory with its missing parents. True if it is there afterwards; false for the root.
bool makeDir(const QString& path);

/// Copies a file with its times and permissions, first making the directory of `to` if told so. If `to` is a
/// directory, the copy goes into it under the file's own name. False if any of that fails, and then the
/// destination is as it was.
bool copyFile(const QString& from, const QString& to, bool makeDirectories);
/// Sets or clears the owner's permission to write, and no other.
bool setWriteable(const QString& path, bool writable);
/// False also if there was no such file.
bool removeFile(const QString& path);

} // namespace QTx
