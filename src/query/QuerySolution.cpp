#include "query/QuerySolution.h"

#include "macros/MacroSystem.h"
#include "macros/Path.h"
#include "macros/QTx.h"
#include "macros/SystemMacros.h"
#include "project/MSP430ProjectSystem.h"
#include "properties/EnvironmentSettings.h"

#include <QCommandLineParser>

namespace {

/// The value of an option, or what holds without it.
QString valueOr(const QCommandLineParser& words, const char* option, const QString& otherwise) {
    return words.isSet(option) ? words.value(option) : otherwise;
}

void defineMacros(const QStringList& definitions) {
    const MacroMap macros = MacroSystem::macrosFromStringList(definitions);
    for (auto macro = macros.cbegin(); macro != macros.cend(); ++macro)
        macroSystem.setGlobalMacro(macro.key(), macro.value());
}

} // namespace

ProjectSystem& loadedSolution(const QCommandLineParser& words) {
    environment = new EnvironmentSettings;
    environment->createEntries();
    projectSystem = new MSP430ProjectSystem;
    defineMacros(words.values("define"));
    macroSystem.setSystemMacro("Platform", "msp430");
    setupDefaultSystemMacros(valueOr(words, "tarndir", QTx::rootDirectory()));
    PackageSystem::setPackageMacros(valueOr(words, "packagesdir", "$(TarnUserDir)/packages"));
    projectSystem->loadSolution(Path::absolute(words.positionalArguments().constFirst()));
    return *projectSystem;
}
