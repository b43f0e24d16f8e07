#include "query/SolutionCommands.h"

#include <QJsonArray>
#include <QJsonObject>
#include <algorithm>

namespace {

using namespace SolutionCommands;

/// The element with its kind, as in `project "app"`; "default" for none.
QString placeOf(const SettingOrigin& origin) {
    if (!origin.element)
        return "default";
    return QString(ProjectElement::tagOf(origin.element->kind())) + " \"" + origin.element->getName() +
           "\", \"" + origin.configuration + "\"";
}

QJsonObject objectFor(const SettingOrigin& origin) {
    if (!origin.element)
        return {{"default", true}, {"text", origin.text}};
    return {{"kind", ProjectElement::tagOf(origin.element->kind())},
            {"name", origin.element->getName()},
            {"configuration", origin.configuration},
            {"text", origin.text}};
}

PropertyClassList classesFor(ProjectSystem& system, const SettingsRequest& request, ProjectElement* element) {
    PropertyClassList classes;
    for (const QString& name : request.names) {
        const PropertyClass* named = catalogueClass(name, system.frontDoor());
        if (!named)
            throw QueryError{"can't find property '" + name + "'"};
        classes.appendUnique(named);
    }
    if (!request.names.isEmpty())
        return classes;
    if (request.shown == Shown::All)
        return catalogue(system.frontDoor());
    for (const PropertyValue* value : system.applicableSettingsFor(element, request.configuration))
        classes.append(value->propertyClass());
    return classes;
}

} // namespace

Answer SolutionCommands::settings(ProjectSystem& system, const SettingsRequest& request) {
    ProjectElement* element = find(system, request.node);
    const bool onlySet = request.names.isEmpty() && request.shown == Shown::Set;
    QString text;
    QJsonArray array;
    for (const PropertyClass* propertyClass : classesFor(system, request, element)) {
        const QString configuration =
            propertyClass->perConfiguration() ? request.configuration : QString("Common");
        SettingOrigins origins;
        const QString value = system.settingFor(element, *propertyClass, configuration, nullptr, &origins);
        if (onlySet && !origins.first().element)
            continue;
        QStringList places;
        QJsonArray traced;
        for (const SettingOrigin& origin : origins) {
            places.append(placeOf(origin));
            traced.append(objectFor(origin));
        }
        text += propertyClass->saveName() + " = \"" + value + "\"\n    from " + places.join("; ") + "\n";
        array.append(QJsonObject{{"name", propertyClass->saveName()}, {"value", value}, {"origins", traced}});
    }
    return {text, array};
}
