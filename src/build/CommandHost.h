#pragma once

#include <QString>
#include <QStringList>

/// What a builder needs of the engine while it carries out a command.
class CommandHost {
public:
    virtual ~CommandHost() = default;
    /// Carries out a command that needs no tool. True if it was one; `errorText` is then empty unless it
    /// failed. False if the caller is to run it as a process; the first word of `command` may have been
    /// replaced.
    virtual bool builtinCommand(const QString& directory, QStringList& command, QString& errorText) = 0;
    /// A command is about to be carried out.
    virtual void commandBegins() {}
    /// Sets the flag that ends the build.
    virtual void commandFailed() = 0;
};
