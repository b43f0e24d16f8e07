#include "driver/Interruption.h"

#include <cstdlib>
#include <sys/signalfd.h>

namespace {

constexpr int endingSignals[] = {SIGINT, SIGTERM, SIGHUP, SIGQUIT};

/// What the nested ones share.
struct {
    int depth = 0;
    int signal = 0;
    bool isFromTerminal = false;
    sigset_t formerMask;
    Descriptor descriptor;
} state;

bool isIgnored(int signal) {
    struct sigaction action {};
    return ::sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

sigset_t signalsToHold() {
    sigset_t held;
    ::sigemptyset(&held);
    for (const int signal : endingSignals)
        if (!isIgnored(signal) && ::sigismember(&state.formerMask, signal) == 0)
            ::sigaddset(&held, signal);
    return held;
}

[[noreturn]] void endBy(int signal) {
    struct sigaction ending {};
    ending.sa_handler = SIG_DFL;
    ::sigaction(signal, &ending, nullptr);
    ::raise(signal);
    ::_exit(128 + signal); // where the default is not to end, in a container's first process
}

} // namespace

Interruption::Interruption() {
    if (state.depth++ > 0)
        return;
    state.signal = 0;
    ::sigprocmask(SIG_BLOCK, nullptr, &state.formerMask);
    const sigset_t held = signalsToHold();
    state.descriptor = Descriptor(::signalfd(-1, &held, SFD_CLOEXEC | SFD_NONBLOCK));
    if (state.descriptor.isOpen())
        ::sigprocmask(SIG_BLOCK, &held, nullptr);
}

Interruption::~Interruption() {
    if (--state.depth > 0)
        return;
    state.descriptor.close();
    letThrough();
    if (state.signal != 0)
        endBy(state.signal);
}

int Interruption::descriptor() { return state.descriptor.number(); }

void Interruption::take() {
    signalfd_siginfo info;
    if (!state.descriptor.isOpen() || ::read(descriptor(), &info, sizeof info) != sizeof info)
        return;
    if (state.signal == 0) {
        state.signal = static_cast<int>(info.ssi_signo);
        state.isFromTerminal = info.ssi_code == SI_KERNEL;
    }
}

int Interruption::signal() { return state.signal; }

bool Interruption::isFromTerminal() { return state.isFromTerminal; }

const sigset_t& Interruption::formerMask() { return state.formerMask; }

void Interruption::letThrough() { ::sigprocmask(SIG_SETMASK, &state.formerMask, nullptr); }
