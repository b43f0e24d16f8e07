#include "query/CatalogueCommand.h"
#include "query/Command.h"
#include "query/ObjectCommand.h"
#include "query/PackageCommand.h"
#include "query/SolutionQueries.h"
#include "query/SymbolsCommand.h"

#include "foundation/HException.h"
#include "foundation/Text.h"

#include <QCommandLineParser>
#include <algorithm>
#include <iomanip>
#include <ostream>

namespace {

using namespace SolutionQueries;

const QueryCommand commands[] = {
    {"tree", "SOLUTION", "solutions, projects, folders and files, with types and listing keys", plainOptions,
     runTree},
    {"settings", "SOLUTION [NAME...]", "the settings of a node, their values and where these come from",
     settingsOptions, runSettings},
    {"catalogue", "[NAME...]",
     "every setting of the catalogue, with its type, its default and where it exists", catalogueOptions,
     runCatalogue},
    {"configurations", "SOLUTION", "the configurations that a node is offered", nodeOptions,
     runConfigurations},
    {"order", "SOLUTION", "the projects in the order in which they are built", configOptions, runOrder},
    {"macros", "SOLUTION", "what a $(...) in a setting of a node can name, and its value", configOptions,
     runMacros},
    {"memory", "SOLUTION", "the memory of a program, and where its sections go", configOptions, runMemory},
    {"why", "SOLUTION", "what a build would do, and the one reason for each step", whyOptions, runWhy},
    {"object", "FILE...", "what object files hold", objectOptions, runObject},
    {"package", "FILE", "the members of a package", packageOptions, runPackage},
    {"symbols", "HEADER...", "what headers declare, as the documentation generator sees it", symbolsOptions,
     runSymbols},
};

std::ostream& operator<<(std::ostream& stream, const QString& text) {
    return stream << viewOf(toBytes(text));
}

void printHelp(std::ostream& out) {
    out << "Usage: ostquery COMMAND [option] ...\n\n"
           "Looks into what ostmake works on.\n\n";
    for (const QueryCommand& command : commands)
        out << "  " << std::left << std::setw(16) << command.name << command.help << '\n';
    out << "\n`ostquery COMMAND --help` tells the options of a command.\n";
}

QString synopsisOf(const QCommandLineOption& option) {
    QStringList forms;
    for (const QString& name : option.names())
        forms.append((name.size() == 1 ? "-" : "--") + name);
    return forms.join(", ") + (option.valueName().isEmpty() ? QString() : ' ' + option.valueName());
}

void printHelp(const QueryCommand& command, std::ostream& out) {
    out << "Usage: ostquery " << command.name << " [option] " << command.arguments << "\n\n"
        << "Shows " << command.help << ".\n\n";
    for (const QCommandLineOption& option : command.options())
        out << "  " << synopsisOf(option).leftJustified(26) << option.description() << '\n';
    out << "  " << QString("--help").leftJustified(26) << "this text\n";
}

int runCommand(const QueryCommand& command, const QStringList& words, const QueryStreams& streams) {
    QCommandLineParser parser;
    parser.addOptions(command.options());
    parser.addOption(QCommandLineOption("help"));
    if (!parser.parse(words))
        throw QueryError{parser.errorText()};
    if (parser.isSet("help")) {
        printHelp(command, streams.out);
        return 0;
    }
    return command.run(parser, streams);
}

int run(const QStringList& words, const QueryStreams& streams) {
    if (words.size() < 2)
        throw QueryError{"a command expected; try ostquery --help"};
    if (words[1] == "--help") {
        printHelp(streams.out);
        return 0;
    }
    const auto* command = std::find_if(std::begin(commands), std::end(commands),
                                       [&](const QueryCommand& row) { return words[1] == row.name; });
    if (command == std::end(commands))
        throw QueryError{"no command \"" + words[1] + "\"; try ostquery --help"};
    return runCommand(*command, words.mid(1), streams);
}

} // namespace

int ostquery(const QStringList& words, const QueryStreams& streams) {
    try {
        return run(words, streams);
    } catch (const QueryError& error) {
        streams.err << "ostquery: " << error.message << '\n';
    } catch (const HException& exception) {
        streams.err << "ostquery: " << exception.text() << '\n';
    }
    return 1;
}
