#pragma once

#include "build/StandardBuildSystem.h"

struct CommandWords;

/// The tool chain: turns one step into one command line of its compilers, assembler, linker and archiver. The
/// command line is the whole interface to them. A command is a list of words, so nothing is quoted.
class SOBFBuildSystem : public StandardBuildSystem {
public:
    void createCommandFor(ProjectElement* element, const QString& config, BuildAction action,
                          const QString& output, const QString& fullOutput, const QStringList& inputs,
                          Builder* builder, bool quiet, bool clean) override;
    DependencyList getObjectFileDependencies(const QString& directory, const QString& input,
                                             const QString& objectFile) override;
    QString preprocess(ProjectElement* element, const QString& config, Builder* builder) override;

    /// Appends what ends the command of a step. False if no command is to run.
    virtual bool appendBuildOptions(ProjectElement* element, const QString& config, BuildAction action,
                                    QStringList& command, Builder* builder) = 0;
    virtual void appendPreprocessorOptions(ProjectElement* element, const QString& config,
                                           QStringList& command) = 0;

    /// The part of the name that tells the variants of these library functions apart.
    QString getPrintfVariant(ProjectElement* element, const QString& config) const;
    QString getScanfVariant(ProjectElement* element, const QString& config) const;

    /// Appends the definitions of the release.
    static void addCommonPreprocessorDefinitions(QStringList& command);
    /// Where the tools lie.
    static QString toolRoot();
    /// The name of the program for a kind of step, a bit of SettingTable::Step; null if there is none.
    static const char* toolOf(unsigned step);

protected:
    /// Appends the words that settings have for the processor family.
    void appendFamilyWords(ProjectElement* element, const QString& config, unsigned step,
                           QStringList& command);

private:
    void runBehindLink(const CommandWords& command, const QString& fullOutput);
};
