// A child is started without a copy of this process's page tables (vfork), so that the time does not grow
// with the size of the project. It speaks into two pipes. The parent sleeps on both, on the child's end and
// on the signals that ask this process to end, all at once. So neither a tool that fills one pipe while the
// other is read, nor one that closes its output early, nor one that leaves a background process with an open
// pipe can make it wait for something that doesn't come.

#include "driver/Spawn.h"

#include "driver/Interruption.h"
#include "driver/ProcessDescriptor.h"
#include "driver/ToolOutput.h"
#include "driver/ToolStop.h"
#include "foundation/Descriptor.h"
#include "foundation/Text.h"

#include <algorithm>
#include <fcntl.h>
#include <optional>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <vector>

namespace {

constexpr int pollTime = 100; // milliseconds between two looks at a child whose end can't be polled for
constexpr qsizetype readSize = 65'536;

/// The same file under a number above those of the standard streams, which may be free if this process was
/// started without them.
Descriptor aboveStandardStreams(int number) {
    if (number > STDERR_FILENO)
        return Descriptor(number);
    const Descriptor low(number);
    return Descriptor(::fcntl(number, F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
}

/// One of the child's streams: the pipe, and what came out of it.
class Stream {
public:
    bool open() {
        int ends[2];
        if (::pipe2(ends, O_CLOEXEC) != 0)
            return false;
        m_readEnd = aboveStandardStreams(ends[0]);
        m_writeEnd = aboveStandardStreams(ends[1]);
        return m_readEnd.isOpen() && m_writeEnd.isOpen();
    }
    int writeEnd() const { return m_writeEnd.number(); }
    void closeWriteEnd() { m_writeEnd.close(); }
    void closeReadEnd() { m_readEnd.close(); }

    bool isOpen() const { return m_readEnd.isOpen(); }
    /// For poll, which passes over closed ones.
    pollfd polled() const { return {m_readEnd.number(), POLLIN, 0}; }

    /// Takes a piece, and closes at the end of the stream. Waits if there is none yet.
    void take() {
        const ssize_t got = read(readSize);
        if (got == 0 || (got < 0 && errno != EINTR))
            m_readEnd.close();
    }
    /// Takes what is in the pipe now, and no more: someone may go on writing for ever.
    void takeRest() {
        int left = 0;
        if (!isOpen() || ::ioctl(m_readEnd.number(), FIONREAD, &left) != 0)
            return;
        while (left > 0) {
            const ssize_t got = read(left);
            if (got == 0 || (got < 0 && errno != EINTR))
                return;
            left -= static_cast<int>(std::max<ssize_t>(got, 0));
        }
    }

    /// All that was taken, which is then forgotten: there may be much of it.
    QByteArray bytes() {
        m_bytes.truncate(std::exchange(m_size, 0));
        return std::exchange(m_bytes, {});
    }

private:
    ssize_t read(qsizetype most) {
        if (m_bytes.size() - m_size < most)
            m_bytes.resize(2 * m_bytes.size() + most);
        const ssize_t got = ::read(m_readEnd.number(), m_bytes.data() + m_size, static_cast<size_t>(most));
        m_size += std::max<ssize_t>(got, 0);
        return got;
    }

    Descriptor m_readEnd;
    Descriptor m_writeEnd;
    QByteArray m_bytes; ///< the first m_size are filled
    qsizetype m_size = 0;
};

/// All that a child needs. It is laid out before the child is born, which until it becomes the program lives
/// in this process's memory and may do nothing but call the system.
struct Start {
    char* const* words;
    const char* directory; ///< null to stay
    bool isCaptured;
    int out;
    int err;
    const sigset_t* signalMask;
};

/// The new process, or -1. `error` is 0, or why there is no process or no program in it.
[[gnu::noinline]] pid_t startProcess(const Start& start, volatile int& error) {
    const pid_t child = ::vfork();
    if (child == 0) {
        if (start.isCaptured) {
            ::dup2(start.out, STDOUT_FILENO);
            ::dup2(start.err, STDERR_FILENO);
        }
        if (start.directory && ::chdir(start.directory) != 0) {
            // It runs where it is.
        }
        ::sigprocmask(SIG_SETMASK, start.signalMask, nullptr);
        ::execvp(start.words[0], start.words);
        error = errno;
        ::_exit(-1);
    }
    if (child < 0)
        error = errno;
    return child;
}

/// A program that was started, up to its end.
class Process {
public:
    Process(pid_t child, Stream& out, Stream& err)
        : m_child(child), m_end(openProcess(child)), m_out(out), m_err(err) {}

    /// Takes what it writes until it ends, or without `wait` until it closes its standard output.
    void listen(bool wait);
    /// Its status when it ends.
    int wait() const;
    /// Its status, or 0 if it doesn't end within some milliseconds.
    int waitBriefly() const;

private:
    bool hasEnded() const;
    void listenOnce();
    int timeout() const;

    pid_t m_child;
    Descriptor m_end; ///< readable when the child has ended; closed if the system has no such thing
    Stream& m_out;
    Stream& m_err;
    std::optional<ToolStop> m_stop;
};

int statusOf(int waited) { return WIFEXITED(waited) ? static_cast<signed char>(WEXITSTATUS(waited)) : -1; }

bool Process::hasEnded() const {
    siginfo_t info{};
    const int result = ::waitid(P_PID, static_cast<id_t>(m_child), &info, WEXITED | WNOHANG | WNOWAIT);
    return result != 0 || info.si_pid == m_child;
}

int Process::timeout() const {
    const int next = m_stop ? m_stop->untilNextStep() : -1;
    if (m_end.isOpen())
        return next;
    return next < 0 ? pollTime : std::min(next, pollTime);
}

void Process::listenOnce() {
    pollfd polled[] = {
        m_out.polled(), m_err.polled(), {m_end.number(), POLLIN, 0}, {Interruption::descriptor(), POLLIN, 0}};
    if (::poll(polled, std::size(polled), timeout()) > 0) {
        if (polled[0].revents != 0)
            m_out.take();
        if (polled[1].revents != 0)
            m_err.take();
        Interruption::take();
    }
    if (Interruption::signal() != 0 && !m_stop)
        m_stop.emplace(m_child, Interruption::signal(), Interruption::isFromTerminal());
    if (m_stop)
        m_stop->step();
}

void Process::listen(bool wait) {
    while (!hasEnded() && (wait || m_out.isOpen()))
        listenOnce();
    for (Stream* stream : {&m_out, &m_err}) {
        stream->takeRest();
        stream->closeReadEnd();
    }
    Interruption::take();
    if (m_stop)
        m_stop->finish();
}

int Process::wait() const {
    int status = 0;
    while (::waitpid(m_child, &status, 0) < 0)
        if (errno != EINTR)
            return -1;
    return statusOf(status);
}

int Process::waitBriefly() const {
    for (int tries = 0; tries < 10; ++tries) {
        int status = 0;
        if (::waitpid(m_child, &status, WNOHANG) == m_child)
            return statusOf(status);
        ::usleep(1000);
    }
    return 0;
}

/// Who started this process may have told the system to forget its children, and this process inherits that.
void keepStatusesOfChildren() {
    struct sigaction action {};
    if (::sigaction(SIGCHLD, nullptr, &action) == 0 && action.sa_handler == SIG_IGN) {
        action.sa_handler = SIG_DFL;
        ::sigaction(SIGCHLD, &action, nullptr);
    }
}

/// Starts a process; see startProcess.
pid_t startWith(const QStringList& words, const QString& directory, const Stream& out, const Stream& err,
                bool isCaptured, volatile int& error) {
    std::vector<QByteArray> bytes;
    std::vector<char*> pointers;
    bytes.reserve(static_cast<size_t>(words.size()));
    for (const QString& word : words)
        pointers.push_back(bytes.emplace_back(toBytes(word)).data());
    pointers.push_back(nullptr);
    const QByteArray directoryBytes = toBytes(directory);
    return startProcess({.words = pointers.data(),
                         .directory = directory.isNull() ? nullptr : directoryBytes.constData(),
                         .isCaptured = isCaptured,
                         .out = out.writeEnd(),
                         .err = err.writeEnd(),
                         .signalMask = &Interruption::formerMask()},
                        error);
}

/// Runs a program; the result is that of spawnProcess. Without streams there is no capture.
int run(const QStringList& words, bool wait, const QString& directory, QTx::ToolStreams* streams,
        int& startError) {
    volatile int error = 0;
    int result = -1;
    const auto tellError = [&] {
        startError = error;
        return result;
    };
    Stream out;
    Stream err;
    if (words.isEmpty() || words[0].isEmpty()) {
        error = ENOENT;
        return tellError();
    }
    if (streams && !(out.open() && err.open())) {
        error = errno;
        return tellError();
    }

    const Interruption interruption;
    keepStatusesOfChildren();
    const pid_t child = startWith(words, directory, out, err, streams != nullptr, error);
    out.closeWriteEnd();
    err.closeWriteEnd();
    if (child < 0)
        return tellError();
    Process process(child, out, err);
    if (streams || wait)
        process.listen(wait);
    if (streams)
        *streams = {out.bytes(), err.bytes()};
    result = wait ? process.wait() : process.waitBriefly();
    return tellError();
}

} // namespace

int QTx::spawnProcess(const QStringList& words, bool wait, const QString& directory, bool,
                      QStringList* outLines, QStringList* errLines, bool, int* startError) {
    ToolStreams streams;
    const bool isCaptured = outLines && errLines;
    int error = 0;
    const int result = run(words, wait, directory, isCaptured ? &streams : nullptr, error);
    if (startError)
        *startError = error;
    if (isCaptured) {
        *outLines = linesOf(viewOf(std::exchange(streams.out, {})));
        *errLines = linesOf(viewOf(std::exchange(streams.err, {})));
    }
    return result;
}

int QTx::spawnProcess(const QStringList& words, const QString& directory, ToolStreams& streams,
                      int& startError) {
    return run(words, true, directory, &streams, startError);
}
