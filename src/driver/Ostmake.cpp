#include "driver/Ostmake.h"

#include "build/MSP430BuildSystem.h"
#include "driver/ChosenElement.h"
#include "driver/Console.h"
#include "driver/OstmakeArgParse.h"
#include "driver/OstmakeBuilder.h"
#include "driver/ProcessExit.h"
#include "driver/Report.h"
#include "driver/Usage.h"
#include "foundation/HException.h"
#include "foundation/Text.h"
#include "macros/MacroSystem.h"
#include "macros/QTx.h"
#include "macros/SystemMacros.h"
#include "project/MSP430ProjectSystem.h"
#include "project/SolutionLoadError.h"
#include "properties/EnvironmentSettings.h"

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

/// What the lower layers warn of, line by line.
void printWarning(QtMsgType, const QMessageLogContext&, const QString& text) { std::cerr << text << '\n'; }

/// Sets the macros that file names and settings are expanded with. Those of -D are set already, and stay.
void setSystemMacros(const OstmakeArgParse& options) {
    macroSystem.setSystemMacro("Platform", "msp430");
    setupDefaultSystemMacros(options.tarnDir);
    PackageSystem::setupPackageMacros(options.packagesDir);
}

int buildFlags(const OstmakeArgParse& options) {
    int flags = options.clean ? BuildFlags::clean : 0;
    if (options.rebuild)
        flags |= BuildFlags::Force;
    if (!options.verbose)
        flags |= BuildFlags::Quiet;
    return flags;
}

/// The process-wide objects stay until the process ends; only a run that comes to its end saves the settings.
int run(int argc, char** argv) {
    environment = new EnvironmentSettings;
    environment->createEntries();
    report = new Report(argv[0], std::cerr);
    OstmakeArgParse options;
    if (argc < 2) {
        printBannerAndUsage();
        return 0;
    }
    options.tarnDir = QTx::rootDirectory();
    options.packagesDir = "$(TarnUserDir)/packages";
    options.parse(argc - 1, argv + 1);
    if (report->errors() != 0)
        return 1;
    checkOptions(options);

    auto* system = new MSP430ProjectSystem;
    projectSystem = system;
    auto* engine = new MSP430BuildSystem;
    system->setToolProperties(engine->toolProperties());
    setSystemMacros(options);
    ProjectElement* element = chosenElement(options);
    requireConfiguration(element, options);

    engine->keepRecordsIn(tarnLocalDataDir());
    Console console;
    OstmakeBuilder builder(*engine, console, options.echo || options.show, options.show);
    engine->build(element, options.config, &builder, buildFlags(options), true, options.batch);
    delete environment;
    environment = nullptr;
    return 0;
}

} // namespace

int ostmake(int argc, char** argv) {
    qInstallMessageHandler(printWarning);
    QTx::setApplicationPath(toText(argv[0]), 1);
    try {
        return run(argc, argv);
    } catch (const ProcessExit& exit) {
        return exit.status;
    } catch (const HException& failure) {
        std::cerr << "error: " << failure.text() << '\n';
    } catch (const SolutionLoadError& error) {
        if (error.badXml)
            std::cerr << "load error: bad XML file - " << error.message << '\n';
        else
            std::cerr << "load error: " << error.file << error.message << '\n';
    } catch (...) {
        std::cerr << "Internal error detected\n";
    }
    return 1;
}
