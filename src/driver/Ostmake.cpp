#include "driver/Ostmake.h"

#include "driver/OstmakeArgParse.h"
#include "driver/ProcessExit.h"
#include "driver/Report.h"
#include "driver/Usage.h"
#include "foundation/HException.h"
#include "foundation/Text.h"
#include "macros/MacroSystem.h"
#include "macros/QTx.h"
#include "macros/SystemMacros.h"

#include <iostream>

namespace {

[[noreturn]] void refuse(const char* message) {
    report->error() << message << '\n';
    throw ProcessExit{1};
}

/// The options that don't go together, in the order in which they are looked at.
void checkOptions(const OstmakeArgParse& options) {
    if (!options.solution.isEmpty() && !options.project.isEmpty())
        refuse("-solution and -project are exclusive.");
    if (options.argument.isEmpty() && options.templateName.isEmpty() && options.type.isEmpty())
        refuse(".vkp file or -template or -type must be specified.");
    if (options.config.isEmpty())
        refuse("-config must be specified.");
    if (!options.templateName.isEmpty() && options.project.isEmpty())
        refuse("-project must be specified with -template.");
    if (!options.type.isEmpty() && options.project.isEmpty())
        refuse("-project must be specified with -type.");
}

int run(int argc, char** argv) {
    Report ostmakeReport(argv[0], std::cerr);
    report = &ostmakeReport;
    OstmakeArgParse options;
    if (argc < 2) {
        printBannerAndUsage();
        return 0;
    }
    options.tarnDir = QTx::rootDirectory();
    options.packagesDir = "$(TarnUserDir)/packages";
    options.parse(argc - 1, argv + 1);
    if (ostmakeReport.errors() != 0)
        return 1;
    checkOptions(options);

    macroSystem.setSystemMacro("Platform", "msp430");
    setupDefaultSystemMacros(options.tarnDir);
    PackageSystem::setupPackageMacros(options.packagesDir);

    refuse("this release reads no solutions yet.");
}

} // namespace

int ostmake(int argc, char** argv) {
    QTx::setApplicationPath(toText(argv[0]), 1);
    try {
        return run(argc, argv);
    } catch (const ProcessExit& exit) {
        return exit.status;
    } catch (const HException& failure) {
        std::cerr << "error: " << failure.text() << '\n';
    } catch (...) {
        std::cerr << "Internal error detected\n";
    }
    return 1;
}
