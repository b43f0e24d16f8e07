#pragma once

#include "build/Builder.h"

/// Takes what a build says and does nothing with it; no command comes to it.
class SilentBuilder : public Builder {
public:
    void beginGroup(ProjectElement*, const QString&, int) override {}
    void endGroup(ProjectElement*) override {}
    void init() override {}
    void setDirectory(const QString&) override {}
    void setCommand(const QStringList&) override {}
    void setEnvironment(const QStringList&) override {}
    void setOutputFiles(const QStringList&) override {}
    void setTemporaryFiles(const QStringList&) override {}
    void doit() override {}
    void error(const QString&) override {}
};
