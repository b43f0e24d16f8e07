#include "query/PackageExtraction.h"

#include "build/Archive2.h"
#include "foundation/FileAccess.h"
#include "foundation/HException.h"
#include "foundation/Text.h"
#include "macros/Path.h"

#include <algorithm>
#include <cctype>
#include <cerrno>

namespace {

bool isControl(char character) { return static_cast<unsigned char>(character) < 0x20 || character == 0x7F; }

bool hasDrive(const QByteArray& name) {
    return name.size() > 1 && name[1] == ':' && std::isalpha(static_cast<unsigned char>(name[0]));
}

/// Null if the path leads through no link.
QString linkOn(const QString& path) {
    const QString resolved = resolvedPath(path);
    return resolved == path ? QString() : "\"" + path + "\" is a link or leads to nothing";
}

} // namespace

PackageExtraction::PackageExtraction(const QString& directory, quint64 mostBytes) : m_bytesLeft(mostBytes) {
    Path::ensureDirExists(directory + "/file");
    m_root = resolvedPath(directory);
    if (files().status(m_root).kind != FileStatus::Directory)
        throw HException("can't make the directory " + toBytes(directory).toStdString());
    if (m_root == "/")
        m_root = "";
}

QString PackageExtraction::objection(const QByteArray& name) {
    if (name.isEmpty())
        return "there is no name";
    if (name.startsWith('/'))
        return "the name is absolute";
    if (hasDrive(name))
        return "the name begins with a drive";
    if (name.contains('\\'))
        return "there is a \"\\\" in the name";
    if (std::any_of(name.begin(), name.end(), isControl))
        return "there is a control character in the name";
    for (const QByteArray& part : name.split('/')) {
        if (part.isEmpty())
            return "a part of the name is empty";
        if (part == "." || part == "..")
            return "a part of the name is \"" + toText(viewOf(part)) + "\"";
    }
    return QString();
}

QString PackageExtraction::extract(const ArchiveChunk2& member) {
    if (const QString wrong = objection(member.name); !wrong.isNull())
        return wrong;
    if (!member.data().data())
        return "its data are not in the package";
    if (m_names.contains(member.name))
        return "it is there twice, and the first counts";
    if (member.size > m_bytesLeft)
        return "the members have more data than there are in the package";
    m_bytesLeft -= member.size;
    m_names.insert(member.name);
    return write(member);
}

QString PackageExtraction::write(const ArchiveChunk2& member) {
    QString path = m_root;
    const QStringList parts = toText(viewOf(member.name)).split(u'/');
    for (const QString& directory : parts.first(parts.size() - 1)) {
        path += "/" + directory;
        const int error = files().makeDirectory(path);
        if (error != 0 && error != EEXIST)
            return systemError(error);
        if (const QString link = linkOn(path); !link.isNull())
            return link;
    }
    path += "/" + parts.last();
    const FileStatus before = files().status(path);
    if (before.exists()) {
        if (const QString link = linkOn(path); !link.isNull())
            return link;
        if (before.kind != FileStatus::File)
            return "\"" + path + "\" is there and is no file";
    }
    const int error = files().replace(path, member.data());
    return error == 0 ? QString() : systemError(error);
}
