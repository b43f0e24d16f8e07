// Which projects and solutions there are and under which names, what depends on what and in which order that
// puts the projects, what a batch build covers, what a dynamic folder holds.

#include "foundation/FileAccess.h"
#include "macros/MacroSystem.h"
#include "project/ProjectSystem.h"
#include "project/Wildcard.h"

#include <QSet>
#include <algorithm>

ProjectElement* ProjectSystem::projectContaining(ProjectElement* element) const {
    return element ? element->nearest(ProjectElement::Project) : nullptr;
}

ProjectElement* ProjectSystem::solutionContaining(ProjectElement* element) const {
    return element ? element->nearest(ProjectElement::Solution) : nullptr;
}

const ElementMap& ProjectSystem::solutionProjects(ProjectElement* element) const {
    static const ElementMap none;
    if (element && element->is(ProjectElement::Solution))
        return element->projects();
    return m_solution ? m_solution->projects() : none;
}

ProjectElement* ProjectSystem::findProject(ProjectElement* element, const QString& name) const {
    for (ProjectElement* solution = solutionContaining(element); solution;
         solution = solutionContaining(solution->parent())) {
        if (ProjectElement* project = solution->projects().value(name))
            return project;
    }
    return nullptr;
}

ProjectElement* ProjectSystem::findFile(ProjectElement* parent, const QString& name) const {
    for (ProjectElement* child = parent->firstChild(); child; child = child->nextSibling()) {
        if (child->is(ProjectElement::File) && child->attribute("file_name") == name)
            return child;
    }
    return nullptr;
}

ProjectElement* ProjectSystem::findFolder(ProjectElement* parent, const QString& name) const {
    for (ProjectElement* child = parent->firstChild(); child; child = child->nextSibling()) {
        if (child->is(ProjectElement::Folder) && child->getName() == name)
            return child;
    }
    return nullptr;
}

QString ProjectSystem::projectDirectoryPath(ProjectElement* project) const {
    if (!project)
        return QString();
    project->checkDoFileStuff();
    return project->projectDir();
}

QString ProjectSystem::defaultFileLocation(ProjectElement* element) const {
    return projectDirectoryPath(projectContaining(element));
}

// Listing keys. A project stands in the map of its own solution under its name, and in that of every solution
// around under its name and the way to it. Likewise each solution stands in m_solutions under its way from
// every solution around. Of two with one key the later holds, in the order of these writes: for each child of
// a solution first all ways from that solution, then what lies within the child.

void ProjectSystem::updateProjectList() {
    m_solutions.clear();
    if (!m_solution)
        return;
    listSolution(m_solution.get());
    m_solutions.insert(m_solution->getName(), m_solution.get());
}

void ProjectSystem::listSolution(ProjectElement* solution) {
    ElementMap projects;
    for (ProjectElement* child = solution->firstChild(); child; child = child->nextSibling()) {
        if (child->is(ProjectElement::Project)) {
            projects.insert(child->getName(), child);
        } else if (child->is(ProjectElement::Solution)) {
            collect(projects, child->getName(), child);
            listSolution(child);
        }
    }
    solution->setProjects(std::move(projects));
    solution->updateInheritenceMap();
}

/// Enters what lies in `solution`, to which `prefix` is the way, in the map of a solution around it.
void ProjectSystem::collect(ElementMap& projects, const QString& prefix, ProjectElement* solution) {
    m_solutions.insert(prefix, solution);
    for (ProjectElement* child = solution->firstChild(); child; child = child->nextSibling()) {
        if (child->is(ProjectElement::Project))
            projects.insert(child->getName() + "(" + prefix + ")", child);
        else if (child->is(ProjectElement::Solution))
            collect(projects, prefix + "," + child->getName(), child);
    }
}

QList<ProjectElement*> ProjectSystem::directlyDependsOn(ProjectElement* project,
                                                        const QString& configName) const {
    QList<ProjectElement*> dependencies;
    const QString names = settingFor(project, Setting::project_dependencies, configName);
    for (const QString& name : names.split(u';', Qt::SkipEmptyParts)) {
        if (ProjectElement* dependency = findProject(project, name))
            dependencies.append(dependency);
    }
    return dependencies;
}

namespace {

/// The depth-first walk along dependencies, on a stack of its own: chains may be longer than the machine's
/// stack is deep. A project that is met again while its own dependencies are being walked is passed over.
class DependencyWalk {
public:
    DependencyWalk(const ProjectSystem& system, const QString& configName)
        : m_system(system), m_configName(configName) {}

    void visit(ProjectElement* project) {
        enter(project);
        while (!m_open.empty()) {
            Frame& frame = m_open.back();
            if (frame.next < frame.dependencies.size()) {
                enter(frame.dependencies[frame.next++]);
            } else {
                result.append(frame.project);
                m_open.pop_back();
            }
        }
    }
    QList<ProjectElement*> result;

private:
    struct Frame {
        ProjectElement* project;
        QList<ProjectElement*> dependencies;
        qsizetype next = 0;
    };

    void enter(ProjectElement* project) {
        if (m_met.contains(project))
            return;
        m_met.insert(project);
        m_open.push_back({project, m_system.directlyDependsOn(project, m_configName)});
    }

    const ProjectSystem& m_system;
    const QString& m_configName;
    QSet<ProjectElement*> m_met;
    std::vector<Frame> m_open;
};

} // namespace

QList<ProjectElement*> ProjectSystem::buildOrder(ProjectElement* element, const QString& configName) const {
    DependencyWalk walk(*this, configName);
    if (element && element->is(ProjectElement::Project)) {
        walk.visit(element);
    } else if (!element || element->is(ProjectElement::Solution)) {
        for (ProjectElement* project : solutionProjects(element))
            walk.visit(project);
    }
    return walk.result;
}

QStringList ProjectSystem::getBatchBuildConfigurations(ProjectElement* project,
                                                       const QString& configName) const {
    const QStringList patterns =
        settingFor(project, Setting::batch_build_configurations, configName).split(u';', Qt::SkipEmptyParts);
    const bool onlyCommon = patterns.size() == 1 && patterns[0] == "Common";
    const QStringList candidates =
        configurations(project, onlyCommon ? IncludeVisible | IncludeCommon : IncludeVisible);
    QStringList chosen;
    for (const QString& pattern : patterns) {
        const bool isWildcard = pattern.contains(u'*');
        for (const QString& candidate : candidates) {
            if (isWildcard ? !wildcardMatches(pattern, candidate, Qt::CaseSensitive)
                           : pattern.toUpper() != candidate.toUpper())
                continue;
            chosen.append(candidate);
            if (!isWildcard)
                break;
        }
    }
    return chosen;
}

namespace {

/// The patterns of a name filter, separated by ";" or else by blanks.
QStringList filterPatterns(const QString& filter) {
    QStringList patterns = filter.split(filter.contains(u';') ? u';' : u' ', Qt::SkipEmptyParts);
    for (QString& pattern : patterns)
        pattern = pattern.trimmed();
    return patterns;
}

/// The plain files of a directory that match the filter, by name, ignoring case; hidden ones are left out.
QStringList matchingFiles(const QString& directory, const QString& filter) {
    const QStringList patterns = filterPatterns(filter);
    QStringList names;
    for (const QString& name : files().list(directory)) {
        const bool matches =
            patterns.isEmpty() || std::any_of(patterns.begin(), patterns.end(), [&](const QString& pattern) {
                return wildcardMatches(pattern, name, Qt::CaseInsensitive);
            });
        if (matches && !name.startsWith(u'.') &&
            files().status(directory + "/" + name).kind == FileStatus::File)
            names.append(name);
    }
    std::sort(names.begin(), names.end(), [](const QString& a, const QString& b) {
        const int order = a.compare(b, Qt::CaseInsensitive);
        return order != 0 ? order < 0 : a < b;
    });
    return names;
}

} // namespace

void ProjectSystem::populateDynamicFolder(ProjectElement* folder) {
    const QString path = folder->attribute("path");
    QString directory;
    if (path.startsWith(u'$')) {
        directory = MacroSystem::replaceMacros(macroSystem.globalMacros(true), path);
    } else {
        const QString base = defaultFileLocation(folder);
        directory = (base.isNull() ? folder->solutionDirectory() : base) + "/" + path;
    }
    QSet<QString> present;
    for (ProjectElement* child = folder->firstChild(); child; child = child->nextSibling()) {
        if (child->is(ProjectElement::File))
            present.insert(child->attribute("file_name"));
    }
    for (const QString& name : matchingFiles(directory, folder->attribute("filter"))) {
        const QString fileName = path + "/" + name;
        if (!present.contains(fileName))
            addFile(folder, fileName, false);
    }
}
