#pragma once

#include "project/ProjectSystem.h"

/// The value of a project setting at one node in one configuration, "Common" if the class does not vary by
/// configuration. A list that holds it deletes it.
class ProjectPropertyValue : public PropertyValue {
public:
    /// Views of all three, which must outlive it.
    ProjectPropertyValue(ProjectSystem& system, const PropertyClass* propertyClass,
                         const QString& configuration, ProjectElement* node);

    /// Whether the node itself states nothing in this configuration.
    bool inherited() const override;
    /// The resolved value. Of a list, only what the node itself states; null if nothing.
    QString propertyValue() const override;
    /// States the value at the node.
    void setPropertyValue(const QString& text) override;

    ProjectElement* node() const { return m_node; }
    const QString& configuration() const { return m_configuration; }

protected:
    ProjectSystem& m_system;

private:
    ProjectElement* m_node;
    QString m_configuration;
};
