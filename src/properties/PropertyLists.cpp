#include "properties/PropertyLists.h"

#include "macros/ReleaseConstants.h"
#include "properties/Catalogue.h"

#include <initializer_list>
#include <variant>

namespace {

using enum Setting;
using enum PropertyLists::Part;
using Settings = std::initializer_list<Setting>;

constexpr Settings sections = {default_code_section, default_data_section, default_zeroed_section,
                               default_const_section, default_vector_section};

constexpr Settings compiler = {c_preprocessor_definitions,
                               c_preprocessor_undefinitions,
                               c_user_include_directories,
                               c_system_include_directories,
                               c_undefine_all_preprocessor_definitions,
                               c_ignore_includes,
                               build_treat_warnings_as_errors,
                               build_suppress_warnings,
                               build_debug_information,
                               build_quietly,
                               default_code_section,
                               default_data_section,
                               default_zeroed_section,
                               default_const_section,
                               default_vector_section,
                               compile_pre_build_command,
                               compile_pre_build_command_wd,
                               compile_post_build_command,
                               compile_post_build_command_wd};

constexpr Settings linker = {linker_memory_map_file,
                             linker_memory_map_macros,
                             linker_map_file,
                             linker_section_placement_file,
                             linker_section_placement_macros,
                             link_include_standard_libraries,
                             link_standard_libraries_directory,
                             link_use_multi_threaded_libraries,
                             link_IOLibraryName,
                             linker_additional_files,
                             linker_additional_options,
                             linker_output_format,
                             linker_printf_fmt_level,
                             linker_printf_fp_enabled,
                             linker_printf_width_precision_supported,
                             linker_scanf_fmt_level,
                             linker_scanf_fp_enabled,
                             linker_scanf_character_group_matching_enabled,
                             linker_pre_build_command,
                             linker_pre_build_command_wd,
                             linker_post_build_command,
                             linker_post_build_command_wd,
                             link_symbol_definitions,
                             linker_keep_symbols};

constexpr Settings target = {
    target_reset_script,         target_attach_script,        target_go_script,
    target_stop_script,          target_connect_script,       target_disconnect_script,
    target_debug_begin_script,   target_debug_end_script,     target_extras_script,
    arm_linker_jtag_pad_pre_ir,  arm_linker_jtag_pad_post_ir, arm_linker_jtag_pad_pre_dr,
    arm_linker_jtag_pad_post_dr, debug_command_arguments,     debug_working_directory,
    debug_additional_load_files, debug_entry_point_symbol,    debug_startup_completion_point};

constexpr Settings sobfLinker = {linker_heap_size,
                                 double_is_float,
                                 linker_checksum_sections,
                                 linker_checksum_algorithm,
                                 linker_absolute_listing,
                                 optimize_cross_calling,
                                 optimize_cross_jumping,
                                 optimize_flattening,
                                 optimize_tail_merging,
                                 optimize_code_motion,
                                 optimize_block_locality,
                                 linker_cross_call_minimum_subroutine_size,
                                 linker_cross_call_maximum_passes,
                                 optimize_copy_propagation,
                                 optimize_jump_threading,
                                 optimize_jump_chaining,
                                 optimize_peepholes,
                                 optimize_dead_code,
                                 build_use_hardware_multiplier};

constexpr Settings staging = {stage_post_build_command,  stage_post_build_command_wd, stage_command,
                              stage_command_wd,          stage_output_filepath,       stage_package_filepath,
                              stage_package_member_name, stage_set_readonly};

void append(PropertyClassList& list, Settings settings) {
    for (const Setting setting : settings)
        list.appendUnique(&propertyClass(setting));
}

void append(PropertyClassList& list, const PropertyClassList& classes) {
    for (const PropertyClass* added : classes)
        list.appendUnique(added);
}

} // namespace

namespace PropertyLists {

void appendCompilerProperties(PropertyClassList& list, const ToolProperties& tools) {
    append(list, compiler);
    append(list, tools.compiler);
}

void appendCCompilerProperties(PropertyClassList& list, const ToolProperties& tools) {
    append(list, {c_additional_options});
    if (Get_TARGET_CPP())
        append(list, {c_only_additional_options});
    append(list, {c_enforce_ansi_checking});
    appendCompilerProperties(list, tools);
}

void appendCppCompilerProperties(PropertyClassList& list) {
    append(list, {cpp_only_additional_options, cpp_enable_exceptions, cpp_enable_rtti});
}

void appendAssemblerProperties(PropertyClassList& list, const ToolProperties& tools) {
    append(list, {asm_additional_options});
    appendCompilerProperties(list, tools);
}

void appendLinkerProperties(PropertyClassList& list, const ToolProperties& tools) {
    append(list, linker);
    append(list, tools.linker);
}

void appendTargetProperties(PropertyClassList& list) { append(list, target); }

void appendSOBFCCompilerProperties(PropertyClassList& list) {
    append(list, sections);
    append(list, {compiler_optimization_strategy, optimize_register_allocation});
}

void appendSOBFAssemblerProperties(PropertyClassList& list) { append(list, sections); }

void appendSOBFArchiverProperties(PropertyClassList& list) {
    append(list, {double_is_float, build_use_hardware_multiplier});
}

void appendSOBFLinkerProperties(PropertyClassList& list) { append(list, sobfLinker); }

void appendMSP430LinkerProperties(PropertyClassList& list) {
    append(list, {msp430_debug_interface, link_msp430_workaround_CPU_6_bug, msp430_identify_string,
                  msp430_insn_set});
}

} // namespace PropertyLists

namespace {

/// A step of a list that is made of settings and of parts.
using Step = std::variant<Setting, PropertyLists::Part>;
using Steps = std::initializer_list<Step>;

void append(PropertyClassList& list, Steps steps, const PropertyLists::AppendPart& appendPart) {
    for (const Step& step : steps) {
        if (const Setting* setting = std::get_if<Setting>(&step))
            list.appendUnique(&propertyClass(*setting));
        else if (std::get<PropertyLists::Part>(step) != CppCompiler || Get_TARGET_CPP())
            appendPart(std::get<PropertyLists::Part>(step), list);
    }
}

constexpr Steps executableSteps = {build_output_directory,
                                   build_intermediate_directory,
                                   build_object_file_name,
                                   CCompiler,
                                   CppCompiler,
                                   Assembler,
                                   Linker,
                                   Target,
                                   build_output_file_name,
                                   property_groups_file_path};

constexpr Steps librarySteps = {build_output_directory,
                                build_intermediate_directory,
                                build_object_file_name,
                                CCompiler,
                                CppCompiler,
                                Assembler,
                                Archiver,
                                build_library_file_name};

constexpr Steps objectFileSteps = {build_output_directory, build_object_file_name, CCompiler, CppCompiler,
                                   Assembler};

constexpr Steps combiningSteps = {build_output_directory, combine_command, combine_command_wd,
                                  combine_output_filepath, combine_set_readonly};

constexpr Steps externalSteps = {external_build_file_name,
                                 external_build_command,
                                 external_clean_command,
                                 external_load_address,
                                 external_start_address,
                                 external_load_file_type,
                                 Target,
                                 property_groups_file_path};

} // namespace

namespace PropertyLists {

void appendSolutionProperties(PropertyClassList& list, const AppendPart& appendPart) {
    append(list,
           {build_output_directory, build_root_output_directory, build_intermediate_directory, CCompiler,
            CppCompiler, Assembler, Linker},
           appendPart);
    append(list, staging);
}

void appendProjectProperties(PropertyClassList& list, const QString& projectType,
                             const AppendPart& appendPart) {
    append(list, {project_dependencies, macros});
    if (projectType == "Executable") {
        append(list, executableSteps, appendPart);
    } else if (projectType == "Library") {
        append(list, librarySteps, appendPart);
    } else if (projectType == "Object file") {
        append(list, objectFileSteps, appendPart);
    } else if (projectType == "Staging") {
        append(list, {build_output_directory});
        append(list, staging);
    } else if (projectType == "Combining") {
        append(list, combiningSteps, appendPart);
    } else if (projectType == "Externally Built Executable") {
        append(list, externalSteps, appendPart);
    }
}

} // namespace PropertyLists
