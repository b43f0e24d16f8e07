#pragma once

#include "project/StandardProjectSystem.h"

/// The tool chain: its settings and the extensions of its files.
class SOBFProjectSystem : public StandardProjectSystem {
public:
    using StandardProjectSystem::StandardProjectSystem;

    void appendCCompilerProperties(PropertyClassList& list) const override;
    void appendLinkerProperties(PropertyClassList& list) const override;
    void appendArchiverProperties(PropertyClassList& list) const override;

    QString objectFileExtension() const override { return QStringLiteral(".vko"); }
    QString libraryFileExtension() const override { return QStringLiteral(".vka"); }
    QString executableFileExtension() const override { return QStringLiteral(".vkx"); }
    QString assemblyCodeFileExtension() const override;
};
