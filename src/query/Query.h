#pragma once

#include "query/Answer.h"

#include <QStringList>

class QCommandLineParser;

/// A command of ostquery: a row of the table by which words are checked and help is written.
struct Command {
    const char* name;
    const char* arguments; ///< as help shows them
    const char* help;      ///< one line
    const char* options; ///< the names of its options, separated by blanks; --help and --json are everyone's
    int leastArguments;
    Answer (*run)(const QCommandLineParser& words);
};

/// The program, from its arguments to its exit status.
int ostquery(int argc, char** argv);
