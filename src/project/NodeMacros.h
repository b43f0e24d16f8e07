#pragma once

#include "macros/MacroScope.h"
#include "properties/Catalogue.h"

#include <QString>

class ProjectElement;
class ProjectSystem;

/// What a `$(...)` in a setting of a node can name, in one configuration. Over the system macros lie the
/// global ones, then the setting "macros", then a table of names whose texts come from the node's place in
/// the tree. Computes only what is asked of it, from the tree as it is at that moment.
class NodeMacros : public MacroScope {
public:
    /// Both must outlive it; `element` is no configuration.
    NodeMacros(const ProjectSystem& system, ProjectElement* element, const QString& configName);

    std::optional<QString> value(const QString& name) const override;
    /// Every macro that there is.
    MacroMap map() const;

private:
    struct Row;
    class Before;

    const MacroMap& underlying() const;
    std::optional<QString> valueBefore(const Row* end, const QString& name) const;
    QString expanded(const char* before, Setting setting) const;

    const ProjectSystem& m_system;
    ProjectElement* m_element;
    const QString m_configName;
    mutable std::optional<MacroMap> m_underlying; ///< all but the table
};
