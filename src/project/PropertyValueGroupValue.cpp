#include "project/PropertyValueGroupValue.h"

#include "properties/PropertyValueGroups.h"
#include "xml/XMLNode.h"

#include <cstring>

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
    system().setProperty(node(), *m_groupClass, configuration(), name, flag);
    if (!entry)
        return;
    for (const XMLElement* child = entry.element()->firstChildElement(); child;
         child = child->nextSiblingElement()) {
        if (std::strcmp(child->tagName(), "property") != 0)
            continue;
        const QString target =
            child->hasAttribute("configuration") ? child->attributeText("configuration") : configuration();
        system().setProperty(node(), child->attributeText("name"), target, child->attributeText("value"), flag);
    }
}
