#pragma once

#include "foundation/Descriptor.h"

#include <chrono>
#include <sys/types.h>
#include <vector>

/// Stops a tool and all that it has started and that still runs: passes on the signal that this process has
/// got, and kills what is still there when the time of grace is over.
class ToolStop {
public:
    /// How long the processes have for their own cleaning up.
    static constexpr std::chrono::milliseconds grace{3000};
    /// How long those that have the signal from the terminal get before it is sent to them once more; they
    /// may not be among the terminal's foreground processes.
    static constexpr std::chrono::milliseconds secondSending{200};

    /// Of the process `tool`, which must not have been waited for.
    ToolStop(pid_t tool, int signal, bool isFromTerminal);

    /// Sends what is due by now.
    void step();
    /// Milliseconds until the next step has something to do; below 0 if none has.
    int untilNextStep() const;
    /// Returns when all have ended; steps as long as that takes.
    void finish();

private:
    using Clock = std::chrono::steady_clock;

    void addFamily();
    void send(int signal) const;
    /// Forgets those that have ended, and waits for that for at most `milliseconds`.
    void forgetEnded(int milliseconds);

    pid_t m_tool;
    int m_signal;
    Clock::time_point m_due;  ///< when m_signal is sent, or SIGKILL when it was sent
    Clock::time_point m_last; ///< when SIGKILL is sent
    bool m_isSent = false;
    bool m_isKilled = false;
    std::vector<pid_t> m_known;        ///< the processes, each at most once
    std::vector<Descriptor> m_running; ///< their descriptors, which can't come to mean another process
};
