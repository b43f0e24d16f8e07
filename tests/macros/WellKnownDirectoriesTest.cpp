#include "foundation/HException.h"
#include "macros/MacroSystem.h"
#include "macros/QTx.h"
#include "macros/SystemMacros.h"
#include "support/MemoryFiles.h"
#include "support/TemporaryDirectory.h"

#include <gmock/gmock.h>
#include <unistd.h>

namespace {

class WellKnownDirectories : public testing::Test {
protected:
    void SetUp() override { ::setenv("HOME", "/home/u", 1); }
    QString system(const char* name) { return macroSystem.systemMacro(name); }

    MemoryFiles memory;
    FilesInPlace inPlace{&memory};
};

} // namespace

TEST(ApplicationPath, IsResolvedOnTheDisk) {
    const TemporaryDirectory dir;
    ASSERT_TRUE(QTx::makeDir(dir.path() + "/root/bin"));
    ASSERT_EQ(::symlink("root/bin", (dir.bytes() + "/link").c_str()), 0);
    QTx::setApplicationPath(dir.path() + "/link/ostmake", 1);
    EXPECT_EQ(QTx::applicationDirectory(), resolvedPath(dir.path()) + "/root/bin");
    EXPECT_EQ(QTx::rootDirectory(), resolvedPath(dir.path()) + "/root");
    QTx::setApplicationPath("ostmake", 0);
    EXPECT_EQ(QTx::applicationDirectory(), currentDirectory());
    QTx::setApplicationPath("/no/such/ostmake", 1);
    EXPECT_EQ(QTx::rootDirectory(), "");
    QTx::setApplicationPath("/ostmake", 3);
    EXPECT_EQ(QTx::rootDirectory(), "/");
}

TEST_F(WellKnownDirectories, LieUnderHome) {
    EXPECT_EQ(QTx::userLocalAppDataDirectory("My Tool"), "/home/u/.my_tool");
    EXPECT_EQ(QTx::userDocumentsDirectory(), "/home/u/Documents");
    EXPECT_EQ(tarnLocalDataDir(), "/home/u/.ferrant_associates_limited/ostrel_for_msp430");
    ::setenv("HOME", "/home/A b", 1);
    EXPECT_EQ(QTx::userLocalAppDataDirectory("X"), "/home/A_b/.x");
    ::unsetenv("HOME");
    EXPECT_EQ(QTx::userLocalAppDataDirectory("X"), "/.x");
}

TEST_F(WellKnownDirectories, MakeDirMakesParentsAndTellsWhetherItIsThere) {
    EXPECT_TRUE(QTx::makeDir("/a/b/c"));
    EXPECT_TRUE(QTx::makeDir("/a/b/c"));
    EXPECT_TRUE(memory.status("/a/b").exists());
    EXPECT_FALSE(QTx::makeDir("/"));
    memory.write("/f", "");
    EXPECT_FALSE(QTx::makeDir("/f"));
    EXPECT_FALSE(QTx::makeDir("/f/g"));
    memory.failWith(EROFS);
    EXPECT_FALSE(QTx::makeDir("/q"));
}

TEST_F(WellKnownDirectories, SystemMacrosAndStubFilesAreSetUp) {
    setupDefaultSystemMacros("/opt/tarn/./x/..");
    EXPECT_EQ(system("TarnDir"), "/opt/tarn");
    EXPECT_EQ(system("TarnName"), "OstrelTarn for MSP430");
    EXPECT_EQ(system("TarnMajorVersion") + system("TarnMinorVersion") + system("TarnRevision"), "207");

    memory.write("/home/u/.ferrant_associates_limited/ostrel_for_msp430/packages/targets/frequencies.xml",
                 "mine");
    PackageSystem::setupPackageMacros("$(TarnUserDir)/packages");
    const QString targets = "/home/u/.ferrant_associates_limited/ostrel_for_msp430/packages/targets";
    EXPECT_EQ(system("TargetsDir"), targets);
    EXPECT_EQ(system("SamplesDir"), system("PackagesDir") + "/samples");
    EXPECT_EQ(memory.contents(targets + "/frequencies.xml"), "mine");
    EXPECT_EQ(
        memory.contents(targets + "/project_templates.xml"),
        "<!DOCTYPE Project_Templates_File>\n<projects>\n"
        "  <include filename=\"$(TarnDir)/targets/project_templates.xml\" no_root=\"1\" />\n</projects>\n");

    PackageSystem::setupPackageMacros("/other");
    EXPECT_EQ(memory.contents("/other/targets/frequencies.xml"),
              "<envelope>\n  <include filename=\"$(TarnDir)/targets/frequencies.xml\" />\n</envelope>\n");
}

TEST_F(WellKnownDirectories, AStubThatCannotBeMadeStopsTheStart) {
    memory.failWith(ENOSPC);
    try {
        PackageSystem::setupPackageMacros("/p");
        FAIL();
    } catch (const HException& failure) {
        EXPECT_EQ(failure.text(), "cannot create /p/targets/project_templates.xml");
    }
}
