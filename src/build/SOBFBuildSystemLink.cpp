// The commands that run behind a link under the same group, and the variants of the C library's functions.

#include "build/Builder.h"
#include "build/CommandWords.h"
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

/// What is made of a link's output. Each command runs only if all before it have succeeded.
void SOBFBuildSystem::runBehindLink(const CommandWords& command, const QString& fullOutput) {
    Builder* builder = command.builder;
    const QString stem = OutputNames::stem(command.output);
    const QString fullStem = Path::absolute(OutputNames::stem(fullOutput));
    const QString format = command.setting(linker_output_format);
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
