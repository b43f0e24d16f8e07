#include "project/NodeMacros.h"
#include "macros/MacroSystem.h"
#include "support/SolutionFixture.h"

class NodeMacrosOf : public SolutionFixture {
protected:
    QString expand(const QString& text, const QString& name, const QString& config = "Debug") {
        return MacroSystem::replaceMacros(NodeMacros(system, node(name), config), text);
    }
};

TEST_F(NodeMacrosOf, EachKindOfNodeHasItsMacros) {
    load("<configuration Name=\"Common\" Platform=\"MSP430\" "
         "build_output_directory=\"$(SolutionName)/$(Configuration)\""
         " build_root_output_directory=\"out\"/>"
         "<project Name=\"p\"><configuration Name=\"Common\" project_directory=\"sub\" "
         "build_intermediate_directory=\"\"/>"
         "<folder Name=\"d\"><file file_name=\"src/main.test.c\"/></folder></project>");
    const struct {
        const char* text;
        const char* file;
        const char* project;
        const char* solution;
    } rows[] = {
        {"$(ProjectNodeName)", "main.test.c", "p", "app"},
        {"$(ProjectDir)", "/s/sub", "/s/sub", "$(ProjectDir)"},
        {"$(ProjectName)", "p", "p", "$(ProjectName)"},
        {"$(Configuration)", "Debug", "Debug", "Debug"},
        {"$(Platform)", "msp430", "msp430", "msp430"},
        {"$(SolutionDir)|$(SolutionName)|$(SolutionFileName)", "/s|app|app.vkp", "/s|app|app.vkp",
         "/s|app|app.vkp"},
        {"$(SolutionPath)|$(SolutionExt)", "/s/app.vkp|vkp", "/s/app.vkp|vkp", "/s/app.vkp|vkp"},
        {"$(InputDir)", "/s/sub/src", "$(InputDir)", "$(InputDir)"},
        {"$(InputName)|$(InputExt)", "main|test.c", "$(InputName)|$(InputExt)", "$(InputName)|$(InputExt)"},
        {"$(InputPath)", "/s/sub/src/main.test.c", "$(InputPath)", "$(InputPath)"},
        {"$(InputFileName)", "main.test.c", "$(InputFileName)", "$(InputFileName)"},
        {"$(RelInputPath)", "src/main.test.c", "$(RelInputPath)", "$(RelInputPath)"},
        {"$(OBJ)$(EXE)$(LIB)$(PackageExt)", ".vko.vkx.vkavkq", ".vko.vkx.vkavkq", ".vko.vkx.vkavkq"},
        {"$(IntDir)", ".", ".", "Debug"},
        {"$(OutDir)|$(RootOutDir)", "app/Debug|out", "app/Debug|out", "app/Debug|out"},
        {"$(RootRelativeOutDir)", "../../out", "../../out", "../../out"},
        {"$(LibExt)", "$(LibExt)", "_soft_single", "$(LibExt)"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(expand(row.text, "main.test.c"), row.file);
        EXPECT_EQ(expand(row.text, "p"), row.project);
        EXPECT_EQ(expand(row.text, "app"), row.solution);
    }
    for (const char* name : {"main.test.c", "p", "app"}) {
        const MacroMap map = NodeMacros(system, node(name), "Debug").map();
        const NodeMacros lazy(system, node(name), "Debug");
        for (auto macro = map.cbegin(); macro != map.cend(); ++macro)
            EXPECT_EQ(lazy.value(macro.key()), macro.value()) << macro.key().toStdString();
        EXPECT_EQ(map.contains("InputName"), QString(name) == "main.test.c");
    }
}

TEST_F(NodeMacrosOf, DirectoriesSeeOnlyTheRowsInFrontOfThem) {
    load("<configuration Name=\"Common\" macros=\"OutDir=early;X=1\" "
         "build_intermediate_directory=\"$(OutDir)/i\""
         " build_output_directory=\"$(IntDir)/o\"/><project Name=\"p\"/>");
    EXPECT_EQ(expand("$(IntDir)", "p"), "early/i");
    EXPECT_EQ(expand("$(OutDir)", "p"), "early/i/o");
    EXPECT_EQ(expand("$(RootRelativeOutDir)", "p"), "$(RootRelativeOutDir)") << "no root output directory";
}

TEST_F(NodeMacrosOf, ProjectMacrosBeatGlobalOnesAndLoseToTheTable) {
    macroSystem.setGlobalMacro("G", "global");
    macroSystem.setGlobalMacro("ProjectName", "global");
    load("<configuration Name=\"Common\" macros=\"G=solution;HostOS=mine;ProjectName=no;InputDir=low\"/>"
         "<project Name=\"p\"><configuration Name=\"Debug\" macros=\"G=first\"/></project>");
    EXPECT_EQ(expand("$(G) $(HostOS) $(ProjectName) $(InputDir)", "p"), "solution mine p low")
        << "of two in one list the later holds, so the outer level's";
    EXPECT_EQ(expand("$(ProjectName)", "app"), "no");
    macroSystem.setGlobalMacro("G", "");
    macroSystem.setGlobalMacro("ProjectName", "");
}

TEST_F(NodeMacrosOf, LibraryNamesFollowTheProcessor) {
    load("<configuration Name=\"D\" build_use_hardware_multiplier=\"16-Bit Multiplier\" "
         "double_is_float=\"No\"/>"
         "<configuration Name=\"E\" build_use_hardware_multiplier=\"32-Bit Multiplier\" "
         "double_is_float=\"Yes\" "
         "msp430_insn_set=\"MSP430X\"/><project Name=\"p\"/>");
    EXPECT_EQ(expand("$(LibExt)", "p", "D"), "_hw16_double");
    EXPECT_EQ(expand("$(LibExt)", "p", "E"), "_hw32_single_cpux");
}
