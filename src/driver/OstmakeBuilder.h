#pragma once

#include "build/Builder.h"
#include "driver/Console.h"
#include "foundation/FileAccess.h"

#include <vector>

class CommandHost;

/// Turns the progress of a build into console lines, and carries out its commands: those that the engine can
/// do itself there, all others as processes. A process that fails ends this one, by ProcessExit.
class OstmakeBuilder : public Builder {
public:
    /// With `echo` each command is printed; with `show` it is printed if `echo` says so, and not carried out.
    OstmakeBuilder(CommandHost& host, Console& console, bool echo, bool show)
        : m_host(host), m_console(console), m_echo(echo), m_show(show) {}

    void beginGroup(ProjectElement* element, const QString& text, int n) override;
    void endGroup(ProjectElement* element) override;
    void init() override;
    void setDirectory(const QString& directory) override { m_directory = directory; }
    void setCommand(const QStringList& words) override { m_command = words; }
    /// Not applied: a command inherits the environment of this process.
    void setEnvironment(const QStringList&) override {}
    /// Makes the directories of the files. When the command is interrupted, those that it has begun to write
    /// are removed, so that the next build makes them anew.
    void setOutputFiles(const QStringList& files) override;
    /// Makes the directories of the files.
    void setTemporaryFiles(const QStringList& files) override;
    void doit() override;
    void error(const QString& text) override { printLine(text); }
    void note(const QString& text) override { printLine(text); }
    void success(const QString& text) override { printLine(text); }
    void message(const QString& text) override { printLine(text); }

private:
    struct OutputFile {
        QString path;
        FileStatus before; ///< as the command found it
    };

    /// The text behind the indentation, without what can't be printed.
    void printLine(const QString& text);
    void runTool();
    std::vector<OutputFile> outputsBefore() const;
    /// Removes the outputs that the command has touched, and tells which.
    static QStringList removeBegun(const std::vector<OutputFile>& outputs);
    void tellLimits();

    CommandHost& m_host;
    Console& m_console;
    bool m_echo;
    bool m_show;
    QString m_directory;
    QStringList m_command;
    QStringList m_outputFiles;
    int m_indent = 0; ///< columns
};
