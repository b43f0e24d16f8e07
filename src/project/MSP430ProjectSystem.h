#pragma once

#include "project/SOBFProjectSystem.h"

/// What ties the project system to the MSP430: its settings, its library names, the upgrade of its old
/// projects.
class MSP430ProjectSystem : public SOBFProjectSystem {
public:
    using SOBFProjectSystem::SOBFProjectSystem;

    void appendLinkerProperties(PropertyClassList& list) const override;
    /// Takes the section placement file, which a setting names now, out of the projects, and applies their
    /// target's property group anew.
    void munge(ProjectElement* element) override;
    QString libraryVariant(ProjectElement* project, const QString& configName) const override;

private:
    void mungeProject(ProjectElement* project);
};
