#include "project/SOBFProjectSystem.h"

#include "macros/ReleaseConstants.h"

void SOBFProjectSystem::appendCCompilerProperties(PropertyClassList& list) const {
    StandardProjectSystem::appendCCompilerProperties(list);
    append(list, SettingTable::ToolChainCCompiler);
}

void SOBFProjectSystem::appendLinkerProperties(PropertyClassList& list) const {
    StandardProjectSystem::appendLinkerProperties(list);
    append(list, SettingTable::ToolChainLinker);
}

void SOBFProjectSystem::appendArchiverProperties(PropertyClassList& list) const {
    StandardProjectSystem::appendArchiverProperties(list);
    append(list, SettingTable::ToolChainArchiver);
}

QString SOBFProjectSystem::assemblyCodeFileExtension() const {
    return QLatin1Char('.') + QLatin1String(Get_ASM_FILE_EXTENSION());
}
