#include "driver/ChosenElement.h"

#include "driver/Console.h"
#include "driver/OstmakeArgParse.h"
#include "driver/ProcessExit.h"
#include "foundation/FileAccess.h"
#include "foundation/Text.h"
#include "macros/Path.h"
#include "project/ProjectSystem.h"
#include "project/ProjectTemplates.h"

#include <algorithm>

namespace {

/// "can't find project 'x' supported projects:" and the names that there are, each on a line.
[[noreturn]] void cannotFind(const char* what, const QString& name, const char* listed,
                             const QStringList& names) {
    QString text = QString("can't find ") + what + " '" + name + "' " + listed + ":\n";
    for (const QString& each : names)
        text += each + "\n";
    Console().print(toBytes(text));
    throw ProcessExit{1};
}

ProjectElement* loadedElement(const OstmakeArgParse& options) {
    projectSystem->loadSolution(Path::absolute(options.argument));
    ProjectElement* root = projectSystem->solutionElement();
    if (!options.project.isEmpty()) {
        if (ProjectElement* project = projectSystem->findProject(root, options.project))
            return project;
        cannotFind("project", options.project, "supported projects",
                   projectSystem->solutionProjects(nullptr).keys());
    }
    if (!options.solution.isEmpty()) {
        if (ProjectElement* solution = projectSystem->solutionSolutions().value(options.solution))
            return solution;
        cannotFind("solution", options.solution, "supported solutions", projectSystem->solutionNames());
    }
    return root;
}

void applyTemplate(ProjectElement* root, ProjectElement* project, const QString& name) {
    ProjectTemplates templates(*projectSystem);
    const XMLElement* recipe = templates.findTemplate(name);
    if (!recipe)
        cannotFind("template", name, "installed templates", templates.listTemplates());
    templates.createProjectFromTemplate(root, project, *recipe);
}

void addFiles(ProjectElement* project, const QStringList& files) {
    for (const QString& file : files) {
        auto element = std::make_unique<ProjectElement>(ProjectElement::File);
        project->appendChild(std::move(element))->setFileName(file, false);
    }
}

/// Each of `definitions` is "name=value", or a name alone for an empty value.
void setProperties(ProjectElement* project, const QStringList& definitions, const QString& config) {
    if (definitions.isEmpty())
        return;
    const PropertyValueList applicable = projectSystem->applicableSettingsFor(project, config);
    for (const QString& definition : definitions) {
        const qsizetype equals = definition.indexOf(u'=');
        const QString name = definition.left(equals);
        const QString value = equals < 0 ? QString("") : definition.mid(equals + 1);
        const auto named = [&](const PropertyValue* setting) {
            return setting->propertyClass()->saveName() == name;
        };
        const auto found = std::find_if(applicable.begin(), applicable.end(), named);
        if (found == applicable.end()) {
            QStringList supported;
            for (const PropertyValue* setting : applicable)
                supported.append(setting->propertyClass()->saveName() + "=" + setting->toString());
            cannotFind("property", name, "supported properties", supported);
        }
        projectSystem->setProperty(project, name, config, value, false);
    }
}

ProjectElement* createdElement(const OstmakeArgParse& options) {
    const QString directory = currentDirectory();
    ProjectElement* root = projectSystem->createSolution(options.project, directory);
    const QStringList types = propertyClass(Setting::project_type).enumerates();
    if (!options.type.isEmpty() && !types.contains(options.type))
        cannotFind("project type", options.type, "project types", types);
    ProjectElement* project = projectSystem->createProject(root, options.project, directory, options.type);
    if (!options.templateName.isEmpty())
        applyTemplate(root, project, options.templateName);
    addFiles(project, options.files);
    setProperties(project, options.properties, options.config);
    projectSystem->loadedSolution();
    return project;
}

} // namespace

ProjectElement* chosenElement(const OstmakeArgParse& options) {
    return options.argument.isEmpty() ? createdElement(options) : loadedElement(options);
}

void requireConfiguration(ProjectElement* element, const OstmakeArgParse& options) {
    const QStringList offered = projectSystem->configurations(element, ProjectSystem::IncludeVisible);
    if (!offered.contains(options.config))
        cannotFind("configuration", options.config, "supported configurations", offered);
}
