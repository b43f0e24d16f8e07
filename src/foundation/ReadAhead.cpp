#include "foundation/ReadAhead.h"

#include <algorithm>
#include <csignal>
#include <sched.h>

namespace {

/// The processors that the process may use, but for the one that the caller is on; empty if that can't be
/// told.
cpu_set_t otherProcessors() {
    cpu_set_t others;
    CPU_ZERO(&others);
    const int here = ::sched_getcpu();
    if (here >= 0 && ::sched_getaffinity(0, sizeof others, &others) == 0)
        CPU_CLR(static_cast<size_t>(here), &others);
    return others;
}

bool isPath(const QString& path, const QString& directory, const QString& name) {
    if (name.startsWith(u'/'))
        return path == name;
    return path.size() == directory.size() + 1 + name.size() && path.endsWith(name) &&
           path[directory.size()] == u'/' && path.startsWith(directory);
}

} // namespace

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
    if (names.size() >= fewest && !m_thread.joinable())
        start();
    {
        const std::lock_guard lock(m_mutex);
        m_directory = directory;
        m_names = names;
        m_batches.clear();
        m_claimed = 0;
        m_window = m_limit = mostAhead;
    }
    m_current = nullptr;
    m_asked = 0;
    m_wake.notify_one();
}

/// Only where there is another processor, and there alone: left to itself, the system may wake the thread on
/// the one that it is woken from, and the two would take turns. Signals are for the thread that waits for
/// tools.
void ReadAhead::start() {
    const cpu_set_t others = otherProcessors();
    if (CPU_COUNT(&others) == 0)
        return;
    sigset_t all;
    sigset_t former;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &former);
    m_thread = std::thread([this] { run(); });
    pthread_sigmask(SIG_SETMASK, &former, nullptr);
    ::pthread_setaffinity_np(m_thread.native_handle(), sizeof others, &others);
}

void ReadAhead::forget() {
    const std::lock_guard lock(m_mutex);
    m_batches.clear();
    m_current = nullptr;
    m_claimed = m_limit = m_asked;
    m_window = 0;
}

void ReadAhead::run() {
    std::unique_lock lock(m_mutex);
    for (;;) {
        m_wake.wait(lock, [this] { return m_stop || canClaim(); });
        if (m_stop)
            return;
        fetch(lock, claim(mostInBatch));
        m_done.notify_one();
    }
}

bool ReadAhead::canClaim() const { return m_claimed < std::min(m_names.size(), m_limit); }

ReadAhead::Shared ReadAhead::claim(qsizetype most) {
    const auto batch = std::make_shared<Batch>();
    batch->first = m_claimed;
    batch->directory = m_directory;
    batch->names = m_names.mid(m_claimed, std::min(most, m_limit - m_claimed));
    m_batches.push_back(batch);
    m_claimed += batch->names.size();
    return batch;
}

/// Without the lock meanwhile.
void ReadAhead::fetch(std::unique_lock<std::mutex>& lock, const Shared& batch) {
    lock.unlock();
    batch->files.reserve(static_cast<size_t>(batch->names.size()));
    for (const QString& name : batch->names) {
        const bool isAbsolute = name.startsWith(u'/');
        batch->files.push_back(m_fetch(isAbsolute ? name : QString(batch->directory + "/" + name)));
    }
    lock.lock();
    batch->isFetched = true;
}

/// The index of a file that is expected next, or soon; -1 for any other. Names change in this thread only.
qsizetype ReadAhead::find(const QString& path) const {
    const qsizetype end = std::min(m_names.size(), m_asked + lookahead);
    for (qsizetype index = m_asked; index < end; ++index) {
        if (isPath(path, m_directory, m_names[index]))
            return index;
    }
    return -1;
}

/// The batch of a file, fetched.
ReadAhead::Shared ReadAhead::batchOf(qsizetype index) {
    std::unique_lock lock(m_mutex);
    m_window = std::min(2 * m_window + 1, mostAhead);
    m_limit = index + m_window;
    while (!m_batches.empty() && !m_batches.front()->holds(index))
        m_batches.pop_front();
    if (m_batches.empty()) {
        m_claimed = index;
        fetch(lock, claim(m_thread.joinable() ? 1 : mostInBatch)); // the thread goes on from there
    }
    const Shared batch = m_batches.front();
    if (m_limit - m_claimed >= m_window / 2)
        m_wake.notify_one(); // in bursts: each waking costs as much as a file
    while (!batch->isFetched) {
        if (canClaim())
            fetch(lock, claim(mostInBatch));
        else
            m_done.wait(lock);
    }
    return batch;
}

/// What is known of a file, which is fetched if that has not been done; null if it is not expected.
ReadAhead::Fetched* ReadAhead::at(const QString& path) {
    const qsizetype index = find(path);
    if (index < 0)
        return nullptr;
    m_asked = index;
    if (!m_current || !m_current->holds(index))
        m_current = batchOf(index);
    return &m_current->files[static_cast<size_t>(index - m_current->first)];
}

std::optional<FileStatus> ReadAhead::status(const QString& path) {
    Fetched* fetched = at(path);
    return fetched ? std::exchange(fetched->status, std::nullopt) : std::nullopt;
}

std::optional<FileBytes> ReadAhead::read(const QString& path) {
    Fetched* fetched = at(path);
    return fetched ? std::exchange(fetched->contents, std::nullopt) : std::nullopt;
}
