#pragma once

#include "build/BuildFlags.h"
#include "build/FileTimes.h"
#include "macros/MacroScope.h"
#include "object/DependencyList.h"
#include "properties/Catalogue.h"

#include <QDateTime>
#include <QHash>
#include <QStringList>

class Builder;
class ProjectElement;
class ProjectSystem;
class StepListener;

/// The top of the build engine: walks the solution, builds each project behind those it depends on and once
/// in each configuration, and remembers what it has built. Knows nothing of compilers, prints nothing and
/// starts no process: what is to be done or said goes to a Builder, which may be null everywhere: then
/// nothing is told and no command runs.
///
/// Nothing about a build is stored between runs. Layers add to it: StandardBuildSystem the sequence of a
/// build, SOBFBuildSystem the command lines of the tool chain, MSP430BuildSystem the processor.
class BuildSystem {
public:
    BuildSystem();
    virtual ~BuildSystem();
    BuildSystem(const BuildSystem&) = delete;
    BuildSystem& operator=(const BuildSystem&) = delete;

    // For callers around a build.
    /// Where an include file lies, as a source file would find it; null if it does not.
    virtual QString findIncludeFile(bool flag, const QString& name, ProjectElement* element,
                                    const QString& config) = 0;
    /// The file that the step of a node makes; null if it makes none. Relative to the project directory as
    /// its setting writes it, unless `absolute`.
    virtual QString output(ProjectElement* element, const QString& config, bool absolute) = 0;
    /// Appends the files that the step of a node reads, absolute.
    virtual void getDependencies(ProjectElement* element, const QString& config, QStringList& list) = 0;
    /// Every macro that the settings of a node can name. Expansions don't build it: they ask for what they
    /// need, macro by macro.
    virtual MacroMap macros(ProjectElement* element, const QString& config);
    virtual bool canLoad(ProjectElement* element, const QString& config) = 0;
    virtual bool canCompile(ProjectElement* element, const QString& config) = 0;
    virtual bool mustCompile(ProjectElement* element, const QString& config) = 0;
    /// Preprocesses a source file; the path of the text.
    virtual QString preprocess(ProjectElement* element, const QString& config, Builder* builder) = 0;
    /// Builds one node with its children, without the projects that it depends on. True if anything was
    /// built.
    virtual bool platformBuild(ProjectElement* element, const QString& config, Builder* builder,
                               int flags) = 0;
    /// Enters macros of a layer, which hold over all others of a node.
    virtual void addMacros(ProjectElement* element, const QString& config, MacroMap& macros);

    /// Builds a solution, a project, or a part of one. `flags` are BuildFlags. With `withDependencies` a
    /// project comes behind those it depends on; with `batch` each is built in its batch configurations in
    /// the place of `config`.
    BuildStatus build(ProjectElement* element, const QString& config, Builder* builder, int flags,
                      bool withDependencies, bool batch);
    /// The walks of a build. Both return whether anything was built.
    bool solutionBuild(ProjectElement* solution, const QString& config, Builder* builder, int flags,
                       bool batch);
    bool projectBuild(ProjectElement* project, const QString& config, Builder* builder, int flags, bool batch,
                      const QString& batchConfig);
    /// Opens the group of a project, with the line that tells what is built.
    void displayProjectConfiguration(ProjectElement* element, const QString& config, Builder* builder,
                                     int flags);
    /// Whether this run was through with a project; if so, `built` tells whether it or something below it was
    /// built anew.
    bool justBuilt(ProjectElement* project, const QString& config, bool& built) const;

    /// Whether the file is there. Its full path goes to `fullPath` in any case, its time to `time` if it is.
    bool exists(const QString& directory, const QString& file, QString& fullPath, QDateTime& time,
                Builder* builder, bool quiet);
    /// Whether all dependencies, counted from `directory`, are there, and none was modified later than
    /// `time`, which is the time of `output`. Whole seconds are compared.
    bool upToDate(const QString& directory, const QString& output, const QDateTime& time,
                  const QStringList& dependencies, Builder* builder, bool quiet);
    bool upToDate(const QString& directory, const QString& output, const QDateTime& time,
                  const DependencyList& dependencies, Builder* builder, bool quiet);

    /// Ends the build before its next step.
    void stop() { m_stopped = true; }
    /// A command failed: the same.
    void setFailed() { m_failed = true; }
    bool halted() const { return m_failed || m_stopped; }

    // Settings, as they hold for a node in a configuration.
    QString settingFor(ProjectElement* element, Setting setting, const QString& config) const;
    QString settingForExpanded(ProjectElement* element, Setting setting, const QString& config);
    QString replaceMacros(ProjectElement* element, const QString& text, const QString& config);
    QStringList replaceStringListMacros(ProjectElement* element, const QStringList& list,
                                        const QString& config);
    /// The entries of a list setting, `prefix` in front of each. `escaped`: a "\" before a ";" keeps an entry
    /// together. The text is split before it is expanded, so no macro splits an entry.
    QStringList stringListSetting(const QString& prefix, ProjectElement* element, Setting setting,
                                  const QString& config, bool expand, bool escaped);
    /// The class of this save name; null if there is none.
    const PropertyClass* findPropertyClass(const QString& saveName) const;
    /// Adds a class to those of the catalogue, in the place of one of this name. It must outlive the engine.
    void addPropertyClass(const PropertyClass* propertyClass);

    /// Who learns of the steps that are due from now on; null for nobody.
    void setStepListener(StepListener* listener) { m_stepListener = listener; }

protected:
    /// Sends why something is not up to date from where that is decided, and keeps it as the step's reason.
    void because(const QString& reason, Builder* builder, bool quiet);
    const QString& reason() const { return m_reason; }
    StepListener* stepListener() const { return m_stepListener; }
    /// Lets the builder carry out the command it was given.
    void carryOut(Builder* builder);
    /// Files may have changed.
    void forgetFiles();

private:
    class ProjectWalk;

    using Step = std::pair<const ProjectElement*, QString>; ///< an element in a configuration

    bool isCurrent(const QString& directory, const QString& output, qint64 time, std::string_view dependency,
                   Builder* builder, bool quiet);
    bool buildPart(ProjectElement* element, const QString& config, Builder* builder, int flags);
    void recordBuilt(const ProjectElement* element, const QString& config, bool built);

    QHash<Step, bool> m_built; ///< what this run is through with, and whether it was built anew
    bool m_stopped = false;
    bool m_failed = false;
    QHash<QString, const PropertyClass*> m_propertyClasses; ///< beside the catalogue
    FileTimes m_fileTimes;
    QString m_reason;
    StepListener* m_stepListener = nullptr;
};

/// The one engine of the process, which `main` makes; null before.
extern BuildSystem* buildSystem;
