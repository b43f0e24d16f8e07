// Loading of a solution with its imports, then the questions about its structure and its settings. The input
// is app.vkp and, divided by lines "===", the files 1.vkp, 2.vkp ... beside it.

#include "FuzzFiles.h"
#include "project/MSP430ProjectSystem.h"
#include "project/NodeMacros.h"
#include "project/SolutionLoadError.h"
#include "project/TreeDump.h"

#include <QSet>
#include <cstdint>
#include <cstdlib>

namespace {

void require(bool condition) {
    if (!condition)
        std::abort();
}

/// The resolved text and the trace tell the same.
void checkTrace(const ProjectSystem& system, ProjectElement* element, Setting setting) {
    SettingOrigins origins;
    const QString value = system.settingFor(element, propertyClass(setting), "Debug", nullptr, &origins);
    QString gathered;
    for (const SettingOrigin& origin : origins)
        gathered = gathered.isEmpty() ? origin.text : QString(gathered + ";" + origin.text);
    require(!origins.isEmpty() && gathered == value);
}

void checkElement(ProjectSystem& system, ProjectElement* element) {
    require(element->parent() || element == system.solutionElement());
    if (element->is(ProjectElement::Configuration))
        return;
    for (const Setting setting : {Setting::macros, Setting::project_type, Setting::build_output_directory})
        checkTrace(system, element, setting);
    if (element->is(ProjectElement::File))
        system.getFileType(element);
    const NodeMacros macros(system, element, "Debug");
    const MacroMap map = macros.map();
    for (auto macro = map.cbegin(); macro != map.cend(); ++macro)
        require(macros.value(macro.key()) == macro.value());
}

void checkStructure(ProjectSystem& system) {
    const QList<ProjectElement*> order = system.buildOrder(nullptr, "Debug");
    require(QSet<ProjectElement*>(order.begin(), order.end()).size() == order.size());
    for (ProjectElement* project : system.solutionProjects(nullptr)) {
        require(order.contains(project));
        system.getBatchBuildConfigurations(project, "Debug");
    }
    for (ProjectElement* solution : system.solutionSolutions())
        require(!system.configurations(solution, 7).isEmpty());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    MemoryFiles memory;
    const FilesInPlace inPlace(&memory);
    int number = 0;
    for (const std::string_view part : partsOf({reinterpret_cast<const char*>(data), size})) {
        memory.write(number == 0 ? QString("/s/app.vkp") : "/s/" + QString::number(number) + ".vkp", part);
        ++number;
    }
    MSP430ProjectSystem system;
    try {
        system.loadSolution("/s/app.vkp");
    } catch (const SolutionLoadError& error) {
        require(!error.message.isEmpty() || error.file == "no template for project ");
        require(!system.solutionElement());
        return 0;
    }
    require(!dump(system.solutionElement()).isEmpty());
    checkStructure(system);
    int most = 300; // of a tree that imports have made large, the front
    for (ProjectElement* element = system.solutionElement(); element && most-- > 0;
         element = element->nextInTree(nullptr))
        checkElement(system, element);
    return 0;
}
