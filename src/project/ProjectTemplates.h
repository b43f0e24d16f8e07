#pragma once

#include "xml/XMLPP2.h"

#include <QMap>
#include <QSet>
#include <QStringList>

class ProjectElement;
class ProjectSystem;

/// Where the project templates lie; may hold system macros.
extern QString templatesFile;

/// The file of project templates: recipes that fill an empty project with folders, files, settings and
/// configurations. What a recipe makes is copied into the tree, so nothing refers to the file afterwards.
class ProjectTemplates : public XMLPP2 {
public:
    /// Reads the file; if it can't be read there are no templates.
    explicit ProjectTemplates(ProjectSystem& system);

    /// The recipe of this name; null if there is none.
    const XMLElement* findTemplate(const QString& name) const { return m_templates.value(name); }
    QStringList listTemplates() const { return m_templates.keys(); }
    /// Fills the project, and its solution with the configurations that the recipe asks for.
    void createProjectFromTemplate(ProjectElement* solution, ProjectElement* project,
                                   const XMLElement& recipe);
    /// Makes the solution's configuration `name` as its recipe says, with those that it inherits from. Where
    /// the solution has another value already, the project gets this one for itself.
    void createConfiguration(ProjectElement* solution, ProjectElement* project, const QString& name);

    void warning(const QString& text) override;

private:
    struct Place;

    void createMaps(const XMLElement* root);
    void createFromTemplate(ProjectElement* parent, const XMLElement* element);
    ProjectElement* apply(ProjectElement* parent, const XMLElement& element);
    ProjectElement* applyFolder(ProjectElement* parent, const XMLElement& element);
    ProjectElement* applyFile(ProjectElement* parent, const XMLElement& element);
    void applyProperty(ProjectElement* parent, const XMLElement& element);
    void applyPropertyGroup(ProjectElement* parent, const XMLElement& element);
    QString expanded(ProjectElement* parent, const QString& text) const;

    ProjectSystem& m_system;
    ProjectElement* m_solutionElement = nullptr;
    ProjectElement* m_projectElement = nullptr;
    QMap<QString, const XMLElement*> m_templates;
    QMap<QString, const XMLElement*> m_configurationTemplates;
};

/// The place of the templates file, macros expanded.
QString projectTemplatesFile();
