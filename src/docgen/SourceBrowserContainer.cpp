#include "docgen/SourceBrowserContainer.h"

#include <algorithm>

namespace {

/// Forgets what `file` says of the object. Whether nothing is left of it then.
bool forget(SourceBrowserObject& object, const QString& file) {
    const bool isDeclared = object.declarationFile == file;
    const bool isDefined = object.definitionFile == file;
    if (isDeclared) {
        object.declarationFile.clear();
        object.declarationLine = object.declarationEndLine = -1;
    }
    if (isDefined) {
        object.definitionFile.clear();
        object.definitionLine = object.definitionEndLine = -1;
    }
    return (isDeclared || isDefined) && object.declarationFile.isEmpty() && object.definitionFile.isEmpty();
}

} // namespace

SourceBrowserContainer::~SourceBrowserContainer() {
    for (const auto* containers : {&m_structs, &m_classes, &m_namespaces})
        for (const auto& [name, container] : *containers)
            if (container->owner == this)
                container->owner = nullptr;
}

void SourceBrowserContainer::adopt(SourceBrowserObject& object) {
    if (!path().isEmpty())
        object.setScope(path());
    object.owner = this;
}

void SourceBrowserContainer::addObject(const Shared& container) {
    adopt(*container);
    if (container->phylum == Struct)
        m_structs.insert(container->name(), container);
    else if (container->phylum == Class)
        m_classes.insert(keyOfClass(*container), container);
    else
        m_namespaces.insert(container->name(), container);
}

void SourceBrowserContainer::addObject(std::unique_ptr<SourceBrowserVariable> variable) {
    adopt(*variable);
    const QString name = variable->name();
    m_variables.insert(name, std::move(variable));
}

void SourceBrowserContainer::addObject(std::unique_ptr<SourceBrowserMethod> method) {
    adopt(*method);
    const QString key = method->asString();
    m_methodsByString.insert(key, m_methods.insert(m_methods.end(), std::move(method)));
}

SourceBrowserMethod* SourceBrowserContainer::getMethod(const SourceBrowserMethod& method) const {
    const auto found = m_methodsByString.constFind(method.asString());
    return found == m_methodsByString.constEnd() ? nullptr : (*found)->get();
}

void SourceBrowserContainer::removeMethod(const SourceBrowserMethod& method) {
    const auto found = m_methodsByString.constFind(method.asString());
    if (found != m_methodsByString.constEnd() && (*found)->get() == &method) {
        const Methods::iterator place = *found;
        m_methodsByString.erase(found);
        m_methods.erase(place);
    } else {
        std::erase_if(m_methods, [&](const auto& held) { return held.get() == &method; });
    }
}

SourceBrowserContainer::Shared SourceBrowserContainer::findClass(const QString& name) const {
    const Shared* found = m_classes.find(name);
    return found ? *found : nullptr;
}

SourceBrowserContainer::Shared SourceBrowserContainer::findScope(const QString& name) const {
    const Shared* found = m_namespaces.find(name);
    return found ? *found : nullptr;
}

bool SourceBrowserContainer::isEmpty() const {
    return m_variables.isEmpty() && m_methods.empty() && m_structs.isEmpty() && m_classes.isEmpty() &&
           m_namespaces.isEmpty();
}

void SourceBrowserContainer::removeReferences(const QString& file, Seen& seen) {
    m_variables.removeIf([&](const auto& variable) { return forget(*variable, file); });
    for (auto method = m_methods.begin(); method != m_methods.end();) {
        const auto next = std::next(method);
        if (forget(**method, file)) {
            const auto found = m_methodsByString.constFind((*method)->asString());
            if (found != m_methodsByString.constEnd() && *found == method)
                m_methodsByString.erase(found);
            m_methods.erase(method);
        }
        method = next;
    }
    const auto isGone = [&](const Shared& container) {
        if (!seen.contains(container.get())) {
            container->removeReferences(file, seen);
            const bool isForgotten = forget(*container, file);
            seen.insert(container.get(), isForgotten && container->isEmpty());
        }
        return seen.value(container.get());
    };
    m_structs.removeIf(isGone);
    m_classes.removeIf(isGone);
    m_namespaces.removeIf(isGone);
}
