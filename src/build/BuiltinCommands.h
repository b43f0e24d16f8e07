#pragma once

#include <QString>
#include <QStringList>

/// The commands that are carried out without a process, so that a project may copy and remove files on any
/// machine. Each takes the directory against which its relative paths count. Nothing here throws or ends the
/// process; what fails leaves a text for the user in `errorText`, which is not touched otherwise.
namespace BuiltinCommands {

/// Carries `command` out if its first word is a keyword and the rest are its arguments; words behind those
/// have no meaning. False if it is to be run as a process; then "xmldup" and "hdrgen" have become the full
/// path of that program.
bool builtinCommand(const QString& directory, QStringList& command, QString& errorText);

/// The command as a line for a shell, for those who write a build out instead of running it. With "xmldup"
/// and "hdrgen" `out` is null. False, with `out` as it was, for what has no such line.
bool getExportableBuiltinCommand(const QString& directory, const QStringList& command, QString& out);

/// Replaces `destination`, read-only or not, or puts the file into it if that is a directory. The copy has
/// the time of its source. A file is not copied onto itself.
void cp(const QString& directory, const QString& source, const QString& destination, QString& errorText);
/// Sets or clears the owner's permission to write.
void chmod(const QString& directory, bool writable, const QString& file, QString& errorText);
/// A missing file is a failure too.
void rm(const QString& directory, const QString& file, QString& errorText);

} // namespace BuiltinCommands
