#pragma once

#include <QByteArray>
#include <QSet>
#include <QString>

struct ArchiveChunk2;

/// Writes the members of one package below a directory. Whoever made the package chose their names, so
/// nothing that they say leads out of that directory: not by itself, and not over a link that lies in it.
class PackageExtraction {
public:
    /// Makes the directory, with its parents. The members together may have at most `mostBytes`, the size of
    /// the container: none that is put together properly has more. Throws HException without a directory.
    PackageExtraction(const QString& directory, quint64 mostBytes);

    /// Writes a member with the directories of its name, over a file of that name. Null, or why not.
    QString extract(const ArchiveChunk2& member);

    /// What is wrong with a name, that of a file below any directory; null if nothing is.
    static QString objection(const QByteArray& name);

private:
    QString write(const ArchiveChunk2& member);

    QString m_root; ///< absolute and without links; empty for "/"
    quint64 m_bytesLeft;
    QSet<QByteArray> m_names;
};
