#include "build/MSP430BuildSystem.h"

#include "properties/SettingColumns.h"

MSP430BuildSystem::MSP430BuildSystem() { buildSystem = this; }

MSP430BuildSystem::~MSP430BuildSystem() {
    if (buildSystem == this)
        buildSystem = nullptr;
}

bool MSP430BuildSystem::appendBuildOptions(ProjectElement* element, const QString& config, BuildAction action,
                                           QStringList& command, Builder*) {
    appendFamilyWords(element, config, stepOf(action), command);
    return true;
}

void MSP430BuildSystem::appendPreprocessorOptions(ProjectElement* element, const QString& config,
                                                  QStringList& command) {
    appendFamilyWords(element, config, SettingTable::Preprocess, command);
}
