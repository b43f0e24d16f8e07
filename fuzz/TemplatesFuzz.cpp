// Project templates. The input is the templates file and, behind a line "===", a property groups file that
// recipes may name. Every template is applied to a project of its own, and a second time to the same.

#include "FuzzFiles.h"
#include "project/MSP430ProjectSystem.h"
#include "project/ProjectTemplates.h"
#include "project/TreeDump.h"

#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    MemoryFiles memory;
    const FilesInPlace inPlace(&memory);
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    templatesFile = "/t/templates.xml";
    const auto parts = partsOf({reinterpret_cast<const char*>(data), size});
    memory.write("/t/templates.xml", parts[0]);
    if (parts.size() > 1)
        memory.write("/t/groups.xml", parts[1]);
    MSP430ProjectSystem system;
    ProjectElement* solution = system.createSolution("s", "/s");
    system.setProperty(solution, propertyClass(Setting::property_groups_file_path), "Common", "/t/groups.xml",
                       false);
    ProjectTemplates templates(system);
    for (const QString& name : templates.listTemplates().mid(0, 8)) {
        ProjectElement* project = system.createProject(solution, "p" + name, "/s", "");
        for (int time = 0; time < 2; ++time)
            templates.createProjectFromTemplate(solution, project, *templates.findTemplate(name));
    }
    system.loadedSolution();
    return dump(solution).isEmpty() ? 1 : 0;
}
