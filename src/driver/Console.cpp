#include "driver/Console.h"

#include "foundation/FileAccess.h"
#include "foundation/HException.h"
#include "foundation/Text.h"

#include <cerrno>
#include <csignal>
#include <poll.h>
#include <unistd.h>

namespace {

/// A reader that has gone is an error like any other. The tools keep the treatment of the signal that this
/// process was started with.
class BrokenPipeIsAnError {
public:
    BrokenPipeIsAnError() {
        struct sigaction ignoring {};
        ignoring.sa_handler = SIG_IGN;
        ::sigaction(SIGPIPE, &ignoring, &m_former);
    }
    ~BrokenPipeIsAnError() { ::sigaction(SIGPIPE, &m_former, nullptr); }
    BrokenPipeIsAnError(const BrokenPipeIsAnError&) = delete;
    BrokenPipeIsAnError& operator=(const BrokenPipeIsAnError&) = delete;

private:
    struct sigaction m_former {};
};

/// Whether a write that failed is worth another try. Someone else may have made the terminal non-blocking.
bool canTryAgain(int descriptor, int error) {
    if (error != EAGAIN)
        return error == EINTR;
    pollfd writable{descriptor, POLLOUT, 0};
    return ::poll(&writable, 1, -1) >= 0 || errno == EINTR;
}

} // namespace

void Console::print(const QByteArray& bytes) {
    if (bytes.isEmpty())
        return;
    const BrokenPipeIsAnError guard;
    std::string_view left = viewOf(bytes);
    while (!left.empty()) {
        const ssize_t written = ::write(m_descriptor, left.data(), left.size());
        if (written >= 0)
            left.remove_prefix(static_cast<size_t>(written));
        else if (!canTryAgain(m_descriptor, errno))
            throw HException(
                toBytes("can't write to the standard output: " + systemError(errno)).constData());
    }
}
