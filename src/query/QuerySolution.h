#pragma once

class ProjectSystem;
class QCommandLineParser;

/// Loads the solution that is the first argument, with the macros that the options set, as a build would do
/// it. Nothing is written: neither settings nor stub files. The project system stays until the process ends.
ProjectSystem& loadedSolution(const QCommandLineParser& words);
