// The commands that put object files together, and those that run behind a link under the same group.

#include "build/Builder.h"
#include "build/CommandWords.h"
#include "build/LinkPlacement.h"
#include "build/OutputNames.h"
#include "build/SOBFBuildSystem.h"
#include "macros/Path.h"

namespace {

using enum Setting;

/// What decides about a variant of printf or scanf.
struct VariantSettings {
    Setting floatingPoint;
    Setting level;
};

/// The part of a variant's name that tells its types apart; `isFloating` receives whether floating point is
/// in it.
QString typesOf(const SOBFBuildSystem& system, ProjectElement* element, const QString& config,
                const VariantSettings& settings, bool& isFloating) {
    const QString level = system.settingFor(element, settings.level, config);
    isFloating = system.settingFor(element, settings.floatingPoint, config) == "Yes";
    if (isFloating) {
        if (system.settingFor(element, double_is_float, config) != "Yes")
            return "double_long_long";
        return level == "long long" ? "float_long_long" : "float_long";
    }
    if (level == "long long")
        return "long_long";
    return level == "int" || level == "long" ? level : QString("");
}

void appendLibrary(CommandWords& command, const QString& name) {
    command.append(command.system.replaceMacros(command.element, "$(TarnDir)/lib/" + name + "$(LibExt).vka",
                                                command.config));
}

bool appendLibraries(CommandWords& command) {
    for (const char* name : {"libc", "libm", "libdebugio"})
        appendLibrary(command, name);
    const QString inputOutput = command.setting(link_IOLibraryName);
    if (inputOutput == "target")
        appendLibrary(command, "libc_targetio_impl");
    else if (inputOutput == "debug")
        appendLibrary(command, "libc_debugio_impl");
    appendLibrary(command,
                  "lib_vfprintf_" + command.system.getPrintfVariant(command.element, command.config));
    appendLibrary(command, "lib_vfscanf_" + command.system.getScanfVariant(command.element, command.config));
    if (command.setting(link_use_multi_threaded_libraries) == "No")
        appendLibrary(command, "libc_user_libc");
    return true;
}

bool appendChecksum(CommandWords& command) {
    QString sections = command.setting(linker_checksum_sections);
    command.append("-H" + sections.replace(u';', u',') + "=" +
                   command.setting(linker_checksum_algorithm).toLower());
    return true;
}

bool appendHeap(CommandWords& command) {
    const QString size = command.setting(linker_heap_size);
    bool isNumber = false;
    const qlonglong bytes = size.toLongLong(&isNumber, 10);
    if (isNumber && bytes != 0)
        command.append("-Dheap_size=" + size);
    return true;
}

/// Where the sections go, for the linker reads no file that tells it.
bool appendPlacement(CommandWords& command) {
    LinkPlacement placement;
    if (!placement.load(command.system, command.element, command.config, *command.builder))
        return false;
    command.words += placement.words();
    return true;
}

using W = CommandWords;
constexpr unsigned links = 1U << StandardBuildSystem::Link;
constexpr auto always = [](CommandRow::Words words) { return CommandRow::always(links, words); };
constexpr auto is = [](Setting setting, const char* value, auto words) {
    return CommandRow::is(links, setting, value, words);
};
constexpr auto isNot = [](Setting setting, const char* value, auto words) {
    return CommandRow::isNot(links, setting, value, words);
};

// What goes into the command of the linker, in this order.
constexpr CommandRow linkRows[] = {
    always([](W& w) { return w.append(w.tool), true; }),
    always([](W& w) { return w.words += w.inputs, true; }),
    isNot(build_quietly, "Yes", "-V"),
    is(build_debug_information, "Yes", "-g"),
    is(build_treat_warnings_as_errors, "Yes", "-we"),
    is(build_suppress_warnings, "Yes", "-w"),
    is(link_include_standard_libraries, "Yes", appendLibraries),
    is(
        optimize_cross_calling, "Standard",
        +[](W& w) { return w.append("-Oxc=" + w.setting(linker_cross_call_minimum_subroutine_size)), true; }),
    is(
        optimize_cross_calling, "Maximum",
        +[](W& w) {
            return w.append("-Oxcx=" + w.setting(linker_cross_call_minimum_subroutine_size)), true;
        }),
    isNot(
        linker_cross_call_maximum_passes, "0",
        +[](W& w) { return w.append("-Oxcp=" + w.setting(linker_cross_call_maximum_passes)), true; }),
    is(optimize_cross_jumping, "Yes", "-Oxj"),
    is(optimize_peepholes, "Yes", "-Oph"),
    is(optimize_flattening, "Yes", "-Ofl"),
    is(optimize_dead_code, "Yes", "-Odc"),
    is(optimize_tail_merging, "Yes", "-Otm"),
    is(optimize_jump_threading, "Yes", "-Ojt"),
    is(optimize_jump_chaining, "Yes", "-Ojc"),
    is(optimize_code_motion, "Yes", "-Ocm"),
    is(optimize_block_locality, "Yes", "-Obl"),
    is(optimize_copy_propagation, "Yes", "-Ocp"),
    isNot(linker_checksum_sections, "", appendChecksum),
    always([](W& w) { return w.appendList("-D", link_symbol_definitions, false), true; }),
    always(appendHeap),
    always([](W& w) { return w.appendExpandedList("", linker_additional_options), true; }),
    always(appendPlacement),
    always([](W& w) { return w.appendList("-K", linker_keep_symbols, false), true; }),
    is(
        linker_map_file, "Yes",
        +[](W& w) { return w.append("-M" + OutputNames::stem(w.output) + ".map"), true; }),
    always([](W& w) {
        return w.words += QStringList{"-o", w.output}, true;
    }),
    always(appendBuildOptions),
};

} // namespace

QString SOBFBuildSystem::getPrintfVariant(ProjectElement* element, const QString& config) const {
    bool isFloating = false;
    const QString types =
        typesOf(*this, element, config, {linker_printf_fp_enabled, linker_printf_fmt_level}, isFloating);
    const bool hasWidth = settingFor(element, linker_printf_width_precision_supported, config) != "No";
    return isFloating || hasWidth ? types : QString(types + "_nwp");
}

QString SOBFBuildSystem::getScanfVariant(ProjectElement* element, const QString& config) const {
    bool isFloating = false;
    const QString types =
        typesOf(*this, element, config, {linker_scanf_fp_enabled, linker_scanf_fmt_level}, isFloating);
    const bool hasGroups =
        settingFor(element, linker_scanf_character_group_matching_enabled, config) == "Yes";
    return hasGroups ? QString(types + "_cc") : types;
}

void SOBFBuildSystem::link(CommandWords& command, const QString& fullOutput) {
    if (!CommandRow::compose(linkRows, command))
        return;
    command.builder->beginGroup(command.element, "Linking " + Path(command.output).fileName(), 0);
    runLink(command, fullOutput);
    command.builder->endGroup(command.element);
}

/// The link, and what is made of its output. Each step runs only if all before it have succeeded.
void SOBFBuildSystem::runLink(const CommandWords& command, const QString& fullOutput) {
    Builder* builder = command.builder;
    const QString stem = OutputNames::stem(command.output);
    const QString fullStem = Path::absolute(OutputNames::stem(fullOutput));
    const QString format = command.setting(linker_output_format);
    builder->setOutputFiles({fullOutput});
    builder->setCommand(command.words);
    carryOut(builder);
    if (halted())
        return;
    if (command.setting(linker_map_file) == "Yes")
        builder->setOutputFiles({fullStem + ".map"}); // the linker has written it, and nothing runs
    if (halted())
        return;
    const auto run = [&](const QStringList& words, const QString& file) {
        builder->setCommand(words);
        builder->setOutputFiles({file});
        carryOut(builder);
    };
    if (format != "None" && format != "vkx") // the tool adds the extension itself
        run({toolRoot() + "/bin/qcvt", command.output, "-o", stem, "-F" + format}, fullStem + "." + format);
    if (!halted() && command.setting(linker_absolute_listing) == "Yes")
        run({toolRoot() + "/bin/qlst", command.output, "-o", stem + ".lst"}, fullStem + ".lst");
}

void SOBFBuildSystem::archive(CommandWords& command, const QString& fullOutput) {
    command.words = QStringList{command.tool, "-c", command.output} + command.inputs;
    command.builder->beginGroup(command.element, "Archiving " + Path(command.output).fileName(), 0);
    command.builder->setOutputFiles({fullOutput});
    command.builder->setCommand(command.words);
    carryOut(command.builder);
    command.builder->endGroup(command.element);
}
