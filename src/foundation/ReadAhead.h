#pragma once

#include "foundation/FileAccess.h"

#include <array>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>

/// Fetches files that will soon be asked for, in a thread of its own, a few ahead of whoever asks. A build
/// that looks at ten thousand objects waits for the system most of its time; this shares the waiting out
/// between two cores. Whoever asks for a file that is not there yet fetches it, and leaves a few behind it
/// to itself, so that the two don't meet at each.
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

    /// What is known of an expected file; nothing of any other.
    std::optional<FileStatus> status(const QString& path);
    /// The same, once.
    std::optional<FileBytes> read(const QString& path);

private:
    static constexpr qsizetype mostAhead = 64; ///< files
    static constexpr qsizetype lookahead = 4;  ///< how many files may be left out in a row
    static constexpr qsizetype ownShare = 8;   ///< how many files whoever asks fetches when it is quicker

    struct Slot {
        qsizetype index = -1; ///< of the name, or -1
        Fetched fetched;
    };

    void start();
    void run();
    QString pathAt(qsizetype index) const;
    bool isPathAt(qsizetype index, const QString& path) const;
    bool moveTo(const QString& path);
    Fetched* at(const QString& path);
    Slot& slotAt(qsizetype index) { return m_slots[static_cast<size_t>(index % mostAhead)]; }

    const Fetch m_fetch;
    std::thread m_thread;
    std::mutex m_mutex; ///< guards all below
    std::condition_variable m_wake;
    bool m_stop = false;
    QString m_directory;
    QList<QString> m_names;
    qsizetype m_asked = 0;   ///< the name that was asked for last
    qsizetype m_fetched = 0; ///< the next to be fetched
    qsizetype m_window = 0;  ///< how far in front of what is asked for
    unsigned m_generation = 0;
    std::array<Slot, mostAhead> m_slots;
};
