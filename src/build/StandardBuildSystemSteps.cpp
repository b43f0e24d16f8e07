// The steps of a build, one function for each kind. They share a shape: name the output and look whether it
// is there; find out whether it is up to date, and if so end; delete it where that is asked for; run the
// commands. A step that was due counts as built even where none of its commands ran.

#include "build/Builder.h"
#include "build/StandardBuildSystem.h"
#include "build/StepListener.h"
#include "build/Words.h"
#include "foundation/FileAccess.h"
#include "macros/MacroSystem.h"
#include "macros/Path.h"
#include "project/ProjectSystem.h"
#include "properties/PropertyValueGroups.h"

#include <QScopeGuard>

/// Why a node is due whatever its files say: the first cause that was met.
struct StandardBuildSystem::Force {
    enum Cause { None, Asked, Always, Child, Dependency };

    Cause cause = None;
    ProjectElement* by = nullptr; ///< what was built

    explicit operator bool() const { return cause != None; }
    void add(Cause added, ProjectElement* builtElement) {
        if (cause == None)
            *this = {added, builtElement};
    }
    QString reason() const {
        switch (cause) {
        case None:
            break;
        case Asked:
            return "Everything is to be rebuilt.";
        case Always:
            return "It is always rebuilt, as build_always_rebuild says.";
        case Child:
        case Dependency:
            return by->getName() + " is built.";
        }
        return QString();
    }
};

/// One step of a node.
class StandardBuildSystem::Step {
public:
    Step(StandardBuildSystem& system, ProjectElement* element, const QString& config, BuildAction action,
         Builder* builder, int flags, const Force& force)
        : m_system(system),
          m_element(element),
          m_config(config),
          m_action(action),
          m_builder(builder),
          m_flags(flags),
          m_quiet(flags & BuildFlags::Quiet),
          m_force(force) {}

    /// True if the step was due, or if the node passes on that something under it was built.
    bool run();

private:
    bool source();
    bool external();
    bool externalProject();
    bool link();
    bool archive();
    bool stageProject();
    bool stageFile();
    bool combine();

    void begin();
    void look();
    template<typename Names = QStringList>
    bool filesCurrent(const Names& dependencies);
    bool commandCurrent();
    bool sourceCurrent();
    bool upToDate(const char* end = "' is up to date");
    bool due();
    bool due(const QString& reason);

    QString expanded(Setting setting) { return m_system.settingForExpanded(m_element, setting, m_config); }
    void userCommand(const char* caption, Setting command, Setting directory, const MacroMap& further = {});
    void plainCommand(const char* caption, const QString& text, bool writesOutput);
    void createCommand(const QStringList& inputs);
    bool makeOutput(const char* caption, Setting command, Setting directory, const MacroMap& macros);
    void setMode(Setting readOnly);
    bool updatePackage(const MacroMap& macros, bool replace);

    StandardBuildSystem& m_system;
    ProjectElement* m_element;
    const QString& m_config;
    const BuildAction m_action;
    Builder* m_builder;
    const int m_flags;
    const bool m_quiet;
    Force m_force;

    QString m_output;     ///< as its setting names it
    QString m_fullOutput; ///< its full path
    QDateTime m_time;     ///< when it was made
    bool m_exists = false;
};

// The walk.

bool StandardBuildSystem::platformBuild(ProjectElement* element, const QString& config, Builder* builder,
                                        int flags) {
    m_knownConfig = config;
    bool isThrough = false;
    const auto end = qScopeGuard([this, &isThrough] {
        m_unfinished.end(isThrough);
        m_knownConfig = QString();
        m_known.clear();
    });
    if (element->is(ProjectElement::Project) && builder)
        builder->setTotalSteps(element, countJobs(element, config, flags));
    m_projectDirectory = projectSystem->projectDirectoryPath(projectSystem->projectContaining(element));
    const QString groupFile = settingForExpanded(element, Setting::property_groups_file_path, config);
    if (!groupFile.isEmpty())
        propertyValueGroups.setGroupFile(groupFile);
    if (!(flags & (BuildFlags::Force | BuildFlags::ThisNodeOnly)))
        expectObjects(element, config);
    const bool result = platformBuild1(element, config, builder, flags);
    isThrough = !halted();
    return result;
}

/// Lets the objects be fetched, which will all be looked at in this order.
void StandardBuildSystem::expectObjects(ProjectElement* element, const QString& config) {
    QStringList names;
    for (ProjectElement* node = element; node; node = node->nextInTree(element)) {
        if (const BuildAction action = buildAction(node, config); isSource(action))
            names.append(output(action, node, config, false));
    }
    files().expect(m_projectDirectory, names);
}

bool StandardBuildSystem::platformBuild1(ProjectElement* element, const QString& config, Builder* builder,
                                         int flags) {
    if (builder)
        builder->idle();
    Force force;
    if (flags & BuildFlags::Force)
        force.add(Force::Asked, nullptr);
    else if (settingFor(element, Setting::build_always_rebuild, config) == QLatin1String("Yes"))
        force.add(Force::Always, nullptr);
    const BuildAction action = buildAction(element, config);
    if (action != External && !(flags & BuildFlags::ThisNodeOnly)) {
        for (ProjectElement* child = element->firstChild(); child && !halted();
             child = child->nextSibling()) {
            // A configuration has no step, and what it says of rebuilding its node has said already.
            if (child->is(ProjectElement::Configuration))
                continue;
            m_lastDue = nullptr;
            if (platformBuild1(child, config, builder, flags))
                force.add(Force::Child, m_lastDue ? m_lastDue : child);
        }
    }
    if (force.by)
        m_lastDue = force.by;
    return !halted() && Step(*this, element, config, action, builder, flags, force).run();
}

void StandardBuildSystem::reportDue(ProjectElement* element, const QString& config, const QString& output,
                                    const QString& reason) {
    m_lastDue = element;
    if (stepListener())
        stepListener()->stepDue(element, config, output, reason);
}

bool StandardBuildSystem::Step::run() {
    switch (m_action) {
    case CompileC:
    case CompileCpp:
    case CompileForth:
    case CompileBasic:
    case Assemble:
        return source();
    case External:
        return external();
    case Link:
        return link();
    case Archive:
        return archive();
    case Stage:
        return m_element->is(ProjectElement::Project) ? stageProject() : stageFile();
    case Combine:
        return combine();
    case NoAction:
    case Excluded:
        break;
    }
    return bool(m_force);
}

// What steps share.

void StandardBuildSystem::Step::begin() {
    if (m_builder)
        m_builder->nextStep();
    m_output = m_system.output(m_action, m_element, m_config, false);
}

void StandardBuildSystem::Step::look() {
    m_exists =
        m_system.exists(m_system.m_projectDirectory, m_output, m_fullOutput, m_time, m_builder, m_quiet);
    if (m_exists && m_system.m_unfinished.isUnfinished(m_fullOutput, m_time.toSecsSinceEpoch())) {
        m_system.because(m_output + " was not finished.", m_builder, m_quiet);
        m_exists = false;
    }
}

template<typename Names>
bool StandardBuildSystem::Step::filesCurrent(const Names& dependencies) {
    return m_system.upToDate(m_system.m_projectDirectory, m_output, m_time, dependencies, m_builder, m_quiet);
}

bool StandardBuildSystem::Step::commandCurrent() {
    return m_system.commandUpToDate(m_element, m_config, m_time, m_action, m_builder, m_quiet);
}

/// The end of a step that need not run.
bool StandardBuildSystem::Step::upToDate(const char* end) {
    if (!m_quiet && m_builder)
        m_builder->success("'" + m_output + QLatin1String(end));
    return false;
}

/// Tells that the step is due, and deletes its output where that is asked for. Whether its commands are to
/// run.
bool StandardBuildSystem::Step::due() {
    const bool isTold = m_exists && m_force; // else the line that decided has told
    return due(isTold ? m_force.reason() : m_system.reason());
}

bool StandardBuildSystem::Step::due(const QString& reason) {
    m_system.reportDue(m_element, m_config, m_output, reason);
    if ((m_flags & BuildFlags::DeleteOutputs) && !m_output.isEmpty())
        m_system.cleanFile(m_fullOutput, m_quiet, m_builder);
    m_system.m_unfinished.setOutput(m_fullOutput);
    return m_builder && !(m_flags & BuildFlags::RunNoSteps);
}

/// `further` holds macros that are known to this command alone.
void StandardBuildSystem::Step::userCommand(const char* caption, Setting command, Setting directory,
                                            const MacroMap& further) {
    const QString text = expanded(command);
    const QStringList words = dequotify(further.isEmpty() ? text : MacroSystem::replaceMacros(further, text));
    if (words.isEmpty())
        return;
    m_builder->init();
    m_builder->setDirectory(expanded(directory));
    m_builder->beginGroup(m_element, caption, 0);
    m_builder->setCommand(words);
    m_system.carryOut(m_builder);
    m_builder->endGroup(m_element);
}

void StandardBuildSystem::Step::createCommand(const QStringList& inputs) {
    m_system.createCommandFor(m_element, m_config, m_action, m_output, m_fullOutput, inputs, m_builder,
                              m_quiet, m_flags & BuildFlags::DeleteOutputs);
}

/// A user command that makes the output. False if it failed, which leaves its group open.
bool StandardBuildSystem::Step::makeOutput(const char* caption, Setting command, Setting directory,
                                           const MacroMap& macros) {
    const QStringList words = dequotify(MacroSystem::replaceMacros(macros, expanded(command)));
    m_builder->beginGroup(m_element, caption + m_element->getName(), 0);
    m_builder->init();
    m_builder->setDirectory(expanded(directory));
    m_builder->setCommand(words);
    m_builder->setOutputFiles({m_fullOutput});
    if (!words.isEmpty())
        m_system.carryOut(m_builder);
    return !m_system.halted();
}

void StandardBuildSystem::Step::setMode(Setting readOnly) {
    const bool isReadOnly = m_system.settingFor(m_element, readOnly, m_config) == "Yes";
    m_builder->setCommand({"chmod", isReadOnly ? "-w" : "+w", m_fullOutput});
    m_system.carryOut(m_builder);
}

// Source files.

bool StandardBuildSystem::Step::source() {
    begin();
    look();
    if (m_exists && !m_force && sourceCurrent())
        return upToDate();
    m_system.m_dependencyCache.remove(m_fullOutput);
    if (!due())
        return true;
    userCommand("Pre-compile command ", Setting::compile_pre_build_command,
                Setting::compile_pre_build_command_wd);
    m_element->checkDoFileStuff();
    createCommand({m_element->relativeName()});
    if (!m_system.halted())
        userCommand("Post-compile command ", Setting::compile_post_build_command,
                    Setting::compile_post_build_command_wd, {{"TargetPath", m_fullOutput}});
    return true;
}

bool StandardBuildSystem::Step::sourceCurrent() {
    const DependencyList dependencies = m_system.sourceDependencies(m_element, m_fullOutput);
    const bool isCurrent = dependencies.isEmpty() ? filesCurrent({m_element->path().canonicalPathQString()})
                                                  : filesCurrent(dependencies);
    if (!isCurrent || !commandCurrent())
        return false;
    m_system.m_dependencyCache.insert(m_fullOutput, dependencies);
    return true;
}

/// What an object file was made from. As long as nothing tells, the list is empty, and the source file alone
/// counts.
DependencyList StandardBuildSystem::sourceDependencies(ProjectElement* element, const QString& full) {
    element->checkDoFileStuff();
    const auto known = m_dependencyCache.constFind(full);
    return known != m_dependencyCache.cend()
               ? *known
               : getObjectFileDependencies(m_projectDirectory, element->relativeName(), full);
}

// Projects that others build.

bool StandardBuildSystem::Step::external() {
    // A file of this kind goes into a link, and none is made.
    return m_element->is(ProjectElement::Project) && m_builder ? externalProject() : bool(m_force);
}

bool StandardBuildSystem::Step::externalProject() {
    m_output = m_system.output(m_action, m_element, m_config, true);
    m_system.reportDue(m_element, m_config, m_output, "Its build command decides what to do.");
    m_builder->init();
    m_builder->setDirectory(projectSystem->projectDirectoryPath(m_element));
    if (m_flags & BuildFlags::DeleteOutputs)
        plainCommand("Running Clean command ", expanded(Setting::external_clean_command), false);
    if (!m_system.halted() && !(m_flags & BuildFlags::RunNoSteps))
        plainCommand("Running Build command ", expanded(Setting::external_build_command), true);
    return true;
}

/// A command without quotes of any meaning.
void StandardBuildSystem::Step::plainCommand(const char* caption, const QString& text, bool writesOutput) {
    const QStringList words = text.split(u' ', Qt::SkipEmptyParts);
    if (words.isEmpty())
        return;
    m_builder->beginGroup(m_element, caption + m_element->getName(), 0);
    m_builder->setCommand(words);
    if (writesOutput && !m_output.isEmpty())
        m_builder->setOutputFiles({m_output});
    m_system.carryOut(m_builder);
    m_builder->endGroup(m_element);
}

// Executables and libraries.

bool StandardBuildSystem::Step::link() {
    begin();
    const auto dependencies = projectSystem->directlyDependsOn(m_element, m_config);
    QStringList inputs;
    m_system.appendLinkInputs(m_element, dependencies, m_config, false, inputs);
    for (ProjectElement* dependency : dependencies) {
        bool built = false;
        if (m_system.isIncluded(dependency, m_config) && m_system.justBuilt(dependency, m_config, built) &&
            built)
            m_force.add(Force::Dependency, dependency);
    }
    inputs +=
        m_system.stringListSetting("", m_element, Setting::linker_additional_files, m_config, true, false);
    look();
    if (m_exists && !m_force) {
        QStringList files = inputs;
        m_system.appendLinkerFiles(m_element, m_config, files);
        if (filesCurrent(files) && commandCurrent() &&
            m_system.additionalOutputFileUpToDate(m_element, m_config, m_fullOutput, m_builder, m_quiet) &&
            m_system.mapOutputFileUpToDate(m_element, m_config, m_fullOutput, m_builder, m_quiet))
            return upToDate();
    }
    if (!due())
        return true;
    userCommand("Pre-link command ", Setting::linker_pre_build_command, Setting::linker_pre_build_command_wd);
    createCommand(inputs);
    if (!m_system.halted())
        userCommand("Post-link command ", Setting::linker_post_build_command,
                    Setting::linker_post_build_command_wd, {{"TargetPath", m_fullOutput}});
    return true;
}

bool StandardBuildSystem::Step::archive() {
    begin();
    QStringList inputs;
    m_system.findOutputs(m_element->firstChild(), m_config, inputs, false);
    look();
    if (m_exists && !m_force && filesCurrent(inputs) && commandCurrent())
        return upToDate();
    if (due())
        createCommand(inputs);
    return true;
}

// Staging and combining.

bool StandardBuildSystem::Step::stageProject() {
    if (!m_force || expanded(Setting::stage_post_build_command).isEmpty())
        return false;
    if (due(m_force.reason()))
        userCommand("Post-stage command ", Setting::stage_post_build_command,
                    Setting::stage_post_build_command_wd);
    return true;
}

bool StandardBuildSystem::Step::stageFile() {
    begin();
    m_element->checkDoFileStuff();
    const QString input = FileTimes::resolved(m_system.m_projectDirectory, m_element->relativeName());
    look();
    const auto macros = [this] {
        const QString tarnDirectory = m_system.replaceMacros(m_element, "$(TarnDir)", m_config);
        return MacroMap{
            {"StageOutputFilePath", m_fullOutput},
            {"StageTarnDirRelativeOutputFilePath", Path::relativeFilePath(tarnDirectory, m_fullOutput)}};
    };
    if (m_exists && !m_force && filesCurrent({input}) && commandCurrent()) {
        upToDate("' is up to date.");
        if (!(m_flags & BuildFlags::RunNoSteps))
            updatePackage(macros(), false);
        return false;
    }
    if (!due())
        return true;
    const MacroMap known = macros();
    if (!makeOutput("Copying ", Setting::stage_command, Setting::stage_command_wd, known))
        return false;
    setMode(Setting::stage_set_readonly);
    // A command behind the staging may use the package: it runs once more when that is whole.
    if (!updatePackage(known, true) && !expanded(Setting::stage_post_build_command).isEmpty())
        m_system.m_unfinished.spoil();
    m_builder->endGroup(m_element);
    return true;
}

namespace {

/// What happens to a package goes to the user.
class PackageMessages : public PackageListener {
public:
    explicit PackageMessages(Builder& builder) : m_builder(builder) {}
    void success(const QString& text) override { m_builder.success(text); }
    void message(const QString& text) override { m_builder.message(text); }

private:
    Builder& m_builder;
};

} // namespace

/// False if there is a package that could not be brought up to date.
bool StandardBuildSystem::Step::updatePackage(const MacroMap& macros, bool replace) {
    const QString package = expanded(Setting::stage_package_filepath);
    if (package.isEmpty() || !m_builder)
        return true;
    const QString member = MacroSystem::replaceMacros(macros, expanded(Setting::stage_package_member_name));
    if (member.isEmpty())
        return true;
    PackageMessages messages(*m_builder);
    const bool isDone = m_system.m_packages.addToRemoveFromArchive(
        m_system.m_projectDirectory, package, member, m_fullOutput, &messages, m_quiet, replace);
    m_system.forgetFiles();
    return isDone;
}

bool StandardBuildSystem::Step::combine() {
    begin();
    QStringList inputs;
    m_system.findRelativeInputs(m_element->firstChild(), m_config, inputs);
    look();
    if (m_exists && !m_force && filesCurrent(inputs) && commandCurrent())
        return upToDate();
    if (!due())
        return true;
    const MacroMap macros{{"CombiningOutputFilePath", m_fullOutput},
                          {"CombiningRelInputPaths", inputs.join(u' ')}};
    if (!makeOutput("Combining ", Setting::combine_command, Setting::combine_command_wd, macros))
        return false;
    setMode(Setting::combine_set_readonly);
    m_builder->endGroup(m_element);
    return true;
}
