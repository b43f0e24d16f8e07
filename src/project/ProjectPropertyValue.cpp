#include "project/ProjectPropertyValue.h"

ProjectPropertyValue::ProjectPropertyValue(ProjectSystem& system, const PropertyClass* propertyClass,
                                           const QString& configuration, ProjectElement* node)
    : PropertyValue(propertyClass),
      m_system(system),
      m_node(node),
      m_configuration(propertyClass->perConfiguration() ? configuration : QString("Common")) {
    setTransient(true);
}

bool ProjectPropertyValue::inherited() const {
    const ProjectElement* holder = m_system.findConfiguration(m_node, m_configuration);
    return !holder || !holder->hasAttribute(propertyClass()->saveName());
}

QString ProjectPropertyValue::propertyValue() const {
    if (propertyClass()->type() != PropertyClass::StringList)
        return m_system.settingFor(m_node, *propertyClass(), m_configuration);
    const ProjectElement* holder = m_system.findConfiguration(m_node, m_configuration);
    return holder ? holder->attribute(propertyClass()->saveName()) : QString();
}

void ProjectPropertyValue::setPropertyValue(const QString& text) {
    m_system.setProperty(m_node, *propertyClass(), m_configuration, text, false);
}
