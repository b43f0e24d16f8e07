#pragma once

#include "foundation/FileAccess.h"

#include <QDateTime>
#include <QSharedDataPointer>
#include <QString>
#include <optional>

/// A path as text, normalised, with what the file system says of it looked up at most once. A value: copies
/// share their data until one changes. There is one kind of separator, and comparison is exact.
class Path {
public:
    Path() : Path(QString("")) {}
    Path(const QString& text) : m_data(new Data(normalised(text))) {}
    Path(const char* text) : Path(QString::fromLatin1(text)) {}

    /// Replaces the text, and forgets what was known of the old file.
    void setPath(const QString& text);
    /// The path of this text with `text` behind it; no separator is added.
    Path operator+(const QString& text) const { return Path(m_data->text + text); }
    Path& operator+=(const QString& text);

    bool operator==(const Path& other) const {
        return m_data == other.m_data || m_data->text == other.m_data->text;
    }
    bool operator<(const Path& other) const { return m_data->text < other.m_data->text; }

    /// The operating system's form and the canonical form are one text here.
    QByteArray osPath() const;
    QString osPathQString() const { return m_data->text; }
    QByteArray canonicalPath() const { return osPath(); }
    QString canonicalPathQString() const { return m_data->text; }
    bool isEmpty() const { return m_data->text.isEmpty(); }

    /// Behind the last "/".
    QString fileName() const;
    /// The file name up to its first ".".
    QString baseName() const;
    /// Behind the last "." of the file name, or with `complete` behind the first; empty without a ".".
    QString extension(bool complete) const;
    QString filePath() const { return m_data->text; }
    /// Before the last "/"; "." if there is none, and "/" for what lies in the root. With `absolute`, of the
    /// absolute path.
    QString dirPath(bool absolute) const;
    Path dir(bool absolute) const { return Path(dirPath(absolute)); }

    bool exists() const { return status().exists(); }
    bool readable() const { return isAccessible(m_data->text, AccessMode::Read); }
    bool writable() const { return isAccessible(m_data->text, AccessMode::Write); }
    /// Bytes; 0 if there is no such file.
    qint64 size() const { return status().size; }
    /// The times are invalid if there is no such file. `created` is when its status last changed: the host
    /// keeps no other.
    QDateTime created() const { return timeOf(&FileStatus::changed); }
    QDateTime lastModified() const { return timeOf(&FileStatus::modified); }
    QDateTime lastRead() const { return timeOf(&FileStatus::accessed); }

    static bool isPathDelimiter(QChar c) { return c == u'/'; }
    static QString toOsPath(const QString& text) { return text; }
    static QString toCanonicalPath(const QString& text) { return text; }
    static bool equal(const QString& a, const QString& b) { return a == b; }
    static bool isAbsolute(const QString& text) { return text.startsWith(u'/'); }
    /// The text, counted from the current directory unless it is absolute; not normalised.
    static QString absolute(const QString& text);

    /// Normalises in place, by the text alone: "a/./b" and "a//b" become "a/b", "/a/b/../c" becomes "/a/c". A
    /// ".." that finds no "/" three characters before it stays.
    static void removeRelativePaths(QString& text);
    static QString normalised(QString text);

    /// Makes the directory that holds the file, with its parents. A failure shows when the file is written.
    static void ensureDirExists(const QString& filePath);

    /// The way from one directory to another, without a "/" at its end; empty if they are one. False, with
    /// `out` empty, if they have nothing in common but the root.
    static bool relativeDirPath(const QString& fromDir, const QString& toDir, QString& out);
    /// The way from a directory to a file.
    static bool relativeFilePath(const QString& fromDir, const QString& file, QString& out);
    /// The same; the absolute path of the file if there is no way.
    static QString relativeFilePath(const QString& fromDir, const QString& file);

private:
    struct Data : QSharedData {
        explicit Data(QString normal) : text(std::move(normal)) {}
        QString text;
        mutable std::optional<FileStatus> status;
    };

    const FileStatus& status() const;
    QDateTime timeOf(qint64 FileStatus::*time) const;

    QSharedDataPointer<Data> m_data;
};
