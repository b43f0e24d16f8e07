#pragma once

#include "foundation/FileAccess.h"

#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

/// Fetches files that will soon be asked for, in a thread of its own, a few ahead of whoever asks. A build
/// that looks at ten thousand objects waits for the system most of its time; this shares the waiting out
/// between two processors. Files are fetched in batches, and whoever asks for one of a batch that is still
/// being fetched fetches another one meanwhile.
///
/// All operations are for one thread. Nothing is kept longer than up to `forget`, which whoever changes files
/// calls, and behind it the fetching comes up to speed again only step by step: between two commands that
/// change files hardly anything is fetched in vain.
class ReadAhead {
public:
    /// What is known of a file; parts that could not be had are missing, and whoever asks must look.
    struct Fetched {
        std::optional<FileStatus> status;
        std::optional<FileBytes> contents;
    };
    /// Looks at one file. Called in both threads, and must not wait for anyone.
    using Fetch = std::function<Fetched(const QString& path)>;

    explicit ReadAhead(Fetch fetch) : m_fetch(std::move(fetch)) {}
    ~ReadAhead();
    ReadAhead(const ReadAhead&) = delete;
    ReadAhead& operator=(const ReadAhead&) = delete;

    /// Names the files, counted from `directory` unless they are absolute, in the order in which they will be
    /// asked for; a few may be left out then. In the place of those named before.
    void expect(const QString& directory, const QList<QString>& names);
    void forget();

    /// What is known of an expected file, each once: who asks again wants to know of a change. Nothing of any
    /// other file.
    std::optional<FileStatus> status(const QString& path);
    std::optional<FileBytes> read(const QString& path);

private:
    static constexpr qsizetype mostInBatch = 16; ///< files
    static constexpr qsizetype mostAhead = 256;
    static constexpr qsizetype fewest = 64;   ///< that are worth a thread
    static constexpr qsizetype lookahead = 4; ///< how many files may be left out in a row

    /// Files in a row. Whoever claims it fetches them; from then on it is for whoever asks.
    struct Batch {
        qsizetype first = 0; ///< the index of its first name
        QString directory;
        QList<QString> names;
        std::vector<Fetched> files;
        bool isFetched = false;

        bool holds(qsizetype index) const { return index >= first && index < first + names.size(); }
    };
    using Shared = std::shared_ptr<Batch>;

    void start();
    void run();
    bool canClaim() const;
    Shared claim(qsizetype most);
    void fetch(std::unique_lock<std::mutex>& lock, const Shared& batch);
    qsizetype find(const QString& path) const;
    Shared batchOf(qsizetype index);
    Fetched* at(const QString& path);

    const Fetch m_fetch;
    std::thread m_thread;
    qsizetype m_asked = 0; ///< the name that was asked for last
    Shared m_current;      ///< the batch that holds it; null if none does
    std::mutex m_mutex;    ///< guards all below
    std::condition_variable m_wake;
    std::condition_variable m_done;
    bool m_stop = false;
    QString m_directory;
    QList<QString> m_names;
    std::deque<Shared> m_batches; ///< in order, from the current one on
    qsizetype m_claimed = 0;      ///< the first name behind those of the batches
    qsizetype m_window = 0;       ///< how many files may be fetched from what was asked for last on
    qsizetype m_limit = 0;        ///< the first name that must not be fetched yet
};
