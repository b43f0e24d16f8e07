#include "build/BuildSystem.h"

#include "build/Builder.h"
#include "foundation/FileAccess.h"
#include "foundation/Text.h"
#include "macros/MacroSystem.h"
#include "project/NodeMacros.h"
#include "project/ProjectSystem.h"

#include <QSet>
#include <algorithm>
#include <vector>

BuildSystem* buildSystem = nullptr;

BuildSystem::BuildSystem() = default;
BuildSystem::~BuildSystem() = default;

// Building.

BuildStatus BuildSystem::build(ProjectElement* element, const QString& config, Builder* builder, int flags,
                               bool withDependencies, bool batch) {
    m_fileTimes.forget();
    m_built.clear();
    m_stopped = false;
    m_failed = false;
    bool result;
    if (element->is(ProjectElement::Solution))
        result = solutionBuild(element, config, builder, flags, batch);
    else if (element->is(ProjectElement::Project) && withDependencies)
        result = projectBuild(element, config, builder, flags, batch, config);
    else
        result = buildPart(element, config, builder, flags);
    // A step that fails leaves its groups open; this closes the outermost.
    if (halted() && builder)
        builder->endGroup(element);
    if (m_stopped)
        return BuildStatus::Stopped;
    if (m_failed)
        return BuildStatus::Failed;
    return result ? BuildStatus::Built : BuildStatus::NothingToDo;
}

bool BuildSystem::buildPart(ProjectElement* element, const QString& config, Builder* builder, int flags) {
    if (builder)
        displayProjectConfiguration(element, config, builder, flags);
    const bool result = platformBuild(element, config, builder, flags);
    recordBuilt(element, config, result);
    if (builder)
        builder->endGroup(element);
    return result;
}

bool BuildSystem::solutionBuild(ProjectElement* solution, const QString& config, Builder* builder, int flags,
                                bool batch) {
    bool result = false;
    for (ProjectElement* child = solution->firstChild(); child && !halted(); child = child->nextSibling()) {
        if (child->is(ProjectElement::Project))
            result |= projectBuild(child, config, builder, flags, batch, config);
        else if (child->is(ProjectElement::Solution))
            result |= solutionBuild(child, config, builder, flags, batch);
    }
    return result;
}

/// One call of projectBuild with all that it leads to. A chain of dependencies may be longer than the
/// machine's stack is deep, so the walk keeps its own. A project that is met again while its own dependencies
/// are being built is passed over, which ends a circle.
class BuildSystem::ProjectWalk {
public:
    ProjectWalk(BuildSystem& system, Builder* builder, int flags, bool batch, const QString& batchConfig)
        : m_system(system), m_builder(builder), m_flags(flags), m_batch(batch), m_batchConfig(batchConfig) {}

    bool run(ProjectElement* project, const QString& config) {
        enter(project, config);
        while (m_calls.size() > 1 || !m_calls.back().isDone)
            step();
        return m_calls.back().result;
    }

private:
    /// The build of one project in all configurations that it is to be built in.
    struct Call {
        ProjectElement* project;
        QString config;
        QStringList configs;
        qsizetype next = 0;  ///< of `configs`
        bool isOpen = false; ///< configs[next] has been begun
        bool isDone = false;
        QList<ProjectElement*> dependencies;
        qsizetype nextDependency = 0;
        bool result = false; ///< something was built

        const QString& current() const { return configs[next]; }
    };

    void enter(ProjectElement* project, const QString& config) {
        Call call{project, config, {config}, 0, false, false, {}, 0, false};
        if (m_batch)
            call.configs = projectSystem->getBatchBuildConfigurations(project, m_batchConfig);
        m_calls.push_back(std::move(call));
    }

    void step() {
        Call& call = m_calls.back();
        if (call.isDone)
            leave();
        else if (m_system.halted() || call.next == call.configs.size())
            call.isDone = true;
        else if (!call.isOpen)
            open(call);
        else if (call.nextDependency < call.dependencies.size())
            enter(call.dependencies[call.nextDependency++], call.current());
        else
            build(call);
    }

    void open(Call& call) {
        const Step step{call.project, call.current()};
        bool built = false;
        if (m_system.settingFor(call.project, Setting::build_exclude_from_build, call.current()) != "No" ||
            m_open.contains(step)) {
            ++call.next;
        } else if (m_system.justBuilt(call.project, call.current(), built)) {
            call.result |= built;
            ++call.next;
        } else {
            call.dependencies = projectSystem->directlyDependsOn(call.project, call.config);
            call.nextDependency = 0;
            call.isOpen = true;
            m_open.insert(step);
        }
    }

    /// All dependencies are done.
    void build(Call& call) {
        const QString& config = call.current();
        if (m_builder)
            m_system.displayProjectConfiguration(call.project, config, m_builder, m_flags);
        call.result |= m_system.platformBuild(call.project, config, m_builder, m_flags);
        m_system.recordBuilt(call.project, config, call.result);
        if (m_builder)
            m_builder->endGroup(nullptr);
        m_open.remove({call.project, config});
        call.isOpen = false;
        ++call.next;
    }

    void leave() {
        const bool result = m_calls.back().result;
        m_calls.pop_back();
        m_calls.back().result |= result;
    }

    BuildSystem& m_system;
    Builder* m_builder;
    const int m_flags;
    const bool m_batch;
    const QString m_batchConfig;
    std::vector<Call> m_calls;
    QSet<Step> m_open;
};

bool BuildSystem::projectBuild(ProjectElement* project, const QString& config, Builder* builder, int flags,
                               bool batch, const QString& batchConfig) {
    return ProjectWalk(*this, builder, flags, batch, batchConfig).run(project, config);
}

void BuildSystem::displayProjectConfiguration(ProjectElement* element, const QString& config,
                                              Builder* builder, int flags) {
    const char* verb = "Cleaning";
    if (flags & BuildFlags::Checking)
        verb = "Checking";
    else if (!(flags & BuildFlags::DeleteOutputs))
        verb = "Building";
    else if (!(flags & BuildFlags::RunNoSteps))
        verb = "Rebuilding";
    ProjectElement* project = projectSystem->projectContaining(element);
    const QString name = project ? project->getName() : element->getName();
    constexpr int group = 0x14000; // says to a builder with windows: a project
    builder->beginGroup(element,
                        QLatin1String(verb) + " \"" + name + "\" in configuration \"" + config + "\"", group);
}

bool BuildSystem::justBuilt(ProjectElement* project, const QString& config, bool& built) const {
    const auto found = m_built.constFind(Step(project, config));
    if (found == m_built.cend())
        return false;
    built = *found;
    return true;
}

/// Of several records of a project the first holds.
void BuildSystem::recordBuilt(const ProjectElement* element, const QString& config, bool built) {
    const Step step(element, config);
    if (!m_built.contains(step))
        m_built.insert(step, built);
}

void BuildSystem::carryOut(Builder* builder) {
    builder->doit();
    forgetFiles();
}

void BuildSystem::forgetFiles() {
    m_fileTimes.forget();
    files().forget();
}

// Up-to-date decisions.

void BuildSystem::because(const QString& reason, Builder* builder, bool quiet) {
    m_reason = reason;
    if (!quiet && builder)
        builder->message(reason);
}

bool BuildSystem::exists(const QString& directory, const QString& file, QString& fullPath, QDateTime& time,
                         Builder* builder, bool quiet) {
    fullPath = FileTimes::resolved(directory, file);
    const auto modified = m_fileTimes.modified(directory, viewOf(toBytes(file)), fullPath);
    if (!modified) {
        because(file + " does not exist.", builder, quiet);
        return false;
    }
    time = QDateTime::fromSecsSinceEpoch(*modified, Qt::UTC);
    return true;
}

bool BuildSystem::upToDate(const QString& directory, const QString& output, const QDateTime& time,
                           const QStringList& dependencies, Builder* builder, bool quiet) {
    const qint64 seconds = time.toSecsSinceEpoch();
    return std::all_of(dependencies.begin(), dependencies.end(), [&](const QString& dependency) {
        return isCurrent(directory, output, seconds, viewOf(toBytes(dependency)), builder, quiet);
    });
}

bool BuildSystem::upToDate(const QString& directory, const QString& output, const QDateTime& time,
                           const DependencyList& dependencies, Builder* builder, bool quiet) {
    const qint64 seconds = time.toSecsSinceEpoch();
    for (const std::string_view dependency : dependencies) {
        if (!isCurrent(directory, output, seconds, dependency, builder, quiet))
            return false;
    }
    return true;
}

bool BuildSystem::isCurrent(const QString& directory, const QString& output, qint64 time,
                            std::string_view dependency, Builder* builder, bool quiet) {
    const auto modified = m_fileTimes.modified(directory, dependency);
    if (modified && *modified <= time)
        return true;
    const QString name = toText(dependency);
    because(modified ? QString(name + " is newer than " + output + ".") : QString(name + " does not exist."),
            builder, quiet);
    return false;
}

// Settings.

namespace {

/// The macros of a node with those that a layer of the engine lays over them.
class ElementMacros : public MacroScope {
public:
    ElementMacros(BuildSystem& system, ProjectElement* element, const QString& config)
        : m_system(system), m_element(element), m_config(config), m_node(*projectSystem, element, config) {}

    std::optional<QString> value(const QString& name) const override {
        if (!m_added) {
            m_added.emplace();
            m_system.addMacros(m_element, m_config, *m_added);
        }
        const auto added = m_added->constFind(name);
        return added == m_added->cend() ? m_node.value(name) : std::optional(*added);
    }

private:
    BuildSystem& m_system;
    ProjectElement* m_element;
    const QString& m_config;
    NodeMacros m_node;
    mutable std::optional<MacroMap> m_added;
};

} // namespace

MacroMap BuildSystem::macros(ProjectElement* element, const QString& config) {
    MacroMap all = NodeMacros(*projectSystem, element, config).map();
    addMacros(element, config, all);
    return all;
}

void BuildSystem::addMacros(ProjectElement*, const QString&, MacroMap&) {}

QString BuildSystem::settingFor(ProjectElement* element, Setting setting, const QString& config) const {
    return projectSystem->settingFor(element, setting, config);
}

QString BuildSystem::settingForExpanded(ProjectElement* element, Setting setting, const QString& config) {
    return replaceMacros(element, settingFor(element, setting, config), config);
}

QString BuildSystem::replaceMacros(ProjectElement* element, const QString& text, const QString& config) {
    return MacroSystem::replaceMacros(ElementMacros(*this, element, config), text);
}

QStringList BuildSystem::replaceStringListMacros(ProjectElement* element, const QStringList& list,
                                                 const QString& config) {
    const ElementMacros scope(*this, element, config);
    QStringList expanded;
    expanded.reserve(list.size());
    for (const QString& entry : list)
        expanded.append(MacroSystem::replaceMacros(scope, entry));
    return expanded;
}

QStringList BuildSystem::stringListSetting(const QString& prefix, ProjectElement* element, Setting setting,
                                           const QString& config, bool expand, bool escaped) {
    const QString text = settingFor(element, setting, config);
    QStringList entries =
        escaped ? MacroSystem::stringListFromString(text, false) : text.split(u';', Qt::SkipEmptyParts);
    if (expand)
        entries = replaceStringListMacros(element, entries, config);
    for (QString& entry : entries)
        entry.prepend(prefix);
    return entries;
}

const PropertyClass* BuildSystem::findPropertyClass(const QString& saveName) const {
    const PropertyClass* added = m_propertyClasses.value(saveName);
    return added ? added : catalogueClass(saveName, projectSystem->frontDoor());
}

void BuildSystem::addPropertyClass(const PropertyClass* propertyClass) {
    m_propertyClasses.insert(propertyClass->saveName(), propertyClass);
}
