// The commands configurations, order and macros.

#include "project/NodeMacros.h"
#include "query/SolutionCommands.h"

#include <QJsonArray>
#include <QJsonObject>

namespace {

QJsonArray namesOf(const QList<ProjectElement*>& elements) {
    QJsonArray names;
    for (ProjectElement* element : elements)
        names.append(element->getName());
    return names;
}

} // namespace

Answer SolutionCommands::configurations(ProjectSystem& system, const Node& node) {
    ProjectElement* element = find(system, node);
    const QStringList offered = system.configurations(element, ProjectSystem::IncludeVisible);
    QString text;
    QJsonArray array;
    for (const QString& name :
         system.configurations(element, ProjectSystem::IncludeVisible | ProjectSystem::IncludeHidden)) {
        const bool hidden = !offered.contains(name);
        text += name + (hidden ? " (hidden)\n" : "\n");
        array.append(QJsonObject{{"name", name}, {"hidden", hidden}});
    }
    return {text, array};
}

Answer SolutionCommands::order(ProjectSystem& system, const Node& node, const QString& configuration) {
    QString text;
    QJsonArray array;
    for (ProjectElement* project : system.buildOrder(find(system, node), configuration)) {
        const QList<ProjectElement*> dependencies = system.directlyDependsOn(project, configuration);
        QStringList names;
        for (ProjectElement* dependency : dependencies)
            names.append(dependency->getName());
        text +=
            project->getName() + (names.isEmpty() ? QString() : QString(" after " + names.join(", "))) + "\n";
        array.append(QJsonObject{{"name", project->getName()}, {"dependencies", namesOf(dependencies)}});
    }
    return {text, array};
}

Answer SolutionCommands::macros(ProjectSystem& system, const Node& node, const QString& configuration) {
    const MacroMap map = NodeMacros(system, find(system, node), configuration).map();
    QString text;
    QJsonObject object;
    for (auto macro = map.cbegin(); macro != map.cend(); ++macro) {
        text += macro.key() + " = \"" + macro.value() + "\"\n";
        object[macro.key()] = macro.value();
    }
    return {text, object};
}
