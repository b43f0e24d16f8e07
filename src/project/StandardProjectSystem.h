#pragma once

#include "project/ProjectSystem.h"
#include "properties/PropertyLists.h"

/// What every tool chain shares: which settings apply to which node, and the types of files.
class StandardProjectSystem : public ProjectSystem {
public:
    using ProjectSystem::ProjectSystem;

    PropertyValueList applicableSettingsFor(ProjectElement* element, const QString& configName) override;
    QString getFileType(ProjectElement* file) override;

    /// Settings of the tools that a file beside the program adds to the lists of compiler and linker.
    void setToolProperties(const PropertyLists::ToolProperties& tools) { m_tools = tools; }

    // Each appends its settings to the list, without repeats.
    virtual void appendCCompilerProperties(PropertyClassList& list) const;
    virtual void appendCppCompilerProperties(PropertyClassList& list) const;
    virtual void appendAssemblerProperties(PropertyClassList& list) const;
    virtual void appendLinkerProperties(PropertyClassList& list) const;
    virtual void appendArchiverProperties(PropertyClassList& list) const;
    virtual void appendDefaultProjectValues(PropertyValueList& list, const QString& type) const;
    virtual void appendProjectProperties(PropertyClassList& list, const QString& type) const;
    virtual void appendSolutionProperties(PropertyClassList& list) const;
    virtual void appendTargetProperties(PropertyClassList& list) const;

    /// ".", and what assembly files of the target are called.
    virtual QString assemblyCodeFileExtension() const = 0;

protected:
    /// Appends the settings of a list, without repeats.
    void append(PropertyClassList& list, SettingTable::List which) const;

private:
    PropertyClassList applicableClasses(ProjectElement* element);
    void appendFolderProperties(PropertyClassList& list, const QString& projectType) const;
    void appendFileProperties(PropertyClassList& list, ProjectElement* file);
    void appendPart(PropertyClassList& list, SettingTable::List part) const;
    void appendGroups(PropertyValueList& values, ProjectElement* element, const QString& configName);
    QString typeByExtension(ProjectElement* file) const;

    PropertyLists::ToolProperties m_tools;
};
