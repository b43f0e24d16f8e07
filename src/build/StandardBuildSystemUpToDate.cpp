// When a step is up to date: nothing forces it, its output is there, nothing that the output was made from is
// newer, and no setting that goes into its command has changed since. The last of these tests is here, with
// those for the files that stand beside an output.
//
// A setting counts as changed only if that was in this process and behind the load: the times of changes are
// kept nowhere else. So a run of ostmake never finds one, and looking for any at all comes first. Not every
// setting that shapes a command is listed, and some that are listed shape none.

#include "build/Builder.h"
#include "build/OutputNames.h"
#include "build/StandardBuildSystem.h"
#include "macros/Path.h"
#include "project/MessageReceiver.h"
#include "project/ProjectSystem.h"
#include "properties/PropertyValueGroups.h"
#include "properties/SettingTable.h"

namespace {

using SettingTable::behindGroups;
using TestedSetting = SettingTable::Placed<SettingTable::Outdates>;

constexpr std::vector<TestedSetting> makeTestedBeforeGroups(FrontDoor door) {
    return column(SettingTable::rows, &SettingTable::Columns::outdates, door, {.end = behindGroups});
}

constexpr std::vector<TestedSetting> makeTestedBehindGroups(FrontDoor door) {
    return column(SettingTable::rows, &SettingTable::Columns::outdates, door, {.from = behindGroups});
}

} // namespace

bool StandardBuildSystem::commandUpToDate(ProjectElement* element, const QString& config,
                                          const QDateTime& time, BuildAction action, Builder* builder,
                                          bool quiet) {
    if (!anySettingChanged(element, config))
        return true;
    const auto isCurrent = [&](const PropertyClass* setting) {
        return settingUpToDate(element, *setting, config, time, builder, quiet);
    };
    const auto areCurrent = [&, step = stepOf(action)](std::span<const TestedSetting> tested) {
        return std::ranges::all_of(tested, [&](const TestedSetting& each) {
            return !(each.steps & step) || isCurrent(&propertyClass(each.setting));
        });
    };
    PropertyClassList tools;
    if (isSource(action))
        tools = m_options.tools.compiler;
    else if (action == Link)
        tools = m_options.tools.linker;
    const FrontDoor door = projectSystem->frontDoor();
    return std::ranges::all_of(tools, isCurrent) &&
           areCurrent(SettingTable::constantsFor<makeTestedBeforeGroups>(door)) &&
           (!isSource(action) || propertyGroupsDefinesUpToDate(element, config, time, builder, quiet)) &&
           areCurrent(SettingTable::constantsFor<makeTestedBehindGroups>(door));
}

bool StandardBuildSystem::settingUpToDate(ProjectElement* element, const PropertyClass& propertyClass,
                                          const QString& config, const QDateTime& time, Builder* builder,
                                          bool quiet) {
    class Reasons : public MessageReceiver {
    public:
        Reasons(StandardBuildSystem& system, Builder* builder, bool quiet)
            : m_system(system), m_builder(builder), m_quiet(quiet) {}
        void message(const QString& text) override { m_system.because(text, m_builder, m_quiet); }

    private:
        StandardBuildSystem& m_system;
        Builder* m_builder;
        bool m_quiet;
    };
    Reasons reasons(*this, builder, quiet);
    return projectSystem->upToDate(element, propertyClass, config, time, &reasons, false);
}

/// Whether any setting that the node sees was changed in this run.
bool StandardBuildSystem::anySettingChanged(ProjectElement* element, const QString& config) const {
    const Symbol named = Symbol::findConfiguration(config);
    const ProjectElement* solution = projectSystem->solutionContaining(element);
    const auto isChanged = [](const ProjectElement* holder) { return holder && holder->modified(); };
    for (; element; element = element->parent()) {
        if (!element->hasConfigurations())
            continue;
        if (isChanged(element->configuration(named)) || isChanged(element->configuration(Symbol::common())))
            return true;
        if (!solution)
            continue;
        for (const Symbol inherited : solution->inherited(named)) {
            if (isChanged(element->configuration(inherited)))
                return true;
        }
    }
    return false;
}

bool StandardBuildSystem::propertyGroupsDefinesUpToDate(ProjectElement* element, const QString& config,
                                                        const QDateTime& time, Builder* builder, bool quiet) {
    const PropertyValueGroupFile* groups = propertyValueGroups.current();
    if (!groups)
        return true;
    for (const auto& groupClass : groups->classes()) {
        if (settingUpToDate(element, *groupClass, config, time, builder, quiet))
            continue;
        const QString value = projectSystem->settingFor(element, *groupClass, config);
        if (groupClass->getGroupEntry(value).hasDefines())
            return false;
    }
    return true;
}

bool StandardBuildSystem::mapOutputFileUpToDate(ProjectElement* element, const QString& config,
                                                const QString& fullOutput, Builder* builder, bool quiet) {
    return settingFor(element, Setting::linker_map_file, config) != "Yes" ||
           fileBesideOutput(fullOutput, "map", builder, quiet);
}

bool StandardBuildSystem::additionalOutputFileUpToDate(ProjectElement* element, const QString& config,
                                                       const QString& fullOutput, Builder* builder,
                                                       bool quiet) {
    const QString format = settingFor(element, Setting::linker_output_format, config);
    return format == "None" || fileBesideOutput(fullOutput, format, builder, quiet);
}

/// Whether the file is there; its time does not matter.
bool StandardBuildSystem::fileBesideOutput(const QString& fullOutput, const QString& extension,
                                           Builder* builder, bool quiet) {
    QString full;
    QDateTime time;
    return exists(QString(), Path::absolute(OutputNames::stem(fullOutput)) + "." + extension, full, time,
                  builder, quiet);
}
