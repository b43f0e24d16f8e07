#include "driver/ToolStop.h"

#include "driver/ProcessDescriptor.h"
#include "foundation/FileAccess.h"
#include "foundation/Text.h"

#include <QStringList>
#include <algorithm>
#include <csignal>
#include <poll.h>

namespace {

constexpr size_t mostProcesses = 10'000;
constexpr int afterKill = 500; // milliseconds

/// The processes that a process has started, as the kernel lists them for each of its threads.
std::vector<pid_t> childrenOf(pid_t process) {
    std::vector<pid_t> children;
    const QString threads = "/proc/" + QString::number(process) + "/task";
    for (const QString& thread : files().list(threads)) {
        const FileBytes list = files().read(threads + "/" + thread + "/children");
        for (const QString& child : toText(list.view()).split(u' ', Qt::SkipEmptyParts))
            children.push_back(child.toInt());
    }
    return children;
}

} // namespace

ToolStop::ToolStop(pid_t tool, int signal, bool isFromTerminal)
    : m_tool(tool), m_signal(signal), m_due(Clock::now()), m_last(m_due + grace) {
    if (isFromTerminal)
        m_due += secondSending;
    addFamily(); // now: a process whose parent has ended is no longer found
    step();
}

void ToolStop::addFamily() {
    std::vector<pid_t> found{m_tool};
    for (size_t i = 0; i < found.size() && m_known.size() < mostProcesses; ++i) {
        const std::vector<pid_t> children = childrenOf(found[i]);
        found.insert(found.end(), children.begin(), children.end());
        if (std::find(m_known.begin(), m_known.end(), found[i]) != m_known.end())
            continue;
        m_known.push_back(found[i]);
        if (Descriptor process = openProcess(found[i]); process.isOpen())
            m_running.push_back(std::move(process));
    }
}

void ToolStop::send(int signal) const {
    for (const Descriptor& process : m_running)
        sendSignal(process, signal);
    if (m_running.empty()) // the system has no descriptors of processes
        ::kill(m_tool, signal);
}

void ToolStop::step() {
    if (m_isKilled || Clock::now() < m_due)
        return;
    addFamily();
    send(m_isSent ? SIGKILL : m_signal);
    m_isKilled = m_isSent;
    m_isSent = true;
    m_due = m_last;
}

int ToolStop::untilNextStep() const {
    if (m_isKilled)
        return -1;
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(m_due - Clock::now());
    return std::max(0, static_cast<int>(left.count()));
}

void ToolStop::forgetEnded(int milliseconds) {
    std::vector<pollfd> processes;
    for (const Descriptor& process : m_running)
        processes.push_back({process.number(), POLLIN, 0});
    ::poll(processes.data(), processes.size(), milliseconds);
    size_t index = 0;
    std::erase_if(m_running, [&](const Descriptor&) { return processes[index++].revents != 0; });
}

void ToolStop::finish() {
    for (forgetEnded(0); !m_running.empty() && !m_isKilled; forgetEnded(untilNextStep()))
        step();
    if (!m_running.empty())
        forgetEnded(afterKill); // no longer: a process may hang in the system
}
