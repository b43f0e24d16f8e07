#pragma once

#include "driver/ArgParse.h"

#include <QStringList>

/// What the command line said, option by option. Strings are null and switches false unless it said so.
/// Macros given with -D are set at once; -help prints the usage and ends the process with ProcessExit.
class OstmakeArgParse : public ArgParse {
public:
    OstmakeArgParse();

    QString config;
    QString argument; ///< the solution file; of several words that are no option the last
    QString project;
    QString solution;
    QString tarnDir;
    QString packagesDir;
    QString templateName;
    QString type;
    QStringList files;
    QStringList properties;
    bool batch = false;
    bool clean = false;
    bool echo = false;
    bool show = false;
    bool rebuild = false;
    bool verbose = false;

protected:
    void onArgument(const QString& text) override { argument = text; }

private:
    void addSwitch(const char* text, bool& target);
    void addHandler(const char* text, Kind kind,
                    void (OstmakeArgParse::*handler)(const char*, const QString&));

    void onConfig(const char*, const QString& text) { config = text; }
    void onDefineMacro(const char*, const QString& definition);
    void onFile(const char*, const QString& text) { files.append(text); }
    void onHelp(const char*, const QString&);
    void onPackagesDir(const char*, const QString& text) { packagesDir = text; }
    void onProject(const char*, const QString& text) { project = text; }
    void onProperty(const char*, const QString& text) { properties.append(text); }
    void onSolution(const char*, const QString& text) { solution = text; }
    void onTarnDir(const char*, const QString& text) { tarnDir = text; }
    void onTemplate(const char*, const QString& text) { templateName = text; }
    void onTemplatesFile(const char*, const QString& text);
    void onType(const char*, const QString& text) { type = text; }
};
