#pragma once

#include "foundation/Descriptor.h"

#include <csignal>

/// While one of these lives, the signals that ask this process to end (Ctrl-C and Ctrl-\ at the terminal, a
/// hang-up, kill) wait for what is under way. Nothing runs in a handler: the signals are blocked, and a
/// descriptor tells of them. Those that were ignored or blocked when the process began stay so, as nohup
/// expects.
///
/// The last one to go lets the signal do its work, so that whoever started this process sees how it ended.
/// They nest, and all of them see the same signal.
class Interruption {
public:
    Interruption();
    ~Interruption();
    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;

    /// Readable when a signal is there to be taken. Below 0 if the system has none to give: then signals end
    /// the process as ever.
    static int descriptor();
    /// Takes a signal that has come, if there is one, without waiting. Of several the first counts.
    static void take();
    /// The signal that was taken; 0 if there is none.
    static int signal();
    /// Whether it came from the terminal, which sends it to all of the foreground processes.
    static bool isFromTerminal();
    /// The signals that were blocked before; a tool starts with these.
    static const sigset_t& formerMask();
    /// Ends the wait: from here on a further signal ends the process at once.
    static void letThrough();
};
