#pragma once

#include "query/Command.h"

/// `ostquery package`: the members of a package with their sizes and times, for people or as JSON, or written
/// into a directory.
QList<QCommandLineOption> packageOptions();
int runPackage(const QCommandLineParser& words, const QueryStreams& streams);
