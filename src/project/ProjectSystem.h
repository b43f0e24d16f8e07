#pragma once

#include "project/ProjectElement.h"
#include "properties/Catalogue.h"
#include "properties/PropertyValue.h"

class MessageReceiver;
class ProjectTemplates;

/// Asked when a file to load is missing.
class ProjectFileNotFoundErrorHandler {
public:
    virtual ~ProjectFileNotFoundErrorHandler() = default;
    /// Whether the load may go on.
    virtual bool retry(const QString& fileName) = 0;
};

/// Asked when a project names no template.
class TemplateNotFoundErrorHandler {
public:
    virtual ~TemplateNotFoundErrorHandler() = default;
    /// May fill in the template's name; whether to go on.
    virtual bool retry(const ProjectTemplates& templates, const QString& projectName,
                       QString& templateName) = 0;
};

/// The solution in memory: how it is loaded or made, the search by which a setting gets its value, and the
/// questions about its structure. Knows nothing of tools and of what a build does. Owns the tree; elements
/// that it gives out live until the next load.
///
/// Layers add to it: StandardProjectSystem what applies to which node, SOBFProjectSystem the tool chain's
/// extensions and settings, MSP430ProjectSystem the processor.
class ProjectSystem {
public:
    /// Only the settings that the front door knows exist.
    explicit ProjectSystem(FrontDoor frontDoor = FrontDoor::Ostmake) : m_frontDoor(frontDoor) {}
    virtual ~ProjectSystem() = default;
    ProjectSystem(const ProjectSystem&) = delete;
    ProjectSystem& operator=(const ProjectSystem&) = delete;

    // Loading. A missing or damaged file is thrown as a SolutionLoadError, and leaves no solution. Both
    // handlers may be null, which declines.
    /// Replaces the tree by that of a file, templates and dynamic folders filled in.
    void loadSolution(const QString& absolutePath, ProjectFileNotFoundErrorHandler* fileHandler = nullptr,
                      TemplateNotFoundErrorHandler* templateHandler = nullptr);
    /// The tree of one file with all that it imports. A file that is not there counts from `directory`.
    std::unique_ptr<ProjectElement> loadProjectFile(const QString& directory, const QString& fileName,
                                                    ProjectFileNotFoundErrorHandler* fileHandler);
    /// The tree of one XML element of a file in `directory`.
    std::unique_ptr<ProjectElement> domToElement(const QString& directory, const XMLElement& xmlElement,
                                                 ProjectFileNotFoundErrorHandler* fileHandler);

    // Making a tree by hand. What is made belongs to the tree. `flag` goes with each change.
    /// A new root whose file would lie in `directory`, which is made if it is missing.
    virtual ProjectElement* createSolution(const QString& name, const QString& directory);
    virtual ProjectElement* createProject(ProjectElement* parent, const QString& name,
                                          const QString& directory, const QString& type);
    /// A new configuration; an old one of this name stays, hidden behind it.
    ProjectElement* createConfiguration(ProjectElement* element, const QString& name, bool flag);
    /// The folder of this name, made with the filter if it is missing.
    ProjectElement* createFolder(ProjectElement* parent, const QString& name, const QString& filter,
                                 bool flag);
    /// A new file, in the folder that claims its extension if `parent` is no folder itself.
    ProjectElement* addFile(ProjectElement* parent, const QString& fileName, bool flag);
    /// States a value in a configuration of the element, which is made if it is missing.
    void setProperty(ProjectElement* element, const QString& name, const QString& configName,
                     const QString& value, bool flag);
    void setProperty(ProjectElement* element, const PropertyClass& propertyClass, const QString& configName,
                     const QString& value, bool flag);
    /// To be called when the tree is complete.
    void loadedSolution();
    /// Brings a solution of an older version of the format up to date.
    virtual void munge(ProjectElement* element);

    // Settings.
    FrontDoor frontDoor() const { return m_frontDoor; }
    /// The value of a setting for a solution, project, folder or file. Null only if nothing is stated and the
    /// class has no default. `info` and `origins`, either may be null, receive where it came from.
    QString settingFor(ProjectElement* element, const PropertyClass& propertyClass, const QString& configName,
                       PropertyInheritanceInformation* info = nullptr,
                       SettingOrigins* origins = nullptr) const;
    QString settingFor(ProjectElement* element, Setting setting, const QString& configName) const;
    /// The same, its macros expanded as NodeMacros gives them.
    QString settingForExpanded(ProjectElement* element, const PropertyClass& propertyClass,
                               const QString& configName) const;
    QString settingForExpanded(ProjectElement* element, Setting setting, const QString& configName) const;
    /// Only what the element itself states in this configuration; null if nothing.
    QString specificSettingFor(ProjectElement* element, const PropertyClass& propertyClass,
                               const QString& configName) const;
    /// Only what the element itself states in "Common"; null if nothing.
    static QString commonSettingFor(const ProjectElement* element, Setting setting);
    /// The project's own "project_type"; null if it states none.
    QString getProjectType(ProjectElement* project) const;
    /// The platform of an element, or of the program for null.
    QString platform(ProjectElement* element) const;
    enum ConfigurationFlag { IncludeCommon = 1, IncludeHidden = 2, IncludeVisible = 4 };
    /// Names of the configurations that the solutions around the element (null: the root) declare, in order;
    /// `flags` of ConfigurationFlag. Never empty: "Common" is the last resort.
    QStringList configurations(ProjectElement* element, int flags) const;
    /// The first of the element's own configurations of this name, which is where values are stated; null if
    /// there is none. A search for a value asks the last one.
    ProjectElement* findConfiguration(ProjectElement* element, const QString& name) const;
    /// The settings that exist on the element, in their order. The list deletes them.
    virtual PropertyValueList applicableSettingsFor(ProjectElement* element, const QString& configName);
    /// Whether a setting is unchanged since that time. If not, and not `quiet`, `receiver` (may be null) is
    /// told.
    bool upToDate(ProjectElement* element, const PropertyClass& propertyClass, const QString& configName,
                  const QDateTime& since, MessageReceiver* receiver, bool quiet) const;

    // Structure. Elements that are not there are null.
    ProjectElement* solutionElement() const { return m_solution.get(); }
    ProjectElement* projectContaining(ProjectElement* element) const;
    ProjectElement* solutionContaining(ProjectElement* element) const;
    /// The projects below a solution by listing key; of anything else, those of the root.
    const ElementMap& solutionProjects(ProjectElement* element) const;
    /// All solutions by listing key.
    const ElementMap& solutionSolutions() const { return m_solutions; }
    QStringList projectNames() const { return solutionProjects(nullptr).keys(); }
    QStringList solutionNames() const { return m_solutions.keys(); }
    /// Looks the listing key up from the nearest solution outwards.
    ProjectElement* findProject(ProjectElement* element, const QString& name) const;
    /// A direct child, by its "file_name" as text or its name.
    ProjectElement* findFile(ProjectElement* parent, const QString& name) const;
    ProjectElement* findFolder(ProjectElement* parent, const QString& name) const;
    /// What "project_dependencies" names, in its order; names of no project drop out.
    QList<ProjectElement*> directlyDependsOn(ProjectElement* project, const QString& configName) const;
    /// The projects of a solution (null: the root), or one project, each behind all that it depends on. Of
    /// projects that depend on each other in a circle, the one met first stands last.
    QList<ProjectElement*> buildOrder(ProjectElement* element, const QString& configName) const;
    /// The configurations of a batch build; empty if the project takes no part in one.
    QStringList getBatchBuildConfigurations(ProjectElement* project, const QString& configName) const;
    /// The type of a file; empty if it has none.
    virtual QString getFileType(ProjectElement* file) = 0;
    /// The directory of a project; null for null.
    QString projectDirectoryPath(ProjectElement* project) const;
    virtual QString defaultFileLocation(ProjectElement* element) const;
    /// Adds the files that a dynamic folder finds on the disk.
    void populateDynamicFolder(ProjectElement* folder);
    /// Rebuilds the listing keys and the inheritance of configurations from the tree.
    void updateProjectList();

    // Extensions of the tool chain, "." in front.
    virtual QString objectFileExtension() const = 0;
    virtual QString libraryFileExtension() const = 0;
    virtual QString executableFileExtension() const = 0;
    /// What tells the variants of the standard libraries apart in their names; null for none.
    virtual QString libraryVariant(ProjectElement* project, const QString& configName) const;

protected:
    /// Takes a child out of the tree and destroys it, also while a load is going on.
    void discard(ProjectElement* parent, ProjectElement* child);

private:
    /// What one load has read so far, bounded so that files that import each other end.
    struct Load {
        QStringList stack; ///< the files being loaded at this moment, absolute
        QList<ProjectElement*> pendingTemplates;
        QList<ProjectElement*> dynamicFolders;
        int imports = 0;
        int elements = 0;
        int depth = 0; ///< levels of elements around the one being read, in all files
        int solutions = 0;
    };

    void clear();
    void finishLoad(TemplateNotFoundErrorHandler* templateHandler);
    void applyTemplates(TemplateNotFoundErrorHandler* templateHandler);
    void applyTemplate(ProjectTemplates& templates, ProjectElement* project,
                       TemplateNotFoundErrorHandler* handler);
    std::unique_ptr<ProjectElement> readProjectFile(const QString& tried, const QString& path,
                                                    ProjectFileNotFoundErrorHandler* fileHandler);
    std::unique_ptr<ProjectElement> importElement(const QString& directory, const XMLElement& xmlElement,
                                                  ProjectFileNotFoundErrorHandler* fileHandler);
    void checkNesting(int levels, int solutions) const;
    std::unique_ptr<ProjectElement> makeElement(const XMLElement& xmlElement);
    void listSolution(ProjectElement* solution);
    void collect(ElementMap& projects, const QString& prefix, ProjectElement* solution);
    ProjectElement* folderClaiming(ProjectElement* parent, const QString& fileName) const;
    bool upToDate1(ProjectElement* element, const PropertyClass& propertyClass, const QString& configName,
                   const QDateTime& since) const;

    const FrontDoor m_frontDoor;
    std::unique_ptr<ProjectElement> m_solution;
    ElementMap m_solutions;
    Load m_load;
};

/// The one project system of the process, which `main` makes; null before.
extern ProjectSystem* projectSystem;
