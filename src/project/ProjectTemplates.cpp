#include "project/ProjectTemplates.h"

#include "foundation/Text.h"
#include "macros/MacroSystem.h"
#include "project/NodeMacros.h"
#include "project/PropertyValueGroupValue.h"
#include "properties/PropertyValueGroups.h"

#include <cstring>
#include <vector>

QString templatesFile = "$(TargetsDir)/project_templates.xml";

namespace {

constexpr size_t mostLevels = 1000; ///< of recipe elements within recipe elements

bool hasTag(const XMLElement& element, const char* tag) { return std::strcmp(element.tagName(), tag) == 0; }

/// The value of the attribute in lower case; empty if there is none.
QString lowered(const XMLElement& element, const char* attribute) {
    return element.attributeText(attribute).toLower();
}

QString configurationOf(const XMLElement& element) {
    const QString name = element.attributeText("configuration");
    return name.isEmpty() ? "Common" : name;
}

} // namespace

QString projectTemplatesFile() {
    return MacroSystem::replaceMacros(macroSystem.systemMacros(), templatesFile);
}

ProjectTemplates::ProjectTemplates(ProjectSystem& system) : m_system(system) {
    if (load(projectTemplatesFile(), QString(), false) && root())
        createMaps(root());
}

void ProjectTemplates::warning(const QString& text) { qWarning("%s", toBytes(text).constData()); }

/// Takes every element below `top` in, children behind what stands in front of them, and the entries of a
/// container of configurations behind what they hold.
void ProjectTemplates::createMaps(const XMLElement* top) {
    const XMLElement* element = top;
    while (element) {
        if (hasTag(*element, "project") && element->hasAttribute("template_name"))
            m_templates[element->attributeText("template_name")] = element;
        if (const XMLElement* child = element->firstChildElement()) {
            element = child;
            continue;
        }
        const XMLElement* next = nullptr;
        while (element != top && !next) {
            const XMLElement* container = element->parent()->toElement();
            if (hasTag(*container, "configurations"))
                m_configurationTemplates[element->attributeText("name")] = element;
            next = element->nextSiblingElement();
            element = next ? next : container;
        }
        if (!next)
            return;
    }
}

void ProjectTemplates::createProjectFromTemplate(ProjectElement* solution, ProjectElement* project,
                                                 const XMLElement& recipe) {
    m_solutionElement = solution;
    m_projectElement = project;
    m_system.setProperty(project, propertyClass(Setting::project_type), "Common",
                         recipe.attributeText("type"), true);
    createFromTemplate(project, recipe.firstChildElement());
}

/// An element of a recipe that waits for its turn, with its following siblings.
struct ProjectTemplates::Place {
    ProjectElement* parent;
    const XMLElement* element;
};

void ProjectTemplates::createFromTemplate(ProjectElement* parent, const XMLElement* element) {
    std::vector<Place> places = {{parent, element}};
    while (!places.empty()) {
        const Place place = places.back();
        if (!place.element) {
            places.pop_back();
            continue;
        }
        places.back().element = place.element->nextSiblingElement();
        ProjectElement* made = apply(place.parent, *place.element);
        if (!made)
            continue;
        if (places.size() < mostLevels)
            places.push_back({made, place.element->firstChildElement()});
        else
            warning("project template: elements are nested too deep");
    }
}

/// Carries one element out. The node that its children belong to; null if they are not to be looked at.
ProjectElement* ProjectTemplates::apply(ProjectElement* parent, const XMLElement& element) {
    if (hasTag(element, "folder"))
        return applyFolder(parent, element);
    if (hasTag(element, "file"))
        return applyFile(parent, element);
    if (hasTag(element, "property"))
        applyProperty(parent, element);
    else if (hasTag(element, "propertygroup"))
        applyPropertyGroup(parent, element);
    else if (hasTag(element, "configuration"))
        createConfiguration(m_solutionElement, m_projectElement, element.attributeText("name"));
    return nullptr;
}

ProjectElement* ProjectTemplates::applyFolder(ProjectElement* parent, const XMLElement& element) {
    const QString name = element.attributeText("name");
    const QString filter = element.attributeText("filter");
    ProjectElement* folder = m_system.findFolder(parent, name);
    if (!folder)
        return m_system.createFolder(parent, name, filter, true);
    const PropertyClass& filterClass = propertyClass(Setting::filter);
    if (!filter.isNull() && m_system.specificSettingFor(folder, filterClass, "Common").isNull())
        m_system.setProperty(folder, filterClass, "Common", filter, true);
    return folder;
}

ProjectElement* ProjectTemplates::applyFile(ProjectElement* parent, const XMLElement& element) {
    if (element.hasAttribute("source"))
        return nullptr;
    QString name = element.attributeText("name");
    if (lowered(element, "expand") != "no")
        name = expanded(parent, name);
    ProjectElement* file = m_system.findFile(parent, name);
    return file ? file : m_system.addFile(parent, name, true);
}

void ProjectTemplates::applyProperty(ProjectElement* parent, const XMLElement& element) {
    if (!element.hasAttribute("name") || !element.hasAttribute("value"))
        return;
    const QString name = element.attributeText("name");
    const QString configName = configurationOf(element);
    const ProjectElement* configuration = m_system.findConfiguration(parent, configName);
    if (configuration && configuration->hasAttribute(name))
        return;
    QString value = element.attributeText("value");
    if (lowered(element, "expand") == "yes")
        value = expanded(parent, value);
    m_system.setProperty(parent, name, configName, value, true);
}

void ProjectTemplates::applyPropertyGroup(ProjectElement* parent, const XMLElement& element) {
    if (!element.hasAttribute("name") || !element.hasAttribute("value"))
        return;
    const QString groups = m_system.settingForExpanded(parent, Setting::property_groups_file_path, "Common");
    if (!groups.isEmpty())
        propertyValueGroups.setGroupFile(groups);
    const QString name = element.attributeText("name");
    const PropertyValueGroupClass* groupClass = propertyValueGroups.getGroupClass(name);
    if (!groupClass)
        return;
    const QString configName = configurationOf(element);
    const ProjectElement* configuration = m_system.findConfiguration(parent, configName);
    const bool isStated = configuration && configuration->hasAttribute(name);
    PropertyValueGroupValue value(m_system, groupClass, configName, parent);
    value.setPropertyValue(isStated ? configuration->attribute(name) : element.attributeText("value"), true);
}

QString ProjectTemplates::expanded(ProjectElement* parent, const QString& text) const {
    return MacroSystem::replaceMacros(NodeMacros(m_system, parent, "Common"), text);
}

namespace {

/// The walk over the recipe of a configuration and those that it inherits from, on a stack of its own. Each
/// recipe is carried out once, since a second time would change nothing; so recipes in a circle end.
class ConfigurationRecipes {
public:
    ConfigurationRecipes(ProjectSystem& system, const QMap<QString, const XMLElement*>& recipes,
                         ProjectElement* solution, ProjectElement* project)
        : m_system(system), m_recipes(recipes), m_solution(solution), m_project(project) {}

    void run(const QString& name) {
        enter(name);
        while (!m_open.empty()) {
            Frame& frame = m_open.back();
            if (!frame.inherited.isEmpty()) {
                enter(frame.inherited.takeFirst());
            } else if (const XMLElement* setting = frame.next) {
                frame.next = setting->nextSiblingElement();
                apply(frame, setting->attributeText("name"), setting->attributeText("value"));
            } else {
                m_open.pop_back();
            }
        }
    }

private:
    struct Frame {
        QString name;
        ProjectElement* configuration; ///< of the solution
        const XMLElement* next;
        QStringList inherited = {}; ///< those to be carried out before `next`
    };

    void enter(const QString& name) {
        const XMLElement* recipe = m_recipes.value(name);
        if (!recipe || m_met.contains(name))
            return;
        m_met.insert(name);
        ProjectElement* configuration = m_system.findConfiguration(m_solution, name);
        if (!configuration)
            configuration = m_system.createConfiguration(m_solution, name, true);
        m_open.push_back({name, configuration, recipe->firstChildElement()});
    }

    void apply(Frame& frame, const QString& setting, const QString& value) {
        if (setting.isEmpty() || value.isEmpty())
            return;
        if (setting == "inherited_configurations") {
            frame.configuration->setAttribute(setting, value, true);
            frame.inherited = value.split(u';', Qt::SkipEmptyParts);
        } else if (!frame.configuration->hasAttribute(setting)) {
            frame.configuration->setAttribute(setting, value, true);
        } else if (frame.configuration->attribute(setting) != value) {
            m_system.setProperty(m_project, setting, frame.name, value, true);
        }
    }

    ProjectSystem& m_system;
    const QMap<QString, const XMLElement*>& m_recipes;
    ProjectElement* m_solution;
    ProjectElement* m_project;
    QSet<QString> m_met;
    std::vector<Frame> m_open;
};

} // namespace

void ProjectTemplates::createConfiguration(ProjectElement* solution, ProjectElement* project,
                                           const QString& name) {
    ConfigurationRecipes(m_system, m_configurationTemplates, solution, project).run(name);
}
