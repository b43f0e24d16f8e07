// What each node of the tree needs: its kind of step, its output, and the inputs that are gathered from
// others.

#include "build/StandardBuildSystem.h"

#include "build/Builder.h"
#include "build/BuiltinCommands.h"
#include "build/Words.h"
#include "foundation/FileAccess.h"
#include "foundation/Text.h"
#include "macros/Path.h"
#include "macros/QTx.h"
#include "memorymap/MemoryMapOpenFiles.h"
#include "project/ProjectSystem.h"
#include "properties/SettingColumns.h"

#include <span>

StandardBuildSystem* standardBuildSystem = nullptr;

StandardBuildSystem::StandardBuildSystem()
    : m_options(loadBuildOptions(QTx::applicationDirectory() + "/build_options.xml")) {
    standardBuildSystem = this;
    for (const auto& propertyClass : m_options.classes)
        addPropertyClass(propertyClass.get());
}

StandardBuildSystem::~StandardBuildSystem() {
    if (standardBuildSystem == this)
        standardBuildSystem = nullptr;
}

bool StandardBuildSystem::builtinCommand(const QString& directory, QStringList& command, QString& errorText) {
    return BuiltinCommands::builtinCommand(directory, command, errorText);
}

// Actions.

namespace {

struct ActionRow {
    const char* type;
    StandardBuildSystem::BuildAction action;
};

constexpr ActionRow projectActions[] = {
    {"Library", StandardBuildSystem::Archive},
    {"Object file", StandardBuildSystem::NoAction},
    {"Staging", StandardBuildSystem::Stage},
    {"Combining", StandardBuildSystem::Combine},
    {"Externally Built Executable", StandardBuildSystem::External},
};

constexpr ActionRow fileActions[] = {
    {"C", StandardBuildSystem::CompileC},          {"C++", StandardBuildSystem::CompileCpp},
    {"Basic", StandardBuildSystem::CompileBasic},  {"Forth", StandardBuildSystem::CompileForth},
    {"Assembly", StandardBuildSystem::Assemble},   {"Object file", StandardBuildSystem::External},
    {"Executable", StandardBuildSystem::External}, {"Library", StandardBuildSystem::External},
};

StandardBuildSystem::BuildAction actionOf(std::span<const ActionRow> rows, const QString& type,
                                          StandardBuildSystem::BuildAction otherwise) {
    for (const ActionRow& row : rows) {
        if (type == QLatin1String(row.type))
            return row.action;
    }
    return otherwise;
}

} // namespace

StandardBuildSystem::BuildAction StandardBuildSystem::buildAction(ProjectElement* element,
                                                                  const QString& config) {
    return config == m_knownConfig ? known(element).action : findAction(element, config);
}

StandardBuildSystem::KnownNode& StandardBuildSystem::known(ProjectElement* element) {
    const auto found = m_known.find(element);
    return found != m_known.end() ? *found
                                  : *m_known.insert(element, {findAction(element, m_knownConfig), {}});
}

unsigned StandardBuildSystem::stepOf(BuildAction action) {
    switch (action) {
    case CompileC:
        return SettingTable::CompileC;
    case CompileCpp:
        return SettingTable::CompileCpp;
    case CompileForth:
        return SettingTable::CompileForth;
    case CompileBasic:
        return SettingTable::CompileBasic;
    case Assemble:
        return SettingTable::Assemble;
    case Link:
        return SettingTable::Link;
    case Archive:
        return SettingTable::Archive;
    case Stage:
        return SettingTable::Stage;
    case Combine:
        return SettingTable::Combine;
    case NoAction:
    case Excluded:
    case External:
        return 0;
    }
    return 0;
}

StandardBuildSystem::BuildAction StandardBuildSystem::findAction(ProjectElement* element,
                                                                 const QString& config) const {
    if (element->is(ProjectElement::Project))
        return actionOf(projectActions, projectSystem->getProjectType(element), Link);
    if (!element->is(ProjectElement::File))
        return NoAction;
    if (settingFor(element, Setting::build_exclude_from_build, config) == QLatin1String("Yes"))
        return Excluded;
    if (ProjectElement* project = projectSystem->projectContaining(element)) {
        const QString type = projectSystem->getProjectType(project);
        if (type == QLatin1String("Staging"))
            return Stage;
        if (type == QLatin1String("Combining"))
            return NoAction;
    }
    return actionOf(fileActions, projectSystem->getFileType(element), NoAction);
}

bool StandardBuildSystem::canLoad(ProjectElement* element, const QString& config) {
    if (!element || !element->is(ProjectElement::Project))
        return false;
    const QString type = projectSystem->getProjectType(element);
    if (type == "Externally Built Executable")
        return !settingFor(element, Setting::external_build_file_name, config).isEmpty();
    return type == "Executable";
}

bool StandardBuildSystem::canCompile(ProjectElement* element, const QString& config) {
    const BuildAction action = buildAction(element, config);
    return action == Excluded || isSource(action) || action == Stage;
}

bool StandardBuildSystem::mustCompile(ProjectElement* element, const QString& config) {
    const BuildAction action = buildAction(element, config);
    return isSource(action) || action == Stage;
}

// Outputs.

QString StandardBuildSystem::output(ProjectElement* element, const QString& config, bool absolute) {
    return output(buildAction(element, config), element, config, absolute);
}

QString StandardBuildSystem::output(BuildAction action, ProjectElement* element, const QString& config,
                                    bool absolute) {
    const QString text = findOutput(action, element, config);
    if (!absolute || text.isEmpty() || Path::isAbsolute(text))
        return text;
    return projectSystem->projectDirectoryPath(projectSystem->projectContaining(element)) + "/" + text;
}

/// The output as its setting names it; null if the step makes none.
QString StandardBuildSystem::findOutput(BuildAction action, ProjectElement* element, const QString& config) {
    KnownNode* node = config == m_knownConfig ? &known(element) : nullptr;
    if (!node || node->action != action)
        return replaceMacros(element, outputText(action, element, config), config);
    if (!node->output)
        node->output = replaceMacros(element, outputText(action, element, config), config);
    return *node->output;
}

/// The output as its setting writes it; null if the step makes none.
QString StandardBuildSystem::outputText(BuildAction action, ProjectElement* element,
                                        const QString& config) const {
    const bool isFile = element->is(ProjectElement::File);
    switch (action) {
    case CompileC:
    case CompileCpp:
    case CompileForth:
    case CompileBasic:
    case Assemble:
        return settingFor(element, Setting::build_object_file_name, config);
    case External:
        if (!isFile)
            return settingFor(element, Setting::external_build_file_name, config);
        element->checkDoFileStuff();
        return element->relativeName();
    case Link:
        return settingFor(element, Setting::build_output_file_name, config);
    case Archive:
        return settingFor(element, Setting::build_library_file_name, config);
    case Stage:
        return isFile ? settingFor(element, Setting::stage_output_filepath, config) : QString();
    case Combine:
        return isFile ? QString() : settingFor(element, Setting::combine_output_filepath, config);
    case NoAction:
    case Excluded:
        break;
    }
    return QString();
}

void StandardBuildSystem::cleanFile(const QString& path, bool quiet, Builder* builder) {
    // A link that leads nowhere is no file that was there, but goes all the same.
    const bool wasThere = files().status(path).exists();
    const bool removed = files().remove(path) == 0;
    forgetFiles();
    if (quiet || !builder || !wasThere)
        return;
    if (removed)
        builder->note("Remove " + Path::toOsPath(path));
    else
        builder->error("Cannot remove " + Path::toOsPath(path));
}

// Inputs.

bool StandardBuildSystem::isIncluded(ProjectElement* element, const QString& config) const {
    return settingFor(element, Setting::build_exclude_from_build, config) == "No";
}

int StandardBuildSystem::countJobs(ProjectElement* element, const QString& config, int flags) {
    const BuildAction action = buildAction(element, config);
    if (action == External || action == Excluded || (flags & BuildFlags::ThisNodeOnly))
        return 0;
    int jobs = action != NoAction;
    for (ProjectElement* child = element->firstChild(); child && !halted(); child = child->nextSibling()) {
        if (!child->is(ProjectElement::Configuration))
            jobs += countJobs(child, config, flags);
    }
    return jobs;
}

void StandardBuildSystem::findOutputs(ProjectElement* first, const QString& config, QStringList& list,
                                      bool absolute) {
    const ProjectElement* parent = first ? first->parent() : nullptr;
    for (ProjectElement* node = first; node; node = node->nextInTree(parent)) {
        if (node->is(ProjectElement::Configuration))
            continue;
        const QString file = output(node, config, absolute);
        if (!file.isEmpty())
            list.append(file);
    }
}

void StandardBuildSystem::findRelativeInputs(ProjectElement* first, const QString& config,
                                             QStringList& list) {
    const ProjectElement* parent = first ? first->parent() : nullptr;
    for (ProjectElement* node = first; node; node = node->nextInTree(parent)) {
        if (!node->is(ProjectElement::File) || !isIncluded(node, config))
            continue;
        node->checkDoFileStuff();
        list.append(node->relativeName());
    }
}

ProjectElement* StandardBuildSystem::findFileOfType(ProjectElement* element, const QString& config,
                                                    const QString& type) {
    for (ProjectElement* node = element; node; node = node->nextInTree(element)) {
        if (node->is(ProjectElement::File) && projectSystem->getFileType(node) == type &&
            isIncluded(node, config))
            return node;
    }
    return nullptr;
}

/// The outputs under a project and those of the projects that it is linked with.
void StandardBuildSystem::appendLinkInputs(ProjectElement* project,
                                           const QList<ProjectElement*>& dependencies, const QString& config,
                                           bool absolute, QStringList& list) {
    findOutputs(project->firstChild(), config, list, absolute);
    for (ProjectElement* dependency : dependencies) {
        if (!isIncluded(dependency, config))
            continue;
        const QString type = projectSystem->getProjectType(dependency);
        if (type == "Library")
            list.append(output(Archive, dependency, config, true));
        else if (type == "Object file")
            findOutputs(dependency->firstChild(), config, list, true);
    }
}

bool StandardBuildSystem::useMemoryMapFileForLink(ProjectElement* element, const QString& config,
                                                  QString& path) {
    return linkerFile(element, config, "Memory Map", Setting::linker_memory_map_file, path);
}

bool StandardBuildSystem::useSectionPlacementFileForLink(ProjectElement* element, const QString& config,
                                                         QString& path) {
    return linkerFile(element, config, "Section Placement", Setting::linker_section_placement_file, path);
}

/// A file in the project, which need not be there, wins over the setting, whose file must.
bool StandardBuildSystem::linkerFile(ProjectElement* element, const QString& config, const QString& type,
                                     Setting setting, QString& path) {
    if (ProjectElement* file = findFileOfType(element, config, type)) {
        file->checkDoFileStuff();
        path = file->path().filePath();
        return true;
    }
    path = settingFor(element, setting, config);
    if (path.isEmpty())
        return false;
    path = replaceMacros(element, path, config);
    if (files().status(path).exists())
        return true;
    path = projectSystem->projectDirectoryPath(projectSystem->projectContaining(element)) + "/" + path;
    return files().status(path).exists();
}

std::shared_ptr<MemoryMap> StandardBuildSystem::getMemoryMapFileForLink(ProjectElement* element,
                                                                        const QString& config,
                                                                        const QString& path) const {
    const QString macros = settingFor(element, Setting::linker_memory_map_macros, config);
    return memoryMapOpenFiles.getMemoryMapFile(path, macros, true);
}

std::shared_ptr<MemoryMap> StandardBuildSystem::getSectionPlacementFileForLink(ProjectElement* element,
                                                                               const QString& config,
                                                                               const QString& path) const {
    const QString macros = settingFor(element, Setting::linker_section_placement_macros, config);
    return memoryMapOpenFiles.getMemoryMapFile(path, macros, true);
}

/// The files that say where a link puts its parts: a script, or else memory map and section placement.
void StandardBuildSystem::appendLinkerFiles(ProjectElement* project, const QString& config,
                                            QStringList& list) {
    if (ProjectElement* script = findFileOfType(project, config, "Linker Script")) {
        script->checkDoFileStuff();
        list.append(script->path().osPathQString());
        return;
    }
    QString path;
    if (useMemoryMapFileForLink(project, config, path))
        list.append(path);
    if (useSectionPlacementFileForLink(project, config, path))
        list.append(path);
}

// For callers around a build.

void StandardBuildSystem::getDependencies(ProjectElement* element, const QString& config, QStringList& list) {
    const BuildAction action = buildAction(element, config);
    const QString directory = projectSystem->projectDirectoryPath(projectSystem->projectContaining(element));
    QStringList found;
    if (isSource(action)) {
        const QString full = output(action, element, config, true);
        element->checkDoFileStuff();
        if (files().status(full).exists()) {
            const DependencyList dependencies = sourceDependencies(element, full);
            if (!dependencies.isEmpty())
                m_dependencyCache.insert(full, dependencies);
            for (const std::string_view dependency : dependencies)
                found.append(toText(dependency));
        }
        if (found.isEmpty()) {
            found.append(element->path().canonicalPathQString());
        }
    } else if (action == Link) {
        appendLinkInputs(element, projectSystem->buildOrder(element, config), config, true, found);
        appendLinkerFiles(element, config, found);
        found += stringListSetting("", element, Setting::linker_additional_files, config, true, false);
    } else if (action == Archive) {
        findOutputs(element->firstChild(), config, found, true);
    } else if (action == Stage && element->is(ProjectElement::File)) {
        element->checkDoFileStuff();
        found.append(element->relativeName());
    } else if (action == Combine) {
        findRelativeInputs(element->firstChild(), config, found);
    }
    for (const QString& file : found)
        list.append(getAbsPath(directory, file));
}

QString StandardBuildSystem::findIncludeFile(bool, const QString& name, ProjectElement* element,
                                             const QString& config) {
    const auto isThere = [](const QString& path) {
        return files().status(path).exists() && isAccessible(path, AccessMode::Read);
    };
    if (isThere(name))
        return name;
    element->checkDoFileStuff();
    const QString fileDirectory = element->path().dirPath(true);
    const QString projectDirectory =
        projectSystem->projectDirectoryPath(projectSystem->projectContaining(element));
    QStringList directories =
        stringListSetting("", element, Setting::c_user_include_directories, config, true, true);
    directories += stringListSetting("", element, Setting::c_system_include_directories, config, true, true);
    for (const QString& directory : directories) {
        const QString inDirectory = directory + "/" + name;
        for (const QString& path : {QString(fileDirectory + "/" + inDirectory), inDirectory,
                                    QString(projectDirectory + "/" + inDirectory)}) {
            if (isThere(path))
                return path;
        }
    }
    return QString();
}
