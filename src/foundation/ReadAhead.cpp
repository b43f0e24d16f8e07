#include "foundation/ReadAhead.h"

#include <algorithm>
#include <csignal>

ReadAhead::~ReadAhead() {
    if (!m_thread.joinable())
        return;
    {
        const std::lock_guard lock(m_mutex);
        m_stop = true;
    }
    m_wake.notify_one();
    m_thread.join();
}

void ReadAhead::expect(const QString& directory, const QList<QString>& names) {
    const bool isWorthIt = names.size() >= mostAhead && std::thread::hardware_concurrency() > 1;
    if (!isWorthIt && !m_thread.joinable())
        return;
    {
        const std::lock_guard lock(m_mutex);
        m_directory = directory;
        m_names = isWorthIt ? names : QList<QString>();
        m_asked = m_fetched = 0;
        m_window = mostAhead;
        m_slots = {};
        ++m_generation;
    }
    if (!m_thread.joinable())
        start();
    m_wake.notify_one();
}

/// Signals are for the thread that waits for tools.
void ReadAhead::start() {
    sigset_t all;
    sigset_t former;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &former);
    m_thread = std::thread([this] { run(); });
    pthread_sigmask(SIG_SETMASK, &former, nullptr);
}

void ReadAhead::forget() {
    if (!m_thread.joinable())
        return;
    const std::lock_guard lock(m_mutex);
    m_window = 0;
    m_fetched = m_asked;
    m_slots = {};
    ++m_generation;
}

void ReadAhead::run() {
    std::unique_lock lock(m_mutex);
    for (;;) {
        m_wake.wait(lock,
                    [this] { return m_stop || m_fetched < std::min(m_names.size(), m_asked + m_window); });
        if (m_stop)
            return;
        const qsizetype index = m_fetched++;
        const unsigned generation = m_generation;
        const QString path = pathAt(index);
        lock.unlock();
        Fetched fetched = m_fetch(path);
        lock.lock();
        const bool isTaken = index < m_asked || slotAt(index).index == index; // by whoever asks
        if (generation == m_generation && !isTaken)
            slotAt(index) = {index, std::move(fetched)};
    }
}

QString ReadAhead::pathAt(qsizetype index) const {
    const QString& name = m_names[index];
    return name.startsWith(u'/') ? name : QString(m_directory + "/" + name);
}

bool ReadAhead::isPathAt(qsizetype index, const QString& path) const {
    const QString& name = m_names[index];
    if (name.startsWith(u'/'))
        return path == name;
    return path.size() == m_directory.size() + 1 + name.size() && path.endsWith(name) &&
           path[m_directory.size()] == u'/' && path.startsWith(m_directory);
}

/// Whether the file is expected next, or soon, and is now the one that was asked for last.
bool ReadAhead::moveTo(const QString& path) {
    qsizetype index = m_asked;
    const qsizetype end = std::min(m_names.size(), m_asked + lookahead);
    while (index < end && !isPathAt(index, path))
        ++index;
    if (index >= end)
        return false;
    m_asked = index;
    m_window = std::min(2 * m_window + 1, mostAhead);
    if (slotAt(index).index != index && m_fetched <= index + 1)
        m_fetched = index + 1 + ownShare;
    if (m_asked + m_window - m_fetched >= m_window / 2)
        m_wake.notify_one(); // in bursts: each waking costs as much as a file
    return true;
}

/// What is known of a file, which is fetched if that has not been done; null if it is not expected.
ReadAhead::Fetched* ReadAhead::at(const QString& path) {
    if (!m_thread.joinable())
        return nullptr;
    std::unique_lock lock(m_mutex);
    if (!moveTo(path))
        return nullptr;
    Slot& slot = slotAt(m_asked); // the thread leaves it alone once it has this index
    const bool isFetched = slot.index == m_asked;
    slot.index = m_asked;
    lock.unlock();
    if (!isFetched)
        slot.fetched = m_fetch(path);
    return &slot.fetched;
}

std::optional<FileStatus> ReadAhead::status(const QString& path) {
    const Fetched* fetched = at(path);
    return fetched ? fetched->status : std::nullopt;
}

std::optional<FileBytes> ReadAhead::read(const QString& path) {
    Fetched* fetched = at(path);
    return fetched ? std::exchange(fetched->contents, std::nullopt) : std::nullopt;
}
