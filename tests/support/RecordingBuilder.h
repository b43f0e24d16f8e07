#pragma once

#include "build/Builder.h"
#include "build/CommandHost.h"
#include "support/MemoryFiles.h"

#include <functional>

/// Keeps what the engine sends, in order, and plays the tools: a command writes the files it was said to
/// write, and those of its words that begin with "-M". Built-in commands are carried out.
class RecordingBuilder : public Builder {
public:
    RecordingBuilder(MemoryFiles& files, CommandHost& host) : m_files(files), m_host(host) {}

    QStringList log; ///< captions as they are; "DIRECTORY> words" for a command; "KIND: text" for the rest
    QList<QStringList> commands;
    QStringList outputs; ///< of all commands
    int depth = 0;       ///< groups that are open
    int idles = 0;
    int steps = 0;
    int failAt = 0;         ///< the number of the command that fails, from 1; 0 for none
    bool carriesOut = true; ///< false: commands are only kept
    /// The contents of what a command writes.
    std::function<QByteArray(const QString& output, const QStringList& words)> contents;

    /// The program of each command and the word behind "-o", or else the last: "qcomp Debug/main.vko".
    QStringList ran() const {
        QStringList names;
        for (const QStringList& words : commands) {
            const qsizetype option = words.indexOf("-o");
            names.append(words.first().mid(words.first().lastIndexOf('/') + 1) + " " +
                         words.value(option < 0 ? words.size() - 1 : option + 1));
        }
        return names;
    }
    const QString& directory() const { return m_directory; }

    void beginGroup(ProjectElement*, const QString& text, int) override {
        ++depth;
        log.append(text);
    }
    void endGroup(ProjectElement*) override { --depth; }
    void init() override {
        m_directory = QString();
        m_outputs.clear();
    }
    void setDirectory(const QString& directory) override { m_directory = directory; }
    void setCommand(const QStringList& words) override { m_command = words; }
    void setEnvironment(const QStringList&) override {}
    void setOutputFiles(const QStringList& files) override { m_outputs = files; }
    void setTemporaryFiles(const QStringList& files) override { m_outputs = files; }
    void nextStep() override { ++steps; }
    void idle() override { ++idles; }
    void error(const QString& text) override { log.append("error: " + text); }
    void note(const QString& text) override { log.append("note: " + text); }
    void success(const QString& text) override { log.append("success: " + text); }
    void message(const QString& text) override { log.append("message: " + text); }

    void doit() override {
        log.append(m_directory + "> " + m_command.join(' '));
        commands.append(m_command);
        outputs += m_outputs;
        if (commands.size() == failAt) {
            m_host.commandFailed();
        } else if (carriesOut) {
            QString errorText;
            if (!m_host.builtinCommand(m_directory, m_command, errorText))
                play();
            else if (!errorText.isEmpty())
                fail(errorText);
        }
        m_outputs.clear();
    }

private:
    void fail(const QString& text) {
        log.append("error: " + text);
        m_host.commandFailed();
    }
    void play() {
        for (const QString& output : m_outputs) {
            const QByteArray bytes = contents ? contents(output, m_command) : QByteArray();
            m_files.write(output, viewOf(bytes));
        }
        for (const QString& word : m_command) {
            if (word.startsWith("-M"))
                m_files.write(m_directory + "/" + word.mid(2), "");
        }
    }
    MemoryFiles& m_files;
    CommandHost& m_host;
    QString m_directory;
    QStringList m_command;
    QStringList m_outputs;
};
