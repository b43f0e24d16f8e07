#include "build/MSP430BuildSystem.h"

using enum Setting;

MSP430BuildSystem::MSP430BuildSystem() { buildSystem = this; }

MSP430BuildSystem::~MSP430BuildSystem() {
    if (buildSystem == this)
        buildSystem = nullptr;
}

bool MSP430BuildSystem::commandUpToDate(ProjectElement* element, const QString& config, const QDateTime& time,
                                        BuildAction action, Builder* builder, bool quiet) {
    static constexpr TestedSetting tested[] = {
        {bitOf(CompileC) | bitOf(Assemble) | bitOf(Link), msp430_insn_set},
        {bitOf(Link), link_msp430_workaround_CPU_6_bug},
    };
    return SOBFBuildSystem::commandUpToDate(element, config, time, action, builder, quiet) &&
           settingsUpToDate(tested, element, config, time, action, builder, quiet);
}

bool MSP430BuildSystem::appendBuildOptions(ProjectElement* element, const QString& config, BuildAction action,
                                           QStringList& command, Builder*) {
    const bool isCompiled = action == CompileC || action == Assemble;
    if ((isCompiled || action == Link) && settingFor(element, msp430_insn_set, config) == "MSP430X")
        command.append("-mcpux");
    if (isCompiled)
        appendPreprocessorOptions(element, config, command);
    if (action == Link && settingFor(element, link_msp430_workaround_CPU_6_bug, config) == "Yes")
        command.append("-fcpu6");
    return true;
}

void MSP430BuildSystem::appendPreprocessorOptions(ProjectElement* element, const QString& config,
                                                  QStringList& command) {
    if (settingFor(element, c_undefine_all_preprocessor_definitions, config) == "No")
        command.append("-D__OSTREL_MSP430");
}
