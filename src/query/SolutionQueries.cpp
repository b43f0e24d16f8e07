#include "query/SolutionQueries.h"

#include "build/MSP430BuildSystem.h"
#include "foundation/Text.h"
#include "macros/MacroSystem.h"
#include "macros/Path.h"
#include "macros/QTx.h"
#include "macros/SystemMacros.h"
#include "project/MSP430ProjectSystem.h"
#include "project/SolutionLoadError.h"
#include "properties/EnvironmentSettings.h"
#include "query/MemoryCommand.h"
#include "query/SolutionCommands.h"
#include "query/WhyCommand.h"

#include <QCommandLineParser>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <ostream>

namespace {

/// The value of an option, or what holds without it.
QString valueOr(const QCommandLineParser& words, const QString& option, const QString& otherwise) {
    return words.isSet(option) ? words.value(option) : otherwise;
}

void defineMacros(const QStringList& definitions) {
    const MacroMap macros = MacroSystem::macrosFromStringList(definitions);
    for (auto macro = macros.cbegin(); macro != macros.cend(); ++macro)
        macroSystem.setGlobalMacro(macro.key(), macro.value());
}

/// The process-wide objects stay until the process ends, so that no settings are saved.
ProjectSystem& loadedSolution(const QCommandLineParser& words) {
    if (words.positionalArguments().isEmpty())
        throw QueryError{"a solution expected"};
    environment = new EnvironmentSettings;
    environment->createEntries();
    auto* system = new MSP430ProjectSystem;
    projectSystem = system;
    auto* engine = new MSP430BuildSystem;
    system->setToolProperties(engine->toolProperties());
    defineMacros(words.values("define"));
    macroSystem.setSystemMacro("Platform", "msp430");
    setupDefaultSystemMacros(valueOr(words, "tarndir", QTx::rootDirectory()));
    PackageSystem::setPackageMacros(valueOr(words, "packagesdir", "$(TarnUserDir)/packages"));
    try {
        projectSystem->loadSolution(Path::absolute(words.positionalArguments().constFirst()));
    } catch (const SolutionLoadError& error) {
        const QString place = error.file + "(" + QString::number(error.line + 1) + "): ";
        throw QueryError{error.badXml ? QString("bad XML file - " + place + error.message)
                                      : QString(error.file + error.message)};
    }
    return *projectSystem;
}

SolutionCommands::Node nodeOf(const QCommandLineParser& words) {
    return {words.value("project"), words.value("file")};
}

QString configurationOf(const QCommandLineParser& words) { return valueOr(words, "config", "Common"); }

int print(const Answer& answer, const QCommandLineParser& words, const QueryStreams& streams) {
    if (!words.isSet("json")) {
        streams.out << viewOf(toBytes(answer.text));
        return 0;
    }
    const QJsonDocument document =
        answer.json.isArray() ? QJsonDocument(answer.json.toArray()) : QJsonDocument(answer.json.toObject());
    streams.out << viewOf(document.toJson());
    return 0;
}

} // namespace

QList<QCommandLineOption> SolutionQueries::plainOptions() {
    return {
        {"json", "print JSON"},
        {{"D", "define"}, "set a global macro, for this run alone", "NAME=VALUE"},
        {"tarndir", "set $(TarnDir)", "DIR"},
        {"packagesdir", "set $(PackagesDir)", "DIR"},
    };
}

QList<QCommandLineOption> SolutionQueries::nodeOptions() {
    return QList<QCommandLineOption>{{"project", "a project, by its listing key; the root without it", "P"},
                                     {"file", "a file, by its name, of that project or of any", "F"}} +
           plainOptions();
}

QList<QCommandLineOption> SolutionQueries::configOptions() {
    return QList<QCommandLineOption>{{"config", "a configuration; \"Common\" without it", "C"}} +
           nodeOptions();
}

QList<QCommandLineOption> SolutionQueries::settingsOptions() {
    return configOptions() + QList<QCommandLineOption>{{"all", "every setting of the catalogue"},
                                                       {"set", "only settings that are stated somewhere"}};
}

QList<QCommandLineOption> SolutionQueries::whyOptions() {
    return configOptions() + QList<QCommandLineOption>{{"batch", "each project in its batch configurations"}};
}

int SolutionQueries::runTree(const QCommandLineParser& words, const QueryStreams& streams) {
    return print(SolutionCommands::tree(loadedSolution(words)), words, streams);
}

int SolutionQueries::runSettings(const QCommandLineParser& words, const QueryStreams& streams) {
    using SolutionCommands::Shown;
    ProjectSystem& system = loadedSolution(words);
    const Shown shown = words.isSet("all") ? Shown::All : words.isSet("set") ? Shown::Set : Shown::Applicable;
    const QStringList names = words.positionalArguments().mid(1);
    return print(SolutionCommands::settings(system, {nodeOf(words), configurationOf(words), shown, names}),
                 words, streams);
}

int SolutionQueries::runConfigurations(const QCommandLineParser& words, const QueryStreams& streams) {
    ProjectSystem& system = loadedSolution(words);
    return print(SolutionCommands::configurations(system, nodeOf(words)), words, streams);
}

int SolutionQueries::runOrder(const QCommandLineParser& words, const QueryStreams& streams) {
    ProjectSystem& system = loadedSolution(words);
    return print(SolutionCommands::order(system, nodeOf(words), configurationOf(words)), words, streams);
}

int SolutionQueries::runMacros(const QCommandLineParser& words, const QueryStreams& streams) {
    ProjectSystem& system = loadedSolution(words);
    return print(SolutionCommands::macros(system, nodeOf(words), configurationOf(words)), words, streams);
}

int SolutionQueries::runWhy(const QCommandLineParser& words, const QueryStreams& streams) {
    ProjectElement* node = SolutionCommands::find(loadedSolution(words), nodeOf(words));
    standardBuildSystem->heedRecordsIn(tarnLocalDataDir());
    return print(
        SolutionCommands::why(*standardBuildSystem, node, configurationOf(words), words.isSet("batch")),
        words, streams);
}

int SolutionQueries::runMemory(const QCommandLineParser& words, const QueryStreams& streams) {
    ProjectElement* node = SolutionCommands::find(loadedSolution(words), nodeOf(words));
    return print(SolutionCommands::memory(*standardBuildSystem, node, configurationOf(words)), words,
                 streams);
}
