#include "project/MSP430ProjectSystem.h"

#include "project/PropertyValueGroupValue.h"
#include "properties/PropertyValueGroups.h"

void MSP430ProjectSystem::appendLinkerProperties(PropertyClassList& list) const {
    SOBFProjectSystem::appendLinkerProperties(list);
    append(list, SettingTable::FamilyLinker);
}

QString MSP430ProjectSystem::libraryVariant(ProjectElement* project, const QString& configName) const {
    const QString multiplier = settingFor(project, Setting::build_use_hardware_multiplier, configName);
    const bool isSingle = settingFor(project, Setting::double_is_float, configName) == "Yes";
    const bool isExtended = settingFor(project, Setting::msp430_insn_set, configName) == "MSP430X";
    QString variant = multiplier == "No Multiplier"       ? "_soft"
                      : multiplier == "16-Bit Multiplier" ? "_hw16"
                                                          : "_hw32";
    variant += isSingle ? "_single" : "_double";
    variant += isExtended ? "_cpux" : "";
    return variant;
}

void MSP430ProjectSystem::munge(ProjectElement* element) {
    for (ProjectElement* child = element->firstChild(); child; child = child->nextSibling()) {
        if (child->is(ProjectElement::Solution))
            munge(child);
        else if (child->is(ProjectElement::Project))
            mungeProject(child);
    }
}

void MSP430ProjectSystem::mungeProject(ProjectElement* project) {
    ProjectElement* folder = findFolder(project, "System Files");
    if (!folder)
        folder = findFolder(project, "Startup Code");
    if (folder) {
        if (ProjectElement* file = findFile(folder, "$(TarnDir)/targets/section_placement.xml"))
            discard(folder, file);
    }
    const QString groups = settingForExpanded(project, Setting::property_groups_file_path, "Common");
    if (!groups.isEmpty())
        propertyValueGroups.setGroupFile(groups);
    if (const PropertyValueGroupClass* target = propertyValueGroups.getGroupClass("Target")) {
        PropertyValueGroupValue value(*this, target, "Common", project);
        value.setPropertyValue(value.propertyValue(), false);
    }
}
