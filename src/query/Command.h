#pragma once

#include <QCommandLineOption>
#include <QList>
#include <QString>
#include <iosfwd>
#include <string>

class QCommandLineParser;

/// Where a command prints: its answer, and what went wrong.
struct QueryStreams {
    std::ostream& out;
    std::ostream& err;
};

/// A request that can't be carried out.
struct QueryError {
    QString message;
};

/// One command of ostquery. A new one is a row of the table in Commands.cpp and a file pair of its own.
struct QueryCommand {
    const char* name;
    const char* arguments; ///< as in the usage line
    const char* help;      ///< one line
    QList<QCommandLineOption> (*options)();
    /// Carries it out; the exit status is what comes back. Throws QueryError, which is printed and gives 1.
    int (*run)(const QCommandLineParser& words, const QueryStreams& streams);
};

/// Runs the command that the words name; the first word is the program's name. Returns the exit status.
int ostquery(const QStringList& words, const QueryStreams& streams);
