#include "macros/SystemMacros.h"

#include "foundation/FileAccess.h"
#include "foundation/HException.h"
#include "foundation/Text.h"
#include "macros/MacroSystem.h"
#include "macros/Path.h"
#include "macros/QTx.h"
#include "macros/ReleaseConstants.h"

namespace {

/// A file of the targets directory that a user may add to; it layers over the installed file of the same
/// name.
struct Stub {
    const char* name;
    const char* contents;
};

constexpr Stub stubs[] = {
    {"/project_templates.xml",
     "<!DOCTYPE Project_Templates_File>\n"
     "<projects>\n"
     "  <include filename=\"$(TarnDir)/targets/project_templates.xml\" no_root=\"1\" />\n"
     "</projects>\n"},
    {"/frequencies.xml", "<envelope>\n"
                         "  <include filename=\"$(TarnDir)/targets/frequencies.xml\" />\n"
                         "</envelope>\n"},
};

void makeStub(const QString& targetsDir, const Stub& stub) {
    const QString path = targetsDir + stub.name;
    if (files().status(path).exists())
        return;
    if (files().replace(path, stub.contents) != 0)
        throw HException("cannot create " + toBytes(path).toStdString());
}

} // namespace

void setupDefaultSystemMacros(const QString& tarnDir) {
    macroSystem.setSystemMacro("TarnMajorVersion", QString::number(Get_RELEASE_MAJOR_NUMBER()));
    macroSystem.setSystemMacro("TarnMinorVersion", QString::number(Get_RELEASE_MINOR_NUMBER()));
    macroSystem.setSystemMacro("TarnRevision", QString::number(Get_RELEASE_REVISION_NUMBER()));
    macroSystem.setSystemMacro("TarnName", Get_TARN_BRANDING());
    macroSystem.setSystemMacroPath("TarnDir", tarnDir);
    macroSystem.setSystemMacroPath("TarnUserDir", tarnLocalDataDir());
}

QString tarnLocalDataDir() {
    return QTx::userLocalAppDataDirectory(QLatin1String(Get_OWNER()) + "/" +
                                          QLatin1String(Get_PRODUCT_GENERIC_NAME()));
}

void PackageSystem::setPackageMacros(const QString& packagesDir) {
    const Path packages(MacroSystem::replaceMacros(macroSystem.systemMacros(), packagesDir));
    macroSystem.setSystemMacroPath("PackagesDir", packages.osPathQString());
    macroSystem.setSystemMacroPath("TargetsDir", packages.osPathQString() + "/targets");
    macroSystem.setSystemMacroPath("SamplesDir", packages.osPathQString() + "/samples");
}

void PackageSystem::setupPackageMacros(const QString& packagesDir) {
    setPackageMacros(packagesDir);
    const QString targetsDir = macroSystem.systemMacro("TargetsDir");
    if (!files().status(targetsDir).exists())
        QTx::makeDir(targetsDir);
    for (const Stub& stub : stubs)
        makeStub(targetsDir, stub);
}
