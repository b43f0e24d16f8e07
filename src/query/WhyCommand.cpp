#include "query/WhyCommand.h"

#include "build/StandardBuildSystem.h"
#include "build/StepListener.h"
#include "foundation/HException.h"
#include "foundation/Text.h"
#include "query/SilentBuilder.h"

#include <QJsonArray>
#include <QJsonObject>

namespace {

/// Writes the steps down as they come, under a line for each project and configuration.
class StepList : public StepListener {
public:
    void stepDue(ProjectElement* element, const QString& config, const QString& output,
                 const QString& reason) override {
        ProjectElement* project = projectSystem->projectContaining(element);
        const QString projectName = project ? project->getName() : QString("");
        const QString header = projectName + " in " + config + "\n";
        if (header != m_header)
            m_text += m_header = header;
        m_text += "  " + element->getName();
        if (!output.isEmpty())
            m_text += " -> " + output;
        m_text += ": " + reason + "\n";
        m_steps.append(QJsonObject{{"project", projectName},
                                   {"configuration", config},
                                   {"element", element->getName()},
                                   {"output", output},
                                   {"reason", reason}});
    }
    Answer answer() const { return {m_text.isEmpty() ? QString("nothing to do\n") : m_text, m_steps}; }

private:
    QString m_header;
    QString m_text;
    QJsonArray m_steps;
};

} // namespace

Answer SolutionCommands::why(StandardBuildSystem& engine, ProjectElement* node, const QString& configuration,
                             bool batch) {
    const QStringList offered = projectSystem->configurations(node, ProjectSystem::IncludeVisible);
    if (!offered.contains(configuration))
        throw QueryError{"there is no configuration '" + configuration + "', but: " + offered.join(", ")};
    StepList steps;
    SilentBuilder builder;
    engine.setStepListener(&steps);
    try {
        engine.build(node, configuration, &builder, BuildFlags::check | BuildFlags::Quiet, true, batch);
    } catch (const HException& failure) {
        engine.setStepListener(nullptr);
        throw QueryError{toText(failure.text())};
    }
    engine.setStepListener(nullptr);
    return steps.answer();
}
