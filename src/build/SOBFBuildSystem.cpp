// The frame of every command, and the commands that make an object file.

#include "build/SOBFBuildSystem.h"

#include "build/Builder.h"
#include "build/CommandWords.h"
#include "build/OutputNames.h"
#include "build/Words.h"
#include "macros/MacroSystem.h"
#include "macros/Path.h"
#include "macros/ReleaseConstants.h"
#include "object/ObjectFile.h"
#include "project/ProjectSystem.h"
#include "properties/EnvironmentSettings.h"
#include "properties/PropertyValueGroups.h"

namespace {

using enum Setting;

constexpr unsigned c = 1U << StandardBuildSystem::CompileC;
constexpr unsigned compilers = c | 1U << StandardBuildSystem::CompileBasic;
constexpr unsigned assembler = 1U << StandardBuildSystem::Assemble;
constexpr unsigned links = 1U << StandardBuildSystem::Link;
constexpr unsigned all = compilers | assembler;

/// What a program can tell of the tools that compile it.
bool appendDefinitions(CommandWords& command) {
    command.append("-D__OSTREL");
    SOBFBuildSystem::addCommonPreprocessorDefinitions(command.words);
    if (const PropertyValueGroupClass* target = propertyValueGroups.getGroupClass("Target"))
        command.append("-D__TARGET_PROCESSOR=" +
                       projectSystem->settingFor(command.element, *target, command.config));
    return true;
}

bool appendIncludes(CommandWords& command) {
    command.appendList("-I", c_user_include_directories, true);
    command.appendList("-J", c_system_include_directories, true);
    return true;
}

/// The option that moves a kind of data into another section than the tools would choose.
void appendSection(CommandWords& command, Setting setting, const char* option, const char* usual) {
    const QString name = command.setting(setting).trimmed();
    if (!name.isEmpty() && name != QLatin1String(usual))
        command.append(option + name);
}

bool appendSections(CommandWords& command) {
    appendSection(command, default_code_section, "-Rc,", Get_DEFAULT_CODE_SECTION_NAME());
    appendSection(command, default_data_section, "-Rd,", Get_DEFAULT_DATA_SECTION_NAME());
    appendSection(command, default_zeroed_section, "-Rz,", Get_DEFAULT_ZEROED_SECTION_NAME());
    appendSection(command, default_const_section, "-Rk,", Get_DEFAULT_CONST_SECTION_NAME());
    appendSection(command, default_vector_section, "-Rv,", Get_DEFAULT_VECTORS_SECTION_NAME());
    return true;
}

using W = CommandWords;
constexpr auto always = [](unsigned actions, auto words) { return CommandRow::always(actions, words); };
constexpr auto is = [](unsigned actions, Setting setting, const char* value, auto words) {
    return CommandRow::is(actions, setting, value, words);
};
constexpr auto isNot = [](unsigned actions, Setting setting, const char* value, auto words) {
    return CommandRow::isNot(actions, setting, value, words);
};

// What goes into the command of each tool, in this order.
constexpr CommandRow compileRows[] = {
    always(
        all, +[](W& w) { return w.append(w.tool), true; }),
    always(
        all, +[](W& w) { return w.appendExpandedList("-D", c_preprocessor_definitions), true; }),
    always(
        all, +[](W& w) { return w.appendList("-U", c_preprocessor_undefinitions, true), true; }),
    always(
        assembler, +[](W& w) { return w.appendExpandedList("", asm_additional_options), true; }),
    always(
        compilers, +[](W& w) { return w.appendExpandedList("", c_additional_options), true; }),
    isNot(all, build_quietly, "Yes", "-V"),
    is(all, c_undefine_all_preprocessor_definitions, "No", appendDefinitions),
    is(all, build_debug_information, "Yes", "-g"),
    is(all, build_treat_warnings_as_errors, "Yes", "-we"),
    is(all, build_suppress_warnings, "Yes", "-w"),
    is(compilers, compiler_optimization_strategy, "Minimize size", "-O-9"),
    isNot(compilers, compiler_optimization_strategy, "Minimize size", "-O+9"),
    is(compilers, optimize_register_allocation, "None", "-Or-"),
    is(compilers, optimize_register_allocation, "Locals Only", "-Orl"),
    is(compilers, optimize_register_allocation, "Locals and Globals", "-Org"),
    always(all, appendSections),
    is(all, c_ignore_includes, "No", appendIncludes),
    is(c, c_enforce_ansi_checking, "Yes", "-ansi"),
    is(compilers, double_is_float, "Yes", "-msd"),
    is(c, build_use_hardware_multiplier, "Yes", "-mmpy"),
    is(c, build_use_hardware_multiplier, "Inline", "-mmpyinl"),
    always(
        all, +[](W& w) { return w.append(w.inputs.value(0)), true; }),
    always(all, "-o"),
    always(
        all, +[](W& w) { return w.append(w.output), true; }),
    always(all, appendBuildOptions),
};

const char* toolOf(StandardBuildSystem::BuildAction action) {
    switch (action) {
    case StandardBuildSystem::CompileC:
        return "/bin/qcomp";
    case StandardBuildSystem::CompileBasic:
        return "/bin/qbas";
    case StandardBuildSystem::Assemble:
        return "/bin/qasm";
    case StandardBuildSystem::Link:
        return "/bin/qlink";
    case StandardBuildSystem::Archive:
        return "/bin/qarc";
    default:
        return nullptr;
    }
}

} // namespace

QString SOBFBuildSystem::toolRoot() {
    const QString text = environment->property(EnvironmentKeys::toolChainRootDirectory)->propertyValue();
    return MacroSystem::replaceMacros(macroSystem.systemMacros(), text);
}

void SOBFBuildSystem::addCommonPreprocessorDefinitions(QStringList& command) {
    command.append("-D__OSTREL_MAJOR_VERSION=" + QString::number(Get_RELEASE_MAJOR_NUMBER()));
    command.append("-D__OSTREL_MINOR_VERSION=" + QString::number(Get_RELEASE_MINOR_NUMBER()));
    command.append("-D__OSTREL_REVISION=" + QString::number(Get_RELEASE_REVISION_NUMBER()));
}

void SOBFBuildSystem::createCommandFor(ProjectElement* element, const QString& config, BuildAction action,
                                       const QString& output, const QString& fullOutput,
                                       const QStringList& inputs, Builder* builder, bool, bool) {
    if (!builder)
        return;
    builder->init();
    builder->setDirectory(projectSystem->projectDirectoryPath(projectSystem->projectContaining(element)));
    const char* tool = toolOf(action);
    if (!tool)
        return; // C++ and Forth: this tool chain has no compiler for them
    CommandWords command{*this, element, config, action, builder, toolRoot() + tool, output, inputs};
    if (action == Link)
        link(command, fullOutput);
    else if (action == Archive)
        archive(command, fullOutput);
    else
        compile(command, fullOutput);
}

void SOBFBuildSystem::compile(CommandWords& command, const QString& fullOutput) {
    if (!CommandRow::compose(compileRows, command))
        return;
    const char* caption = command.action == Assemble ? "Assembling " : "Compiling ";
    command.builder->beginGroup(command.element, caption + command.element->getName(), 0);
    command.builder->setOutputFiles({fullOutput});
    command.builder->setCommand(command.words);
    carryOut(command.builder);
    command.builder->endGroup(command.element);
}

QString SOBFBuildSystem::preprocess(ProjectElement* element, const QString& config, Builder* builder) {
    const QString directory = projectSystem->projectDirectoryPath(projectSystem->projectContaining(element));
    element->checkDoFileStuff();
    const QString input = getAbsPath(directory, element->relativeName());
    const QString result = OutputNames::directoryOf(input) + "/" + OutputNames::completeBaseName(input) +
                           "_PP." + Path(input).extension(false);
    if (!builder)
        return result;
    CommandWords command{*this,  element, config, CompileC, builder, toolRoot() + toolOf(CompileC),
                         result, {input}};
    command.words = QStringList{command.tool, "-E"};
    command.appendList("-D", c_preprocessor_definitions, false);
    command.appendList("-U", c_preprocessor_undefinitions, false);
    if (command.setting(c_undefine_all_preprocessor_definitions) == "No")
        appendDefinitions(command);
    if (command.setting(c_ignore_includes) == "No")
        appendIncludes(command);
    appendPreprocessorOptions(element, config, command.words);
    command.words += QStringList{input, "-o", result};
    builder->init();
    builder->setDirectory(directory);
    builder->beginGroup(element, "Preprocessing " + element->getName(), 0);
    builder->setCommand(command.words);
    builder->setTemporaryFiles({result});
    carryOut(builder);
    builder->endGroup(element);
    return result;
}

// Up-to-date decisions.

const StandardBuildSystem::TestedSetting SOBFBuildSystem::testedSettings[] = {
    {compilers, double_is_float},
    {compilers, compiler_optimization_strategy},
    {compilers, optimize_register_allocation},
    {compilers, build_use_hardware_multiplier},
    {links, linker_stack_size},
    {links, linker_heap_size},
    {links, linker_output_format},
    {links, linker_checksum_sections},
    {links, linker_checksum_algorithm},
    {links, linker_absolute_listing},
    {links, optimize_cross_calling},
    {links, linker_cross_call_minimum_subroutine_size},
    {links, linker_cross_call_maximum_passes},
    {links, optimize_cross_jumping},
    {links, optimize_tail_merging},
    {links, optimize_peepholes},
    {links, optimize_jump_threading},
    {links, optimize_jump_chaining},
    {links, optimize_flattening},
    {links, optimize_code_motion},
    {links, optimize_dead_code},
    {links, optimize_block_locality},
    {links, optimize_copy_propagation},
    {links, optimize_register_allocation},
    {links, build_use_hardware_multiplier},
};

bool SOBFBuildSystem::commandUpToDate(ProjectElement* element, const QString& config, const QDateTime& time,
                                      BuildAction action, Builder* builder, bool quiet) {
    return StandardBuildSystem::commandUpToDate(element, config, time, action, builder, quiet) &&
           settingsUpToDate(testedSettings, element, config, time, action, builder, quiet);
}

DependencyList SOBFBuildSystem::getObjectFileDependencies(const QString&, const QString&,
                                                          const QString& objectFile) {
    return objectFileDependencies(objectFile);
}
