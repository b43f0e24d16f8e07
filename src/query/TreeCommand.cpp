#include "query/SolutionCommands.h"

#include <QHash>
#include <QJsonArray>
#include <QJsonObject>
#include <vector>

namespace {

using namespace SolutionCommands;

/// How the root calls an element, where that is not its name.
QHash<ProjectElement*, QString> listingKeys(const ProjectSystem& system) {
    QHash<ProjectElement*, QString> keys;
    const ElementMap& projects = system.solutionProjects(nullptr);
    for (auto entry = projects.cbegin(); entry != projects.cend(); ++entry)
        keys[entry.value()] = entry.key();
    const ElementMap& solutions = system.solutionSolutions();
    for (auto entry = solutions.cbegin(); entry != solutions.cend(); ++entry) {
        QString& key = keys[entry.value()]; // of several, the way from the root is the longest
        if (entry.key().size() > key.size())
            key = entry.key();
    }
    return keys;
}

QString typeOf(ProjectSystem& system, ProjectElement* element) {
    if (element->is(ProjectElement::Project))
        return system.getProjectType(element);
    return element->is(ProjectElement::File) ? system.getFileType(element) : QString();
}

QJsonObject objectFor(const QString& name, const QString& type, const QString& key, ProjectElement* element) {
    QJsonObject object{{"kind", ProjectElement::tagOf(element->kind())}, {"name", name}};
    if (!type.isEmpty())
        object["type"] = type;
    if (!key.isEmpty())
        object["key"] = key;
    return object;
}

bool isShown(const ProjectElement* element) {
    return !element->is(ProjectElement::Configuration) && !element->is(ProjectElement::Other);
}

/// Lines, and the objects of the nodes that are open.
class TreeWriter {
public:
    explicit TreeWriter(ProjectSystem& system) : m_system(system), m_keys(listingKeys(system)) {}

    Answer run(ProjectElement* root) {
        open(root);
        ProjectElement* next = root->firstChild();
        while (!m_open.empty()) {
            if (!next) {
                next = m_open.back().element->nextSibling();
                close();
            } else if (isShown(next)) {
                open(next);
                next = next->firstChild();
            } else {
                next = next->nextSibling();
            }
        }
        return {m_text, m_result};
    }

private:
    struct Open {
        ProjectElement* element;
        QJsonObject object;
        QJsonArray children;
    };

    void open(ProjectElement* element) {
        const QString name = element->getName();
        const QString type = typeOf(m_system, element);
        const QString key = m_keys.value(element);
        m_text += QString(2 * static_cast<qsizetype>(m_open.size()), u' ') +
                  ProjectElement::tagOf(element->kind()) + " " + name +
                  (type.isEmpty() ? QString() : QString(" [" + type + "]")) +
                  (key.isEmpty() || key == name ? QString() : QString(" as " + key)) + "\n";
        m_open.push_back({element, objectFor(name, type, key, element), {}});
    }

    void close() {
        Open closed = std::move(m_open.back());
        m_open.pop_back();
        if (!closed.children.isEmpty())
            closed.object["children"] = closed.children;
        if (m_open.empty())
            m_result = closed.object;
        else
            m_open.back().children.append(closed.object);
    }

    ProjectSystem& m_system;
    const QHash<ProjectElement*, QString> m_keys;
    std::vector<Open> m_open;
    QString m_text;
    QJsonObject m_result;
};

} // namespace

Answer SolutionCommands::tree(ProjectSystem& system) {
    return TreeWriter(system).run(system.solutionElement());
}

ProjectElement* SolutionCommands::find(ProjectSystem& system, const Node& node) {
    ProjectElement* top = system.solutionElement();
    if (!node.project.isEmpty())
        top = system.findProject(top, node.project);
    if (!top)
        throw QueryError{"can't find project '" + node.project + "'"};
    if (node.file.isEmpty())
        return top;
    for (ProjectElement* element = top; element; element = element->nextInTree(top)) {
        if (element->is(ProjectElement::File) &&
            (element->attribute("file_name") == node.file || element->getName() == node.file))
            return element;
    }
    throw QueryError{"can't find file '" + node.file + "'"};
}
