#pragma once

#include "query/Command.h"

/// `ostquery object`: attributes, libraries, symbols, sections and records of object files, for people or as
/// JSON; the trace of the machine that reads them; and a file read and written back.
QList<QCommandLineOption> objectOptions();
int runObject(const QCommandLineParser& words, const QueryStreams& streams);
