#include "macros/QTx.h"

#include "foundation/FileAccess.h"
#include "macros/Path.h"

#include <cerrno>

namespace {
QString theApplicationDirectory;
QString theRootDirectory;
} // namespace

void QTx::setApplicationPath(const QString& argv0, int levels) {
    theApplicationDirectory = resolvedPath(Path(argv0).dirPath(false));
    theRootDirectory = theApplicationDirectory;
    for (int level = 0; level < levels && !theRootDirectory.isEmpty(); ++level)
        theRootDirectory = Path(theRootDirectory).dirPath(false);
}

const QString& QTx::applicationDirectory() { return theApplicationDirectory; }

const QString& QTx::rootDirectory() { return theRootDirectory; }

QString QTx::userDocumentsDirectory() { return environmentVariable("HOME") + "/Documents"; }

QString QTx::userLocalAppDataDirectory(const QString& name) {
    QString directory = environmentVariable("HOME") + "/." + name.toLower();
    return directory.replace(u' ', u'_');
}

// From the top down, so that a hostile length ends at the first name that the system refuses.
bool QTx::makeDir(const QString& path) {
    if (path.isEmpty() || path == "/")
        return false;
    if (files().status(path).kind == FileStatus::Directory)
        return true;
    for (qsizetype slash = path.indexOf(u'/', 1); slash > 0; slash = path.indexOf(u'/', slash + 1)) {
        const int error = files().makeDirectory(path.left(slash));
        if (error != 0 && error != EEXIST)
            return false;
    }
    const int error = files().makeDirectory(path);
    return error == 0 || (error == EEXIST && files().status(path).kind == FileStatus::Directory);
}

bool QTx::copyFile(const QString& from, const QString& to, bool makeDirectories) {
    if (!files().status(from).exists())
        return false;
    if (makeDirectories)
        Path::ensureDirExists(to);
    const bool into = files().status(to).kind == FileStatus::Directory;
    return files().copy(from, into ? to + "/" + Path(from).fileName() : to) == 0;
}

bool QTx::setWriteable(const QString& path, bool writable) {
    return files().setWritable(path, writable) == 0;
}

bool QTx::removeFile(const QString& path) { return files().remove(path) == 0; }
