#pragma once

#include <QStringList>

/// The files that an object file was made from: its attribute "dependencies", split at ";", without empty
/// entries. Empty if the object does not say. Reads no more than it needs. Throws HException if the file
/// can't be read or is no object file.
QStringList objectFileDependencies(const QString& path);
