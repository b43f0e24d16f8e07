#include "properties/Settings.h"

#include "foundation/FileAccess.h"
#include "foundation/Text.h"
#include "macros/QTx.h"
#include "properties/SettingsXml.h"

Settings::~Settings() {
    if (!m_path.isEmpty())
        save(m_path, m_entries);
}

qint64 Settings::timeOnDisk() const { return files().status(m_path.filePath()).modified; }

void Settings::setPath(const Path& path) {
    m_path = path;
    const qint64 time = timeOnDisk(); // before reading: a change from now on is seen by the next sync
    if (load(path, m_entries)) {
        m_fileTime = time;
        m_dirty = false;
    }
}

QString Settings::readEntry(const QString& key, const QString& defaultValue, bool* ok) const {
    if (ok)
        *ok = true;
    const auto entry = m_entries.constFind(key);
    return entry == m_entries.cend() ? defaultValue : entry->value;
}

void Settings::writeEntry(const QString& key, const QString& value) {
    const auto entry = m_entries.constFind(key);
    if (entry != m_entries.cend() && entry->value == value)
        return;
    m_entries[key] = {value, Setting::Changed};
    m_dirty = true;
}

bool Settings::sync() {
    const qint64 time = timeOnDisk();
    if (time == m_fileTime) {
        if (m_dirty)
            saveEntries();
    } else if (!m_dirty) {
        if (load(m_path, m_entries))
            m_fileTime = time;
    } else {
        // Where the other process left no readable file, ours are the only entries.
        if (Map others; load(m_path, others)) {
            mergeChanges(others, m_entries);
            m_entries = others;
        }
        saveEntries();
    }
    return true;
}

void Settings::saveEntries() {
    if (!save(m_path, m_entries))
        return;
    m_fileTime = timeOnDisk();
    m_dirty = false;
    for (Setting& entry : m_entries)
        entry.state = Setting::Clean;
}

bool Settings::load(const Path& path, Map& map) {
    const FileBytes bytes = files().read(path.filePath(), SettingsXml::mostBytes + 1);
    SettingsXml::Entries entries;
    if (!bytes || !SettingsXml::read(bytes.view(), entries))
        return false;
    map.clear();
    for (auto entry = entries.cbegin(); entry != entries.cend(); ++entry)
        map.insert(entry.key(), {*entry, Setting::Clean});
    return true;
}

bool Settings::save(const Path& path, const Map& map) {
    SettingsXml::Entries entries;
    for (auto entry = map.cbegin(); entry != map.cend(); ++entry)
        entries.insert(entry.key(), entry->value);
    QTx::makeDir(path.dirPath(false));
    return files().replace(path.filePath(), viewOf(SettingsXml::write(entries))) == 0;
}

void Settings::mergeChanges(Map& target, const Map& source) {
    for (auto entry = source.cbegin(); entry != source.cend(); ++entry) {
        if (entry->state == Setting::Changed)
            target[entry.key()] = {entry->value, Setting::Clean};
    }
}
