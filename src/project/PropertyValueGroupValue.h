#pragma once

#include "project/ProjectPropertyValue.h"

class PropertyValueGroupClass;

/// The value of a property group at a node: a choice that stands for a set of settings. Choosing an entry
/// states all of them beside the choice itself.
class PropertyValueGroupValue : public ProjectPropertyValue {
public:
    PropertyValueGroupValue(ProjectSystem& system, const PropertyValueGroupClass* groupClass,
                            const QString& configuration, ProjectElement* node);

    void setPropertyValue(const QString& text) override { setPropertyValue(text, false); }
    /// Chooses the entry of this name; if there is none, the group's default.
    void setPropertyValue(const QString& text, bool flag);

private:
    const PropertyValueGroupClass* m_groupClass;
};
