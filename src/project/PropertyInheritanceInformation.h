#pragma once

#include <QList>
#include <QString>

class ProjectElement;

/// One value that a search for a setting found. The default's has an empty name and no element.
struct PropertyInheritanceItem {
    QString value;
    QString name; ///< of the element that gave it
    ProjectElement* element = nullptr;
};

/// Where a setting's value came from, in search order. Values out of "Common", where a search for another
/// configuration falls back to it, are not among them: SettingOrigins tells those too.
using PropertyInheritanceInformation = QList<PropertyInheritanceItem>;

/// One hit of a search: this element states this text in this configuration. The default's has neither
/// element nor configuration.
struct SettingOrigin {
    ProjectElement* element = nullptr;
    QString configuration;
    QString text;
};

/// Every hit of a search, in its order: one for a single value, one or more for a list.
using SettingOrigins = QList<SettingOrigin>;
