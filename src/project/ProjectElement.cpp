#include "project/ProjectElement.h"

#include "foundation/Text.h"
#include "xml/XMLNode.h"

#include <algorithm>
#include <array>

namespace {

constexpr const char* tags[] = {"solution", "configuration", "project", "folder", "file", ""};

ProjectElement::Kind kindOf(const QString& tag) {
    for (int kind = ProjectElement::Solution; kind < ProjectElement::Other; ++kind) {
        if (tag == QLatin1String(tags[kind]))
            return static_cast<ProjectElement::Kind>(kind);
    }
    return ProjectElement::Other;
}

/// The text of an attribute value. Short ones, most of them "Yes" and "Common", share their memory as long
/// as they come again soon.
QString sharedText(const char* value) {
    static std::array<QString, 1024> recent;
    constexpr size_t longest = 32;
    const std::string_view bytes(value);
    if (bytes.size() > longest)
        return toText(bytes);
    QString& slot = recent[std::hash<std::string_view>()(bytes) % recent.size()];
    if (slot.isNull() || slot != QLatin1String(bytes.data(), static_cast<qsizetype>(bytes.size())))
        slot = toText(bytes);
    return slot;
}

Symbol fileNameSymbol() {
    static const Symbol symbol = Symbol::of(QString("file_name"));
    return symbol;
}

} // namespace

ProjectElement::ProjectElement(const QString& tag) : m_kind(kindOf(tag)) {}

/// A tree may be deeper than the stack: the children of each child join the end of the chain before it goes.
ProjectElement::~ProjectElement() {
    std::unique_ptr<ProjectElement> pending = std::move(m_firstChild);
    ProjectElement* last = m_lastChild;
    while (pending) {
        if (pending->m_firstChild) {
            last->m_nextSibling = std::move(pending->m_firstChild);
            last = pending->m_lastChild;
        }
        pending = std::move(pending->m_nextSibling);
    }
}

const char* ProjectElement::tagOf(Kind kind) { return tags[kind]; }

ProjectElement* ProjectElement::nextInTree(const ProjectElement* root) const {
    if (m_firstChild)
        return m_firstChild.get();
    const ProjectElement* element = this;
    while (element && element != root && !element->m_nextSibling)
        element = element->m_parent;
    return element && element != root ? element->m_nextSibling.get() : nullptr;
}

ProjectElement* ProjectElement::nearest(Kind kind) {
    ProjectElement* element = this;
    while (element && element->m_kind != kind)
        element = element->m_parent;
    return element;
}

ProjectElement* ProjectElement::appendChild(std::unique_ptr<ProjectElement> child) {
    ProjectElement* const added = child.get();
    added->m_parent = this;
    (m_lastChild ? m_lastChild->m_nextSibling : m_firstChild) = std::move(child);
    m_lastChild = added;
    if (added->is(Configuration)) {
        if (!m_configurations)
            m_configurations = std::make_unique<std::map<Symbol, Named>>();
        Named& entry = (*m_configurations)[Symbol::of(added->getName())];
        entry = {entry.first ? entry.first : added, added};
    }
    m_modified = true;
    return added;
}

std::unique_ptr<ProjectElement> ProjectElement::removeChild(ProjectElement* child) {
    ProjectElement* previous = nullptr;
    std::unique_ptr<ProjectElement>* link = &m_firstChild;
    while (*link && link->get() != child) {
        previous = link->get();
        link = &previous->m_nextSibling;
    }
    if (!*link)
        return nullptr;
    std::unique_ptr<ProjectElement> removed = std::move(*link);
    *link = std::move(removed->m_nextSibling);
    if (m_lastChild == child)
        m_lastChild = previous;
    removed->m_parent = nullptr;
    if (m_configurations) {
        std::erase_if(*m_configurations, [&](const auto& entry) { return entry.second.last == child; });
        for (auto& [name, entry] : *m_configurations)
            entry.first = entry.first == child ? entry.last : entry.first;
        if (m_configurations->empty())
            m_configurations.reset();
    }
    m_modified = true;
    return removed;
}

const ProjectElement::Attribute* ProjectElement::find(Symbol name) const {
    if (!name)
        return nullptr;
    const auto place = std::lower_bound(m_attributes.begin(), m_attributes.end(), name,
                                        [](const Attribute& a, Symbol b) { return a.name < b; });
    return place != m_attributes.end() && place->name == name ? &*place : nullptr;
}

void ProjectElement::store(Symbol name, const QString& value) {
    const auto place = std::lower_bound(m_attributes.begin(), m_attributes.end(), name,
                                        [](const Attribute& a, Symbol b) { return a.name < b; });
    const QString text = value.isNull() ? QString("") : value; // what is stated is never null
    if (place != m_attributes.end() && place->name == name)
        place->value = text;
    else
        m_attributes.insert(place, {name, text});
}

QString ProjectElement::attribute(const QString& name) const {
    const Attribute* found = find(Symbol::find(name));
    return found ? found->value : QString();
}

void ProjectElement::setAttribute(const QString& name, const QString& value, bool flag) {
    const Symbol symbol = Symbol::of(name);
    store(symbol, value);
    stamp(symbol, flag);
}

void ProjectElement::removeAttribute(const QString& name) {
    const Symbol symbol = Symbol::of(name);
    if (const Attribute* found = find(symbol))
        m_attributes.erase(m_attributes.begin() + (found - m_attributes.data()));
    stamp(symbol, false);
}

void ProjectElement::stamp(Symbol name, bool flag) {
    if (!m_changes)
        m_changes = std::make_unique<std::map<Symbol, Change>>();
    (*m_changes)[name] = {QDateTime::currentDateTimeUtc(), flag};
    m_modified = true;
}

void ProjectElement::setAttributesFrom(const XMLElement& xmlElement) {
    const auto list = xmlElement.getAttributeList();
    if (list.empty())
        return;
    m_attributes.reserve(m_attributes.size() + list.size());
    for (const XMLAttribute& attribute : list)
        m_attributes.push_back({Symbol::of(std::string_view(attribute.name)), sharedText(attribute.value)});
    if (m_attributes.size() < 2)
        return;
    // The new ones stand behind the old of their names; of equals the last one holds.
    std::stable_sort(m_attributes.begin(), m_attributes.end(),
                     [](const Attribute& a, const Attribute& b) { return a.name < b.name; });
    const auto kept = std::unique(m_attributes.rbegin(), m_attributes.rend(),
                                  [](const Attribute& a, const Attribute& b) { return a.name == b.name; });
    m_attributes.erase(m_attributes.begin(), kept.base());
}

std::vector<ProjectElement::Attribute> ProjectElement::attributes() const {
    std::vector<Attribute> ordered = m_attributes;
    std::sort(ordered.begin(), ordered.end(),
              [](const Attribute& a, const Attribute& b) { return a.name.text() < b.name.text(); });
    return ordered;
}

void ProjectElement::setFileName(const QString& name, bool) {
    store(fileNameSymbol(), name);
    m_fileStuffDone = false;
}

void ProjectElement::setImported(const QString& fileName) {
    store(fileNameSymbol(), fileName);
    m_imported = true;
}

QString ProjectElement::getName() {
    static const Symbol nameSymbol = Symbol::of(QString("Name"));
    if (const Attribute* name = find(nameSymbol); name && !name->value.isEmpty())
        return name->value;
    if (!find(fileNameSymbol()))
        return "<NULL>";
    checkDoFileStuff();
    return path().fileName();
}

void ProjectElement::clearMarks() {
    for (ProjectElement* element = this; element; element = element->nextInTree(this)) {
        element->m_modified = false;
        element->m_changes.reset();
    }
}

ProjectElement::Named ProjectElement::named(Symbol configuration) const {
    if (!m_configurations || !configuration)
        return {};
    const auto found = m_configurations->find(configuration);
    return found == m_configurations->end() ? Named() : found->second;
}

ElementMap ProjectElement::configurations() const {
    ElementMap byName;
    if (m_configurations) {
        for (const auto& [name, entry] : *m_configurations)
            byName.insert(name.text(), entry.last);
    }
    return byName;
}

const QString* ProjectElement::statedValue(Symbol configName, Symbol property) const {
    const ProjectElement* holder = configuration(configName);
    const Attribute* found = holder ? holder->find(property) : nullptr;
    return found ? &found->value : nullptr;
}

bool ProjectElement::getProperty(const QString& configName, const QString& propertyName, QString& inOut,
                                 PropertyInheritanceInformation* info) {
    const QString* value = statedValue(Symbol::find(configName), Symbol::find(propertyName));
    if (!value)
        return false;
    if (info)
        info->append({*value, getName(), this});
    inOut = inOut.isEmpty() ? *value : QString(inOut + ";" + *value);
    return true;
}

bool ProjectElement::propertyHasChanged(const QString& configName, const QString& propertyName,
                                        const QDateTime& since, bool& newer) const {
    const ProjectElement* holder = configuration(configName);
    if (!holder || !holder->m_changes)
        return false;
    const auto change = holder->m_changes->find(Symbol::of(propertyName));
    if (change == holder->m_changes->end())
        return false;
    newer = change->second.time > since;
    return newer || holder->hasAttribute(propertyName);
}

void ProjectElement::updateInheritenceMap() {
    if (m_solution)
        m_solution->inheritance.clear();
    if (!m_configurations)
        return;
    const Symbol list = Symbol::of(QString("inherited_configurations"));
    for (const auto& [name, holders] : *m_configurations) {
        const Attribute* names = holders.last->find(list);
        if (!names)
            continue;
        std::vector<Symbol>& inheritedNames = makeSolutionStuff().inheritance[name];
        for (const QString& entry : names->value.split(u';', Qt::SkipEmptyParts))
            inheritedNames.push_back(Symbol::of(entry));
    }
}

const std::vector<Symbol>& ProjectElement::inherited(Symbol configuration) const {
    static const std::vector<Symbol> none;
    if (!m_solution || !configuration)
        return none;
    const auto found = m_solution->inheritance.find(configuration);
    return found == m_solution->inheritance.end() ? none : found->second;
}

const ElementMap& ProjectElement::projects() const {
    static const ElementMap none;
    return m_solution ? m_solution->projects : none;
}

void ProjectElement::setProjects(ElementMap projects) { makeSolutionStuff().projects = std::move(projects); }

ProjectElement::SolutionStuff& ProjectElement::makeSolutionStuff() {
    if (!m_solution)
        m_solution = std::make_unique<SolutionStuff>();
    return *m_solution;
}
