#pragma once

#include "query/Command.h"

/// `ostquery symbols`: what headers declare as the documentation generator's scanner sees it, for people or
/// as JSON.
QList<QCommandLineOption> symbolsOptions();
int runSymbols(const QCommandLineParser& words, const QueryStreams& streams);
