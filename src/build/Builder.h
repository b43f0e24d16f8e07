#pragma once

#include <QString>
#include <QStringList>

class ProjectElement;

/// Receives the progress of a build and carries out its commands. The build engine prints nothing and starts
/// no process: all of that goes through here, one command at a time. Knows nothing of how a command came
/// about.
///
/// A step reads, as a rule: nextStep, init, setDirectory, beginGroup, setCommand, setOutputFiles or
/// setTemporaryFiles where there are such files, doit, endGroup.
class Builder {
public:
    /// Opens a group of work on an element.
    virtual void beginGroup(ProjectElement* element, const QString& text, int n) = 0;
    /// Closes the innermost group.
    virtual void endGroup(ProjectElement* element) = 0;
    /// Forgets the current command.
    virtual void init() = 0;
    /// Announces how many jobs a project has, once before it is built.
    virtual void setTotalSteps(ProjectElement* element, int steps);
    /// The working directory of the next command; null for that of this process.
    virtual void setDirectory(const QString& directory) = 0;
    /// The next command, a word an entry, the program first.
    virtual void setCommand(const QStringList& words) = 0;
    virtual void setEnvironment(const QStringList& variables) = 0;
    /// The files that the next command writes.
    virtual void setOutputFiles(const QStringList& files) = 0;
    virtual void setTemporaryFiles(const QStringList& files) = 0;
    /// Carries out the command, and returns when it has ended. A failure reaches the engine through its own
    /// flag.
    virtual void doit() = 0;
    /// A further job of the announced ones begins.
    virtual void nextStep() {}
    virtual void error(const QString& text) = 0;
    virtual void note(const QString&) {}
    virtual void success(const QString&) {}
    virtual void message(const QString&) {}
    /// Called at the start of the build of each node.
    virtual void idle() {}
    virtual ~Builder();

    int totalSteps = 0;
};
