#pragma once

#include "build/BuildSystem.h"
#include "build/CommandHost.h"
#include "build/PackageFile.h"
#include "build/UnfinishedStep.h"
#include "properties/BuildOptions.h"

#include <memory>

class MemoryMap;

/// The middle of the engine, the sequence of a build: what kind of step each node needs, in which order steps
/// run, what goes in and what comes out, when a step can be skipped, and which user commands run around it.
/// Does not know what the command line of a tool looks like.
class StandardBuildSystem : public BuildSystem, public CommandHost {
public:
    /// The kind of step of a node.
    enum BuildAction {
        NoAction = 0,
        Excluded = 1,
        CompileC = 2,
        CompileCpp = 3,
        CompileForth = 5,
        CompileBasic = 6,
        Assemble = 7,
        External = 8,
        Link = 10,
        Archive = 11,
        Stage = 12,
        Combine = 13
    };

    /// Reads the tool properties file beside the program, and becomes the process's standardBuildSystem.
    StandardBuildSystem();
    ~StandardBuildSystem() override;

    QString findIncludeFile(bool flag, const QString& name, ProjectElement* element,
                            const QString& config) override;
    QString output(ProjectElement* element, const QString& config, bool absolute) override;
    void getDependencies(ProjectElement* element, const QString& config, QStringList& list) override;
    bool canLoad(ProjectElement* element, const QString& config) override;
    bool canCompile(ProjectElement* element, const QString& config) override;
    bool mustCompile(ProjectElement* element, const QString& config) override;
    bool platformBuild(ProjectElement* element, const QString& config, Builder* builder, int flags) override;

    /// Composes the command of a step and lets the builder carry it out. `output` is the output's path as the
    /// step names it, `fullOutput` its full path.
    virtual void createCommandFor(ProjectElement* element, const QString& config, BuildAction action,
                                  const QString& output, const QString& fullOutput, const QStringList& inputs,
                                  Builder* builder, bool quiet, bool clean) = 0;
    /// Whether no setting that shapes the command of a step changed after `time`.
    bool commandUpToDate(ProjectElement* element, const QString& config, const QDateTime& time,
                         BuildAction action, Builder* builder, bool quiet);
    /// What an object file was made from, as it tells itself; empty if it does not tell. Throws HException if
    /// it can't be read.
    virtual DependencyList getObjectFileDependencies(const QString& directory, const QString& input,
                                                     const QString& objectFile) = 0;

    /// The settings that the tool properties file adds.
    const PropertyLists::ToolProperties& toolProperties() const { return m_options.tools; }
    bool builtinCommand(const QString& directory, QStringList& command, QString& errorText) override;
    void commandBegins() override { m_unfinished.begin(); }
    void commandFailed() override { setFailed(); }
    /// Where the step under way is on record, for a later run if this process is killed.
    void keepRecordsIn(const QString& directory) { m_unfinished.keepRecordsIn(directory); }
    /// Decides by what earlier runs have left on record there, and changes nothing.
    void heedRecordsIn(const QString& directory) { m_unfinished.heedRecordsIn(directory); }

    BuildAction buildAction(ProjectElement* element, const QString& config);
    /// The kind of step that the table of settings knows it as; 0 if it knows none.
    static unsigned stepOf(BuildAction action);
    static bool isSource(BuildAction action) { return action >= CompileC && action <= Assemble; }
    QString output(BuildAction action, ProjectElement* element, const QString& config, bool absolute);
    /// The number of steps at and under a node.
    int countJobs(ProjectElement* element, const QString& config, int flags);
    /// Appends the outputs of the nodes from `first` along its siblings, and of all under them.
    void findOutputs(ProjectElement* first, const QString& config, QStringList& list, bool absolute);
    /// Appends the names of the files there that are not excluded, relative to the project.
    void findRelativeInputs(ProjectElement* first, const QString& config, QStringList& list);
    /// The first file of this type at or under a node that is not excluded; null if there is none.
    ProjectElement* findFileOfType(ProjectElement* element, const QString& config, const QString& type);
    /// Whether a link has such a file, and where it is.
    bool useMemoryMapFileForLink(ProjectElement* element, const QString& config, QString& path);
    bool useSectionPlacementFileForLink(ProjectElement* element, const QString& config, QString& path);
    /// That file, loaded with the macros that the project states for it; null if it can't be loaded.
    std::shared_ptr<MemoryMap> getMemoryMapFileForLink(ProjectElement* element, const QString& config,
                                                       const QString& path) const;
    std::shared_ptr<MemoryMap> getSectionPlacementFileForLink(ProjectElement* element, const QString& config,
                                                              const QString& path) const;
    /// Removes an output.
    void cleanFile(const QString& path, bool quiet, Builder* builder);

    /// Whether no property group that adds definitions changed after `time`.
    bool propertyGroupsDefinesUpToDate(ProjectElement* element, const QString& config, const QDateTime& time,
                                       Builder* builder, bool quiet);
    /// Whether the files that a link leaves beside its output are there.
    bool mapOutputFileUpToDate(ProjectElement* element, const QString& config, const QString& fullOutput,
                               Builder* builder, bool quiet);
    bool additionalOutputFileUpToDate(ProjectElement* element, const QString& config,
                                      const QString& fullOutput, Builder* builder, bool quiet);

private:
    class Step;
    struct Force;

    /// What the walks of one build ask of a node again and again: for the count of steps, its own step, and
    /// the link that it goes into.
    struct KnownNode {
        BuildAction action;
        std::optional<QString> output; ///< as its setting names it, once it was asked for
    };

    KnownNode& known(ProjectElement* element);
    BuildAction findAction(ProjectElement* element, const QString& config) const;
    QString findOutput(BuildAction action, ProjectElement* element, const QString& config);
    void expectObjects(ProjectElement* element, const QString& config);
    bool platformBuild1(ProjectElement* element, const QString& config, Builder* builder, int flags);
    bool isIncluded(ProjectElement* element, const QString& config) const;
    QString outputText(BuildAction action, ProjectElement* element, const QString& config) const;
    DependencyList sourceDependencies(ProjectElement* element, const QString& full);
    void appendLinkInputs(ProjectElement* project, const QList<ProjectElement*>& dependencies,
                          const QString& config, bool absolute, QStringList& list);
    bool linkerFile(ProjectElement* element, const QString& config, const QString& type, Setting setting,
                    QString& path);
    void appendLinkerFiles(ProjectElement* project, const QString& config, QStringList& list);
    bool fileBesideOutput(const QString& fullOutput, const QString& extension, Builder* builder, bool quiet);
    bool settingUpToDate(ProjectElement* element, const PropertyClass& propertyClass, const QString& config,
                         const QDateTime& time, Builder* builder, bool quiet);
    bool anySettingChanged(ProjectElement* element, const QString& config) const;
    void reportDue(ProjectElement* element, const QString& config, const QString& output,
                   const QString& reason);

    const BuildOptions m_options;
    PackageUpdater m_packages;
    UnfinishedStep m_unfinished;
    QHash<QString, DependencyList>
        m_dependencyCache; ///< of objects that were up to date, by their full paths
    /// Of the nodes of the build in hand, in its configuration; no setting changes while it runs.
    QHash<const ProjectElement*, KnownNode> m_known;
    QString m_knownConfig;               ///< null outside a build
    ProjectElement* m_lastDue = nullptr; ///< the node whose step was found due last
    QString m_projectDirectory;          ///< what outputs and dependencies of the project in hand count from
};

/// The engine of the process, as those who carry out commands know it; null before it is made.
extern StandardBuildSystem* standardBuildSystem;
