#include "project/SOBFProjectSystem.h"

#include "macros/ReleaseConstants.h"

void SOBFProjectSystem::appendCCompilerProperties(PropertyClassList& list) const {
    StandardProjectSystem::appendCCompilerProperties(list);
    PropertyLists::appendSOBFCCompilerProperties(list);
}

void SOBFProjectSystem::appendAssemblerProperties(PropertyClassList& list) const {
    StandardProjectSystem::appendAssemblerProperties(list);
    PropertyLists::appendSOBFAssemblerProperties(list);
}

void SOBFProjectSystem::appendLinkerProperties(PropertyClassList& list) const {
    StandardProjectSystem::appendLinkerProperties(list);
    PropertyLists::appendSOBFLinkerProperties(list);
}

void SOBFProjectSystem::appendArchiverProperties(PropertyClassList& list) const {
    StandardProjectSystem::appendArchiverProperties(list);
    PropertyLists::appendSOBFArchiverProperties(list);
}

QString SOBFProjectSystem::assemblyCodeFileExtension() const {
    return QLatin1Char('.') + QLatin1String(Get_ASM_FILE_EXTENSION());
}
