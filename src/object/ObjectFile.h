#pragma once

#include "object/DependencyList.h"

#include <QString>

/// The files that an object file was made from: its attribute "dependencies". Empty if the object does not
/// say. Reads no more than it needs. Throws HException if the file can't be read or is no object file.
DependencyList objectFileDependencies(const QString& path);
