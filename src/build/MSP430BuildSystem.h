#pragma once

#include "build/SOBFBuildSystem.h"

/// What ties the engine to the MSP430: the words that the tools need for the family.
class MSP430BuildSystem : public SOBFBuildSystem {
public:
    /// Becomes the process's buildSystem.
    MSP430BuildSystem();
    ~MSP430BuildSystem() override;

    /// Always true.
    bool appendBuildOptions(ProjectElement* element, const QString& config, BuildAction action,
                            QStringList& command, Builder* builder) override;
    void appendPreprocessorOptions(ProjectElement* element, const QString& config,
                                   QStringList& command) override;
};
