// Words of settings that the table of settings can't say without code.

#include "build/CommandWords.h"
#include "build/OutputNames.h"
#include "build/SOBFBuildSystem.h"
#include "project/ProjectSystem.h"
#include "properties/PropertyValueGroups.h"

namespace {

using enum Setting;

/// What a program can tell of the tools that compile it.
void appendReleaseDefinitions(CommandWords& command) {
    command.words.append("-D__OSTREL");
    SOBFBuildSystem::addCommonPreprocessorDefinitions(command.words);
    if (const PropertyValueGroupClass* target = propertyValueGroups.getGroupClass("Target"))
        command.words.append("-D__TARGET_PROCESSOR=" +
                             projectSystem->settingFor(command.element, *target, command.config));
}

void appendLibrary(CommandWords& command, const QString& name) {
    command.words.append(command.system.replaceMacros(
        command.element, "$(TarnDir)/lib/" + name + "$(LibExt).vka", command.config));
}

void appendStandardLibraries(CommandWords& command) {
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
}

void appendChecksum(CommandWords& command) {
    QString sections = command.setting(linker_checksum_sections);
    command.words.append("-H" + sections.replace(u';', u',') + "=" +
                         command.setting(linker_checksum_algorithm).toLower());
}

void appendHeapSize(CommandWords& command) {
    const QString size = command.setting(linker_heap_size);
    bool isNumber = false;
    const qlonglong bytes = size.toLongLong(&isNumber, 10);
    if (isNumber && bytes != 0)
        command.words.append("-Dheap_size=" + size);
}

} // namespace

void CommandWords::appendCoded(SettingTable::Code code) {
    switch (code) {
    case SettingTable::ReleaseDefinitions:
        return appendReleaseDefinitions(*this);
    case SettingTable::StandardLibraries:
        return appendStandardLibraries(*this);
    case SettingTable::Checksum:
        return appendChecksum(*this);
    case SettingTable::HeapSize:
        return appendHeapSize(*this);
    case SettingTable::MapFile:
        words.append("-M" + OutputNames::stem(output) + ".map");
    }
}
