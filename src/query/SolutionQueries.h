#pragma once

#include "query/Command.h"

/// The commands that look into a solution, as rows of the table: each loads the solution that is its first
/// argument, with the macros that its options set, as a build would do it, and prints the answer of
/// SolutionCommands. Nothing is written, neither settings nor stub files.
namespace SolutionQueries {

QList<QCommandLineOption> plainOptions();    ///< those that every command on a solution has
QList<QCommandLineOption> nodeOptions();     ///< and which node is meant
QList<QCommandLineOption> configOptions();   ///< and in which configuration
QList<QCommandLineOption> settingsOptions(); ///< and which settings
QList<QCommandLineOption> whyOptions();      ///< or whether it is a batch build

int runTree(const QCommandLineParser& words, const QueryStreams& streams);
int runSettings(const QCommandLineParser& words, const QueryStreams& streams);
int runConfigurations(const QCommandLineParser& words, const QueryStreams& streams);
int runOrder(const QCommandLineParser& words, const QueryStreams& streams);
int runMacros(const QCommandLineParser& words, const QueryStreams& streams);
int runWhy(const QCommandLineParser& words, const QueryStreams& streams);
int runMemory(const QCommandLineParser& words, const QueryStreams& streams);

} // namespace SolutionQueries
