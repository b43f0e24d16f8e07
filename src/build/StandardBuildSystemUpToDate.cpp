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

namespace {

using enum Setting;

constexpr unsigned bit(StandardBuildSystem::BuildAction action) { return 1U << action; }

constexpr unsigned sources = bit(StandardBuildSystem::CompileC) | bit(StandardBuildSystem::CompileCpp) |
                             bit(StandardBuildSystem::CompileForth) | bit(StandardBuildSystem::CompileBasic) |
                             bit(StandardBuildSystem::Assemble);
constexpr unsigned links = bit(StandardBuildSystem::Link);
constexpr unsigned archives = bit(StandardBuildSystem::Archive);
constexpr unsigned stages = bit(StandardBuildSystem::Stage);
constexpr unsigned combines = bit(StandardBuildSystem::Combine);

} // namespace

// In the order in which they are tested.
const StandardBuildSystem::TestedSetting StandardBuildSystem::testedSettings[] = {
    {sources, file_type},
    {links | archives, project_type},
    {links, project_dependencies},
    {sources | links, build_quietly},
    {sources | links, build_debug_information},
    {sources | links, build_treat_warnings_as_errors},
    {sources | links, build_suppress_warnings},
    {sources, c_additional_options},
    {sources, c_only_additional_options},
    {sources, cpp_only_additional_options},
    {sources, asm_additional_options},
    {sources, c_preprocessor_definitions},
    {sources, c_preprocessor_undefinitions},
    {sources, c_user_include_directories},
    {sources, c_system_include_directories},
    {sources, c_undefine_all_preprocessor_definitions},
    {sources, c_enforce_ansi_checking},
    {sources, cpp_enable_exceptions},
    {sources, cpp_enable_rtti},
    {sources, default_code_section},
    {sources, default_data_section},
    {sources, default_zeroed_section},
    {sources, default_const_section},
    {sources, default_vector_section},
    {sources, compile_pre_build_command},
    {sources, compile_pre_build_command_wd},
    {sources, compile_post_build_command},
    {sources, compile_post_build_command_wd},
    {links, link_include_standard_libraries},
    {links, link_standard_libraries_directory},
    {links, link_use_multi_threaded_libraries},
    {links, link_IOLibraryName},
    {links, linker_additional_files},
    {links, linker_additional_options},
    {links, linker_memory_map_file},
    {links, linker_memory_map_macros},
    {links, linker_section_placement_file},
    {links, linker_section_placement_macros},
    {links, linker_output_format},
    {links, linker_map_file},
    {links, linker_printf_fp_enabled},
    {links, linker_printf_width_precision_supported},
    {links, linker_printf_fmt_level},
    {links, linker_scanf_fp_enabled},
    {links, linker_scanf_fmt_level},
    {links, linker_scanf_character_group_matching_enabled},
    {links, linker_pre_build_command},
    {links, linker_pre_build_command_wd},
    {links, linker_post_build_command},
    {links, linker_post_build_command_wd},
    {links, link_symbol_definitions},
    {links, linker_keep_symbols},
    {stages, stage_output_filepath},
    {stages, stage_command},
    {stages, stage_command_wd},
    {stages, stage_set_readonly},
    {stages, stage_post_build_command},
    {stages, stage_post_build_command_wd},
    {combines, combine_output_filepath},
    {combines, combine_command},
    {combines, combine_command_wd},
    {combines, combine_set_readonly},
};

bool StandardBuildSystem::commandUpToDate(ProjectElement* element, const QString& config,
                                          const QDateTime& time, BuildAction action, Builder* builder,
                                          bool quiet) {
    if (!anySettingChanged(element, config))
        return true;
    PropertyClassList tools;
    if (isSource(action))
        tools = m_options.tools.compiler;
    else if (action == Link)
        tools = m_options.tools.linker;
    for (const PropertyClass* toolProperty : tools) {
        if (!settingUpToDate(element, *toolProperty, config, time, builder, quiet))
            return false;
    }
    return settingsUpToDate(testedSettings, element, config, time, action, builder, quiet) &&
           (!isSource(action) || propertyGroupsDefinesUpToDate(element, config, time, builder, quiet));
}

bool StandardBuildSystem::settingsUpToDate(std::span<const TestedSetting> rows, ProjectElement* element,
                                           const QString& config, const QDateTime& time, BuildAction action,
                                           Builder* builder, bool quiet) {
    if (!anySettingChanged(element, config))
        return true;
    for (const TestedSetting& row : rows) {
        if ((row.actions & bitOf(action)) &&
            !settingUpToDate(element, propertyClass(row.setting), config, time, builder, quiet))
            return false;
    }
    return true;
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
    return settingFor(element, linker_map_file, config) != "Yes" ||
           fileBesideOutput(fullOutput, "map", builder, quiet);
}

bool StandardBuildSystem::additionalOutputFileUpToDate(ProjectElement* element, const QString& config,
                                                       const QString& fullOutput, Builder* builder,
                                                       bool quiet) {
    const QString format = settingFor(element, linker_output_format, config);
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
