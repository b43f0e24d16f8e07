#include "properties/PropertyValueGroups.h"

#include "foundation/FileAccess.h"

#include <QDebug>
#include <algorithm>
#include <cstring>

PropertyValueGroups propertyValueGroups;

namespace {

/// Calls `visit` for the children of this tag name, as long as it answers true. A walk ends at the first node
/// that is no element.
template<typename Visit>
void forEachChild(const XMLElement* element, const char* tagName, const Visit& visit) {
    for (XMLNode* child = element->firstChild(); child && child->toElement(); child = child->nextSibling()) {
        if (std::strcmp(child->toElement()->tagName(), tagName) == 0 && !visit(child->toElement()))
            return;
    }
}

QString pageOf(const XMLElement* group) {
    return group->hasAttribute("page") ? group->attributeText("page") : QString("General");
}

} // namespace

QList<PropertyValueGroupEntry::Property> PropertyValueGroupEntry::properties() const {
    QList<Property> properties;
    if (!m_element)
        return properties;
    forEachChild(m_element, "property", [&](const XMLElement* property) {
        properties.append({property->attributeText("name"), property->attributeText("value"),
                           property->attributeText("configuration")});
        return true;
    });
    return properties;
}

bool PropertyValueGroupEntry::hasDefines() const {
    bool found = false;
    if (m_element)
        forEachChild(m_element, "cdefine", [&](const XMLElement*) { return !(found = true); });
    return found;
}

PropertyValueGroupClass::PropertyValueGroupClass(const XMLElement* group)
    : PropertyClass(group->attributeText("name"), Enumeration, QStringList(), pageOf(group),
                    group->attributeText("group"), group->attributeText("short"),
                    group->attributeText("long"), group->attributeText("default")),
      m_group(group) {
    QStringList names;
    forEachChild(group, "groupEntry", [&](const XMLElement* entry) {
        names.append(entry->attributeText("name"));
        return true;
    });
    setEnumerates(names);
}

PropertyValueGroupEntry PropertyValueGroupClass::getGroupEntry(const QString& name) const {
    PropertyValueGroupEntry found;
    forEachChild(m_group, "groupEntry", [&](const XMLElement* entry) {
        if (entry->attributeText("name") == name)
            found = PropertyValueGroupEntry(entry);
        return !found;
    });
    return found;
}

bool PropertyValueGroupFile::load() {
    m_time = files().status(m_name).modified; // before reading: a change from now on is seen
    if (!XMLPP2::load(m_name, QString(), false) || !root())
        return false;
    forEachChild(root(), "group", [&](const XMLElement* group) {
        m_owned.push_back(std::make_unique<PropertyValueGroupClass>(group));
        m_classes.append(m_owned.back().get());
        return true;
    });
    return true;
}

void PropertyValueGroupFile::warning(const QString& message) { qWarning().noquote().nospace() << message; }

const PropertyValueGroupClass* PropertyValueGroupFile::getGroupClass(const QString& name) const {
    const auto found =
        std::find_if(m_classes.begin(), m_classes.end(),
                     [&](const PropertyValueGroupClass* each) { return each->saveName() == name; });
    return found == m_classes.end() ? nullptr : *found;
}

void PropertyValueGroups::setGroupFile(const QString& path) {
    m_current = nullptr;
    if (path == "None")
        return;
    const auto known = std::find_if(m_loaded.begin(), m_loaded.end(),
                                    [&](const auto& file) { return file->name() == path; });
    if (known != m_loaded.end()) {
        if (files().status(path).modified == (*known)->time()) {
            m_current = known->get();
            return;
        }
        m_replaced.push_back(std::move(*known));
        m_loaded.erase(known);
    }
    auto file = std::make_unique<PropertyValueGroupFile>(path);
    if (!file->load())
        return;
    m_current = file.get();
    m_loaded.push_back(std::move(file));
}
