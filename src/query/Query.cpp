#include "query/Query.h"

#include "build/MSP430BuildSystem.h"
#include "foundation/HException.h"
#include "foundation/Text.h"
#include "macros/QTx.h"
#include "project/SolutionLoadError.h"
#include "query/QuerySolution.h"
#include "query/SolutionCommands.h"
#include "query/WhyCommand.h"

#include <QCommandLineParser>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <iostream>

namespace {

/// The value of an option; null if it is not given, or none of the command's own.
QString valueOf(const QCommandLineParser& words, const QString& option) {
    return words.optionNames().contains(option) ? words.value(option) : QString();
}

SolutionCommands::Node nodeOf(const QCommandLineParser& words) {
    return {valueOf(words, "project"), valueOf(words, "file")};
}

QString configurationOf(const QCommandLineParser& words) {
    const QString name = valueOf(words, "config");
    return name.isNull() ? "Common" : name;
}

Answer runTree(const QCommandLineParser& words) { return SolutionCommands::tree(loadedSolution(words)); }

Answer runSettings(const QCommandLineParser& words) {
    using SolutionCommands::Shown;
    const Shown shown = words.isSet("all") ? Shown::All : words.isSet("set") ? Shown::Set : Shown::Applicable;
    return SolutionCommands::settings(loadedSolution(words), {nodeOf(words), configurationOf(words), shown,
                                                              words.positionalArguments().mid(1)});
}

Answer runConfigurations(const QCommandLineParser& words) {
    return SolutionCommands::configurations(loadedSolution(words), nodeOf(words));
}

Answer runOrder(const QCommandLineParser& words) {
    return SolutionCommands::order(loadedSolution(words), nodeOf(words), configurationOf(words));
}

Answer runMacros(const QCommandLineParser& words) {
    return SolutionCommands::macros(loadedSolution(words), nodeOf(words), configurationOf(words));
}

Answer runWhy(const QCommandLineParser& words) {
    ProjectSystem& system = loadedSolution(words);
    MSP430BuildSystem engine;
    return SolutionCommands::why(engine, SolutionCommands::find(system, nodeOf(words)),
                                 configurationOf(words), words.isSet("batch"));
}

constexpr Command commands[] = {
    {"tree", "SOLUTION", "solutions, projects, folders and files, with types and listing keys",
     "define tarndir packagesdir", 1, runTree},
    {"settings", "SOLUTION [NAME...]", "the settings of a node, their values and where these come from",
     "project file config all set define tarndir packagesdir", 1, runSettings},
    {"configurations", "SOLUTION", "the configurations that a node is offered",
     "project file define tarndir packagesdir", 1, runConfigurations},
    {"order", "SOLUTION", "the projects in the order in which they are built",
     "project config define tarndir packagesdir", 1, runOrder},
    {"macros", "SOLUTION", "what a $(...) in a setting of a node can name, and its value",
     "project file config define tarndir packagesdir", 1, runMacros},
    {"why", "SOLUTION", "what a build would do, and the reason for each step",
     "project config batch define tarndir packagesdir", 1, runWhy},
};

/// Every option that some command has.
const QList<QCommandLineOption>& allOptions() {
    static const QList<QCommandLineOption> options = {
        {"help", "print this"},
        {"json", "answer in JSON, for programs"},
        {"project", "a project by its listing key", "P"},
        {"file", "a file by its name, of that project or of any", "F"},
        {"config", "a configuration; \"Common\" without it", "C"},
        {"batch", "each project in its batch configurations"},
        {"all", "every setting of the catalogue"},
        {"set", "only settings that are stated somewhere"},
        {{"D", "define"}, "set a global macro for this run", "NAME=VALUE"},
        {"tarndir", "set $(TarnDir)", "DIR"},
        {"packagesdir", "set $(PackagesDir)", "DIR"},
    };
    return options;
}

bool has(const Command& command, const QCommandLineOption& option) {
    const QStringList names = QString(command.options).split(u' ', Qt::SkipEmptyParts);
    const QString name = option.names().constLast();
    return name == "help" || name == "json" || names.contains(name);
}

QString usage() {
    QString text =
        "Usage: ostquery COMMAND [OPTION...] ARGUMENT...\n\n"
        "Looks into what ostmake works on. Builds nothing and writes nothing that is not asked for.\n\n";
    for (const Command& command : commands)
        text += "  " + QString(command.name).leftJustified(16) + command.help + "\n";
    return text + "\n`ostquery COMMAND --help` tells of a command's options.\n";
}

QString usageOf(const Command& command) {
    QString text = QString("Usage: ostquery ") + command.name + " [OPTION...] " + command.arguments + "\n\n" +
                   command.help + "\n\n";
    for (const QCommandLineOption& option : allOptions()) {
        if (!has(command, option))
            continue;
        QStringList names;
        for (const QString& name : option.names())
            names.append((name.size() == 1 ? "-" : "--") + name);
        const QString value = option.valueName().isEmpty() ? QString() : QString(" " + option.valueName());
        text += "  " + QString(names.join(", ") + value).leftJustified(26) + option.description() + "\n";
    }
    return text;
}

QString inForm(const Answer& answer, bool json) {
    if (!json)
        return answer.text;
    const QJsonDocument document =
        answer.json.isArray() ? QJsonDocument(answer.json.toArray()) : QJsonDocument(answer.json.toObject());
    return toText(viewOf(document.toJson()));
}

/// What is to be printed. Throws what goes wrong.
QString answerTo(const QStringList& words) {
    const QString name = words.value(1);
    if (name.isEmpty())
        throw QueryError{"a command is expected, see 'ostquery --help'"};
    if (name == "--help" || name == "-help")
        return usage();
    const auto command = std::find_if(std::begin(commands), std::end(commands),
                                      [&](const Command& row) { return name == QLatin1String(row.name); });
    if (command == std::end(commands))
        throw QueryError{"there is no command '" + name + "', see 'ostquery --help'"};

    QCommandLineParser parser;
    for (const QCommandLineOption& option : allOptions()) {
        if (has(*command, option))
            parser.addOption(option);
    }
    if (!parser.parse(words.mid(1)))
        throw QueryError{parser.errorText()};
    if (parser.isSet("help"))
        return usageOf(*command);
    if (parser.positionalArguments().size() < command->leastArguments)
        throw QueryError{"'" + name + "' needs " + command->arguments};
    return inForm(command->run(parser), parser.isSet("json"));
}

/// The answer on the standard output, or what went wrong on the standard error stream; the exit status.
int print(const QStringList& words) {
    QString failure;
    try {
        std::cout << viewOf(toBytes(answerTo(words))) << std::flush;
        if (std::cout)
            return 0;
        failure = "can't write to the standard output";
    } catch (const QueryError& error) {
        failure = error.message;
    } catch (const HException& error) {
        failure = toText(error.text());
    } catch (const SolutionLoadError& error) {
        failure = error.badXml ? "bad XML file - " + error.file + "(" + QString::number(error.line + 1) +
                                     "): " + error.message
                               : QString(error.file + error.message);
    }
    std::cerr << "ostquery: " << viewOf(toBytes(failure)) << '\n';
    return 1;
}

void printWarning(QtMsgType, const QMessageLogContext&, const QString& text) {
    std::cerr << viewOf(toBytes(text)) << '\n';
}

} // namespace

int ostquery(int argc, char** argv) {
    qInstallMessageHandler(printWarning);
    QTx::setApplicationPath(toText(argc > 0 ? argv[0] : "ostquery"), 1);
    QStringList words;
    for (int i = 0; i < argc; ++i)
        words.append(toText(argv[i]));
    return print(words);
}
