// Making a tree by hand: a new solution and project, configurations, folders, files, settings.

#include "project/ProjectSystem.h"

ProjectSystem* projectSystem = nullptr;

ProjectElement* ProjectSystem::createSolution(const QString& name, const QString& directory) {
    clear();
    m_solution = std::make_unique<ProjectElement>(ProjectElement::Solution);
    m_solution->setAttribute("Name", name, false);
    m_solution->setAttribute("version", "2", false);
    const QString path = directory + "/" + name + ".vkp";
    m_solution->setSolutionFile(path, QDateTime());
    Path::ensureDirExists(path);
    return m_solution.get();
}

ProjectElement* ProjectSystem::createProject(ProjectElement* parent, const QString& name,
                                             const QString& directory, const QString& type) {
    ProjectElement* project = parent->appendChild(std::make_unique<ProjectElement>(ProjectElement::Project));
    project->setAttribute("Name", name, false);
    updateProjectList();
    createConfiguration(project, "Common", false);
    parent->checkDoFileStuff();
    QString way;
    const bool found = Path::relativeDirPath(parent->path().dirPath(true), directory, way);
    setProperty(project, propertyClass(Setting::project_directory), "Common", found ? way : directory, false);
    setProperty(project, propertyClass(Setting::project_type), "Common", type, false);
    return project;
}

ProjectElement* ProjectSystem::createConfiguration(ProjectElement* element, const QString& name, bool flag) {
    auto configuration = std::make_unique<ProjectElement>(ProjectElement::Configuration);
    configuration->setAttribute("Name", name, flag);
    return element->appendChild(std::move(configuration));
}

ProjectElement* ProjectSystem::createFolder(ProjectElement* parent, const QString& name,
                                            const QString& filter, bool flag) {
    if (ProjectElement* existing = findFolder(parent, name))
        return existing;
    auto folder = std::make_unique<ProjectElement>(ProjectElement::Folder);
    folder->setAttribute("Name", name, flag);
    ProjectElement* added = parent->appendChild(std::move(folder));
    if (!filter.isEmpty())
        setProperty(added, propertyClass(Setting::filter), "Common", filter, flag);
    return added;
}

ProjectElement* ProjectSystem::addFile(ProjectElement* parent, const QString& fileName, bool flag) {
    auto file = std::make_unique<ProjectElement>(ProjectElement::File);
    file->setFileName(fileName, flag);
    ProjectElement* folder = parent->is(ProjectElement::Folder) ? nullptr : folderClaiming(parent, fileName);
    return (folder ? folder : parent)->appendChild(std::move(file));
}

/// The first folder child whose filter lists the extension of the file; null if none does.
ProjectElement* ProjectSystem::folderClaiming(ProjectElement* parent, const QString& fileName) const {
    const QString extension = Path(fileName).extension(false).toLower();
    for (ProjectElement* child = parent->firstChild(); child; child = child->nextSibling()) {
        if (!child->is(ProjectElement::Folder))
            continue;
        QString filter = child->attribute("filter");
        if (filter.isNull())
            filter = settingFor(child, Setting::filter, "Common");
        if (filter.replace(u',', u';').split(u';').contains(extension) && !extension.isEmpty())
            return child;
    }
    return nullptr;
}

void ProjectSystem::setProperty(ProjectElement* element, const QString& name, const QString& configName,
                                const QString& value, bool flag) {
    ProjectElement* configuration = findConfiguration(element, configName);
    if (!configuration)
        configuration = createConfiguration(element, configName, flag);
    configuration->setAttribute(name, value, flag);
}

void ProjectSystem::setProperty(ProjectElement* element, const PropertyClass& propertyClass,
                                const QString& configName, const QString& value, bool flag) {
    setProperty(element, propertyClass.saveName(), configName, value, flag);
}

void ProjectSystem::loadedSolution() {
    updateProjectList();
    if (m_solution)
        m_solution->clearMarks();
}

void ProjectSystem::munge(ProjectElement*) {}

QString ProjectSystem::libraryVariant(ProjectElement*, const QString&) const { return QString(); }
