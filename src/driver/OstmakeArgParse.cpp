#include "driver/OstmakeArgParse.h"

#include "driver/ProcessExit.h"
#include "driver/Usage.h"
#include "macros/MacroSystem.h"
#include "project/ProjectTemplates.h"

OstmakeArgParse::OstmakeArgParse() {
    addSwitch("-batch", batch);
    addSwitch("-clean", clean);
    addHandler("-config", NextWord, &OstmakeArgParse::onConfig);
    addHandler("-D", NextWord, &OstmakeArgParse::onDefineMacro);
    addSwitch("-echo", echo);
    addHandler("-file", NextWord, &OstmakeArgParse::onFile);
    addHandler("-help", Alone, &OstmakeArgParse::onHelp);
    addHandler("-project", NextWord, &OstmakeArgParse::onProject);
    addHandler("-property", NextWord, &OstmakeArgParse::onProperty);
    addSwitch("-rebuild", rebuild);
    addSwitch("-show", show);
    addHandler("-solution", NextWord, &OstmakeArgParse::onSolution);
    addHandler("-tarndir", NextWord, &OstmakeArgParse::onTarnDir);
    addHandler("-TarnDir", NextWord, &OstmakeArgParse::onTarnDir);
    addHandler("-packagesdir", NextWord, &OstmakeArgParse::onPackagesDir);
    addHandler("-template", NextWord, &OstmakeArgParse::onTemplate);
    addHandler("-templatesfile", NextWord, &OstmakeArgParse::onTemplatesFile);
    addHandler("-type", NextWord, &OstmakeArgParse::onType);
    addSwitch("-verbose", verbose);
}

void OstmakeArgParse::addSwitch(const char* text, bool& target) {
    options[text] = {.kind = Alone, .flagTarget = &target};
}

void OstmakeArgParse::addHandler(const char* text, Kind kind,
                                 void (OstmakeArgParse::*handler)(const char*, const QString&)) {
    options[text] = {.kind = kind, .isHandler = true, .handler = static_cast<Handler>(handler)};
}

void OstmakeArgParse::onDefineMacro(const char*, const QString& definition) {
    const qsizetype equals = definition.indexOf(u'=');
    if (equals < 0)
        macroSystem.setGlobalMacro(definition, QString());
    else
        macroSystem.setGlobalMacro(definition.left(equals), definition.mid(equals + 1));
}

void OstmakeArgParse::onHelp(const char*, const QString&) {
    printBannerAndUsage();
    throw ProcessExit{0};
}

void OstmakeArgParse::onTemplatesFile(const char*, const QString& text) { templatesFile = text; }
