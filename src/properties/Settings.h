#pragma once

#include "macros/Path.h"

#include <QMap>

/// A small persistent map from key to text, kept in one file. Changes of another process to that file are
/// merged when `sync` finds them; the last writer of a key wins.
class Settings {
public:
    struct Setting {
        enum State { Clean, Changed };
        QString value;
        State state = Clean;
    };
    using Map = QMap<QString, Setting>;

    Settings() = default;
    /// Writes the file, whether something has changed or not.
    virtual ~Settings();
    Settings(const Settings&) = delete;
    Settings& operator=(const Settings&) = delete;

    /// Takes the entries of this file, if it can be read.
    void setPath(const Path& path);
    /// The value, or `defaultValue` if there is none. `ok`, if given, becomes true.
    QString readEntry(const QString& key, const QString& defaultValue, bool* ok = nullptr) const;
    void writeEntry(const QString& key, const QString& value);
    /// Brings entries and file together. Always true: what can't be written waits for the next time.
    bool sync();
    /// Whether an entry has changed since the file was last read or written.
    bool dirty() const { return m_dirty; }

    /// Replaces the entries of `map` by those of a file. False, with `map` as it was, if it can't be read.
    static bool load(const Path& path, Map& map);
    /// Writes a file whole, or leaves it as it is; makes its directory. False if that failed.
    static bool save(const Path& path, const Map& map);
    /// Sets each changed entry of `source` in `target`, as clean.
    static void mergeChanges(Map& target, const Map& source);

private:
    void saveEntries();
    qint64 timeOnDisk() const;

    Map m_entries;
    Path m_path;
    qint64 m_fileTime = 0; ///< of the file when it was last read or written, in nanoseconds; 0 for no file
    bool m_dirty = false;
};
