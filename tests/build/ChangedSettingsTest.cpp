// The settings whose change in this process makes a step out of date, in the order in which they are asked:
// the first that has changed is told, and no other.

#include "macros/QTx.h"
#include "support/BuildFixture.h"

namespace {

using Action = StandardBuildSystem::BuildAction;

constexpr const char* ofSources =
    "file_type build_quietly build_debug_information build_treat_warnings_as_errors build_suppress_warnings "
    "c_additional_options c_only_additional_options cpp_only_additional_options asm_additional_options "
    "c_preprocessor_definitions c_preprocessor_undefinitions c_user_include_directories "
    "c_system_include_directories c_undefine_all_preprocessor_definitions c_enforce_ansi_checking "
    "cpp_enable_exceptions cpp_enable_rtti default_code_section default_data_section default_zeroed_section "
    "default_const_section default_vector_section compile_pre_build_command compile_pre_build_command_wd "
    "compile_post_build_command compile_post_build_command_wd ";
constexpr const char* ofCompilers = "double_is_float compiler_optimization_strategy "
                                    "optimize_register_allocation build_use_hardware_multiplier ";
constexpr const char* ofLinks =
    "project_type project_dependencies build_quietly build_debug_information build_treat_warnings_as_errors "
    "build_suppress_warnings link_include_standard_libraries link_standard_libraries_directory "
    "link_use_multi_threaded_libraries link_IOLibraryName linker_additional_files linker_additional_options "
    "linker_memory_map_file linker_memory_map_macros linker_section_placement_file "
    "linker_section_placement_macros linker_output_format linker_map_file linker_printf_fp_enabled "
    "linker_printf_width_precision_supported linker_printf_fmt_level linker_scanf_fp_enabled "
    "linker_scanf_fmt_level linker_scanf_character_group_matching_enabled linker_pre_build_command "
    "linker_pre_build_command_wd linker_post_build_command linker_post_build_command_wd "
    "link_symbol_definitions linker_keep_symbols linker_stack_size linker_heap_size "
    "linker_checksum_sections linker_checksum_algorithm linker_absolute_listing optimize_cross_calling "
    "linker_cross_call_minimum_subroutine_size linker_cross_call_maximum_passes optimize_cross_jumping "
    "optimize_tail_merging optimize_peepholes optimize_jump_threading optimize_jump_chaining "
    "optimize_flattening optimize_code_motion optimize_dead_code optimize_block_locality "
    "optimize_copy_propagation optimize_register_allocation build_use_hardware_multiplier msp430_insn_set "
    "link_msp430_workaround_CPU_6_bug";
constexpr const char* ofStages = "stage_output_filepath stage_command stage_command_wd stage_set_readonly "
                                 "stage_post_build_command stage_post_build_command_wd";
constexpr const char* ofCombines =
    "combine_output_filepath combine_command combine_command_wd combine_set_readonly";

class ChangedSettings : public BuildFixture {
protected:
    ChangedSettings() {
        load("<project Name=\"p\"><file file_name=\"a.c\"/></project>");
        system.solutionElement()->clearMarks();
    }
    void change(const PropertyClass& setting) {
        system.setProperty(node("p"), setting, "Debug", "x" + QString::number(++changes), false);
    }
    /// What is told of a step whose output is old: a line, or none if no change counts.
    QStringList told(Action action) {
        restart();
        const bool isCurrent = engine->commandUpToDate(node("p"), "Debug", QDateTime::fromSecsSinceEpoch(1),
                                                       action, builder.get(), false);
        EXPECT_EQ(isCurrent, builder->log.isEmpty());
        return builder->log;
    }
    int changes = 0;
};

} // namespace

TEST_F(ChangedSettings, CountInTheirOrderForEachKindOfStep) {
    const struct {
        Action action;
        QString settings;
    } rows[] = {
        {Action::CompileC, QString(ofSources) + ofCompilers + "msp430_insn_set"},
        {Action::CompileCpp, ofSources},
        {Action::CompileForth, ofSources},
        {Action::CompileBasic, QString(ofSources) + ofCompilers},
        {Action::Assemble, QString(ofSources) + "msp430_insn_set"},
        {Action::Link, ofLinks},
        {Action::Archive, "project_type"},
        {Action::Stage, ofStages},
        {Action::Combine, ofCombines},
        {Action::External, ""},
        {Action::NoAction, ""},
    };
    for (const auto& row : rows) {
        system.solutionElement()->clearMarks();
        const QStringList names = row.settings.split(u' ', Qt::SkipEmptyParts);
        for (const PropertyClass* setting : catalogue()) {
            if (!names.contains(setting->saveName()))
                change(*setting);
        }
        EXPECT_EQ(told(row.action), QStringList()) << row.action;
        for (auto name = names.crbegin(); name != names.crend(); ++name) {
            const PropertyClass* setting = catalogueClass(*name);
            ASSERT_TRUE(setting) << name->toStdString();
            change(*setting);
            EXPECT_EQ(told(row.action),
                      QStringList("message: " + setting->shortDescription() + " property has changed."))
                << row.action << " " << name->toStdString();
        }
    }
}

TEST_F(ChangedSettings, OfInheritedConfigurationsCount) {
    load("<configuration Name=\"Debug\" inherited_configurations=\"Base\"/><project Name=\"p\"/>");
    const PropertyClass& setting = propertyClass(Setting::linker_output_format);
    for (const auto& [configuration, count] : {std::pair{"Other", 0}, std::pair{"Base", 1}}) {
        system.solutionElement()->clearMarks();
        system.setProperty(node("p"), setting, configuration, "hex", false);
        EXPECT_EQ(told(Action::Link).size(), count) << configuration;
    }
}

TEST_F(ChangedSettings, OfFurtherToolsCountForTheirStep) {
    memory.write(QTx::applicationDirectory() + "/build_options.xml",
                 "<tools><option name=\"speed\" short=\"Speed\" type=\"String\" tool=\"compiler\"/>"
                 "<option name=\"layout\" short=\"Layout\" type=\"String\" tool=\"linker\"/></tools>");
    for (const auto& [name, of, other] : {std::tuple{"speed", Action::CompileC, Action::Link},
                                          std::tuple{"layout", Action::Link, Action::CompileC}}) {
        restart();
        system.solutionElement()->clearMarks();
        const PropertyClass* setting = engine->findPropertyClass(name);
        ASSERT_TRUE(setting) << name;
        const QString text = setting->shortDescription();
        change(*setting);
        EXPECT_EQ(told(of), QStringList("message: " + text + " property has changed."));
        EXPECT_EQ(told(other), QStringList());
    }
    EXPECT_EQ(engine->findPropertyClass("file_type"), catalogueClass("file_type"));
}

// A changed group is told of in any case, and compiles anew only if its entry has definitions.
TEST_F(ChangedSettings, OfGroupsCountIfTheyDefine) {
    memory.write("/s/groups.xml",
                 "<root><group name=\"Target\" short=\"Target Processor\" default=\"plain\">"
                 "<groupEntry name=\"plain\"/>"
                 "<groupEntry name=\"defining\"><cdefine name=\"X\"/></groupEntry></group></root>");
    propertyValueGroups.setGroupFile("/s/groups.xml");
    const PropertyValueGroupClass* target = propertyValueGroups.getGroupClass("Target");
    ASSERT_TRUE(target);
    for (const char* entry : {"plain", "defining", "none"}) {
        system.solutionElement()->clearMarks();
        system.setProperty(node("p"), *target, "Debug", entry, false);
        for (const Action action : {Action::CompileC, Action::Link}) {
            restart();
            const bool isCompile = action == Action::CompileC;
            EXPECT_EQ(engine->commandUpToDate(node("p"), "Debug", QDateTime::fromSecsSinceEpoch(1), action,
                                              builder.get(), false),
                      !(isCompile && entry == std::string("defining")))
                << entry;
            EXPECT_EQ(builder->log, isCompile ? QStringList("message: Target Processor property has changed.")
                                              : QStringList());
        }
    }
}
