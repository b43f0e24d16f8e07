#pragma once

#include "query/Command.h"

/// `ostquery catalogue`: every setting of a project file, or those that are named.
QList<QCommandLineOption> catalogueOptions();
int runCatalogue(const QCommandLineParser& words, const QueryStreams& streams);
