#pragma once

#include "foundation/Descriptor.h"

#include <sys/syscall.h>
#include <sys/types.h>
#include <unistd.h>

/// A descriptor of a process: readable when that has ended, and never that of another. Closed if there is no
/// such process, or if the system has no such descriptors. (By the numbers of the calls: not every C library
/// can be linked with their names from C++.)
inline Descriptor openProcess(pid_t process) {
    return Descriptor(static_cast<int>(::syscall(SYS_pidfd_open, process, 0)));
}

/// Sends a signal to the process, if it still runs.
inline void sendSignal(const Descriptor& process, int signal) {
    ::syscall(SYS_pidfd_send_signal, process.number(), signal, nullptr, 0);
}
