#pragma once

#include <QString>

/// Names of the files that stand beside an output.
namespace OutputNames {

/// The file name of a path without its last extension.
inline QString completeBaseName(const QString& path) {
    const QString name = path.mid(path.lastIndexOf(u'/') + 1);
    const qsizetype dot = name.lastIndexOf(u'.');
    return dot < 0 ? name : name.left(dot);
}

/// The directory of a path as written, "." for a bare name.
inline QString directoryOf(const QString& path) {
    const qsizetype slash = path.lastIndexOf(u'/');
    return slash < 0 ? QString(".") : path.left(slash);
}

/// The path without the extension, for others to be put behind it.
inline QString stem(const QString& path) { return directoryOf(path) + "/" + completeBaseName(path); }

} // namespace OutputNames
