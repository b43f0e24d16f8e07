#include "driver/Usage.h"

#include "macros/ReleaseConstants.h"

#include <iostream>

namespace {

constexpr const char* usageText[] = {
    "\n",
    "Usage: ostmake [option] <project>.vkp\n",
    "\n",
    "  -batch                 batch build\n",
    "  -config 'name'         build in 'name' configuration\n",
    "  -clean                 remove output files as build occurs\n",
    "  -D macro=value         set the value of a ostrel global macro\n",
    "  -echo                  show command lines as they are executed\n",
    "  -packagesdir 'name'    set $(PackagesDir) to 'name'\n",
    "  -project 'name'        build/batch build 'name' project\n",
    "  -rebuild               always do the build step\n",
    "  -show                  show command lines but don't execute them\n",
    "  -tarndir 'name'      set $(TarnDir) to 'name'\n",
    "  -solution 'name'       build/batch build 'name' solution\n",
    "  -templatesfile 'name'  get project templates from file 'name'\n",
    "  -verbose               show build information\n",
    "\n",
    "Usage: ostmake [option] -template 'name' -project 'name'\n"
    "       ostmake [option] -type 'type' -project 'name'\n\n",
    "  -template 'name'     create the project from the template 'name'\n"
    "  -type     'type'     create the project from the project 'type'\n"
    "  -file     'name'     add file 'name' to -template created project\n",
    "  -property name=value set project property name to value\n",
};

} // namespace

void RELEASE_printVersionToStderr(const char* name) {
    std::cerr << Get_PRODUCT_GENERIC_NAME() << ' ' << name << " - Release 2.0.7.2009050101.4617\n"
              << "Copyright (c) 2026 " << Get_OWNER() << ". Free software under the MIT License.\n"
              << std::flush;
}

void printBannerAndUsage() {
    RELEASE_printVersionToStderr("Ostmake");
    for (const char* text : usageText)
        std::cerr << text;
}
