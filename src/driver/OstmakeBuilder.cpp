#include "driver/OstmakeBuilder.h"

#include "build/CommandHost.h"
#include "driver/Interruption.h"
#include "driver/ProcessExit.h"
#include "driver/Spawn.h"
#include "driver/ToolOutput.h"
#include "foundation/Text.h"
#include "macros/Path.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <utility>

namespace {

void makeDirectoriesOf(const QStringList& files) {
    for (const QString& file : files)
        Path::ensureDirExists(file);
}

bool isTheSame(const FileStatus& a, const FileStatus& b) {
    return a.exists() == b.exists() && a.size == b.size && a.modified == b.modified && a.changed == b.changed;
}

} // namespace

void OstmakeBuilder::beginGroup(ProjectElement*, const QString& text, int) {
    m_indent += 2;
    printLine(text);
}

void OstmakeBuilder::endGroup(ProjectElement*) { m_indent -= 2; }

void OstmakeBuilder::init() {
    m_directory = QString();
    m_command.clear();
    m_outputFiles.clear();
}

void OstmakeBuilder::setOutputFiles(const QStringList& files) {
    m_outputFiles = files;
    makeDirectoriesOf(files);
}

void OstmakeBuilder::setTemporaryFiles(const QStringList& files) { makeDirectoriesOf(files); }

void OstmakeBuilder::doit() {
    if (m_echo)
        printLine(m_command.join(u' '));
    if (m_show)
        return;
    // A signal waits until the command is through: what the engine does itself is then whole, and what a tool
    // has begun is gone.
    const Interruption interruption;
    m_host.commandBegins();
    QString errorText;
    if (!m_host.builtinCommand(m_directory, m_command, errorText)) {
        runTool();
    } else if (!errorText.isEmpty()) {
        Interruption::letThrough();
        printLine(errorText);
        m_host.commandFailed();
    }
    m_outputFiles.clear(); // a command that doesn't name its own has none
}

void OstmakeBuilder::runTool() {
    const std::vector<OutputFile> outputs = outputsBefore();
    QTx::ToolStreams streams;
    int startError = 0;
    const int result = QTx::spawnProcess(m_command, m_directory, streams, startError);
    const QStringList removed = Interruption::signal() != 0 ? removeBegun(outputs) : QStringList();
    Interruption::letThrough(); // no signal need wait for the console, which may be slow or stand still
    m_console.print(consoleLinesOf(std::exchange(streams.err, {})));
    m_console.print(consoleLinesOf(std::exchange(streams.out, {})));
    for (const QString& path : removed)
        printLine("interrupted, removed \"" + path + "\"");
    if (result == 0 || Interruption::signal() != 0)
        return;
    if (startError == E2BIG)
        tellLimits();
    if (result == -1)
        printLine("can't execute command \"" + m_command.value(0) + "\"");
    m_host.commandFailed();
    throw ProcessExit{1};
}

std::vector<OstmakeBuilder::OutputFile> OstmakeBuilder::outputsBefore() const {
    std::vector<OutputFile> outputs;
    for (const QString& file : m_outputFiles) {
        const bool isComplete = m_directory.isNull() || Path::isAbsolute(file);
        const QString path = isComplete ? file : QString(m_directory + "/" + file);
        outputs.push_back({path, files().status(path)});
    }
    return outputs;
}

// The status tells, and not a clock: what the tool hasn't touched stays as up to date as it was.
QStringList OstmakeBuilder::removeBegun(const std::vector<OutputFile>& outputs) {
    QStringList removed;
    for (const OutputFile& output : outputs) {
        const FileStatus now = files().status(output.path);
        if (now.kind == FileStatus::File && !isTheSame(now, output.before) &&
            files().remove(output.path) == 0)
            removed.append(output.path);
    }
    return removed;
}

void OstmakeBuilder::tellLimits() {
    qsizetype bytes = 0;
    qsizetype longest = 0;
    for (const QString& word : m_command) {
        bytes += word.size() + 1;
        longest = std::max(longest, word.size());
    }
    printLine("the command line of \"" + m_command.value(0) +
              "\" is too long for the system: " + QString::number(m_command.size()) + " words, " +
              QString::number(bytes) + " bytes, the longest word " + QString::number(longest) + " bytes");
}

void OstmakeBuilder::printLine(const QString& text) {
    QByteArray line(std::max(m_indent, 0), ' ');
    for (const QChar character : text)
        if (character.unicode() <= 0xFF && std::isprint(character.unicode()))
            line.append(static_cast<char>(character.unicode()));
    m_console.print(line.append('\n'));
}
