#pragma once

#include <QString>

class ProjectElement;

/// Learns of each step that a build finds due, and why.
class StepListener {
public:
    virtual ~StepListener() = default;
    /// `output` is the file that the step makes, as its setting names it; empty if it makes none. `reason` is
    /// a sentence.
    virtual void stepDue(ProjectElement* element, const QString& config, const QString& output,
                         const QString& reason) = 0;
};
