#include "project/PropertyValueGroupValue.h"

#include "properties/PropertyValueGroups.h"

PropertyValueGroupValue::PropertyValueGroupValue(ProjectSystem& system,
                                                 const PropertyValueGroupClass* groupClass,
                                                 const QString& configuration, ProjectElement* node)
    : ProjectPropertyValue(system, groupClass, configuration, node), m_groupClass(groupClass) {}

void PropertyValueGroupValue::setPropertyValue(const QString& text, bool flag) {
    QString name = text;
    PropertyValueGroupEntry entry = m_groupClass->getGroupEntry(name);
    if (!entry) {
        name = m_groupClass->defaultValue();
        entry = m_groupClass->getGroupEntry(name);
    }
    m_system.setProperty(node(), *m_groupClass, configuration(), name, flag);
    if (!entry)
        return;
    for (const PropertyValueGroupEntry::Property& property : entry.properties()) {
        const QString& target = property.configuration.isNull() ? configuration() : property.configuration;
        m_system.setProperty(node(), property.name, target, property.value, flag);
    }
}
