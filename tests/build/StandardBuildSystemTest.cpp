#include "support/BuildFixture.h"
#include "support/TemporaryDirectory.h"

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// Actions, outputs and the steps.
class StandardBuildSystemTest : public BuildFixture {
protected:
    /// The log without the header of the project and without the words of tools.
    QStringList steps() const {
        QStringList lines = builder->log;
        lines.removeIf([](const QString& line) {
            return line.contains(" in configuration ") || line.contains("> /tarn/");
        });
        return lines;
    }
};

TEST_F(StandardBuildSystemTest, ActionsFollowTypesOfProjectsAndFiles) {
    using B = StandardBuildSystem;
    const std::pair<const char*, B::BuildAction> projects[] = {{"Executable", B::Link},
                                                               {"", B::Link},
                                                               {"Library", B::Archive},
                                                               {"Object file", B::NoAction},
                                                               {"Staging", B::Stage},
                                                               {"Combining", B::Combine},
                                                               {"Externally Built Executable", B::External}};
    for (const auto& [type, action] : projects) {
        load(std::string("<project Name=\"p\"><configuration Name=\"Common\" project_type=\"") + type +
             "\"/><folder Name=\"d\"><file file_name=\"f.c\"/></folder></project>");
        EXPECT_EQ(engine->buildAction(node("p"), "D"), action) << type;
        EXPECT_EQ(engine->buildAction(node("d"), "D"), B::NoAction);
        const B::BuildAction file = action == B::Stage     ? B::Stage
                                    : action == B::Combine ? B::NoAction
                                                           : B::CompileC;
        EXPECT_EQ(engine->buildAction(node("f.c"), "D"), file) << type;
    }
    const std::pair<const char*, B::BuildAction> files[] = {
        {"f.C", B::CompileC},   {"f.cpp", B::CompileCpp}, {"f.s43", B::Assemble}, {"f.vko", B::External},
        {"f.vkx", B::External}, {"f.vka", B::External},   {"f.txt", B::NoAction}, {"f", B::NoAction}};
    for (const auto& [name, action] : files) {
        load(std::string("<project Name=\"p\"><file file_name=\"") + name + "\"/></project>");
        EXPECT_EQ(engine->buildAction(node(name), "D"), action) << name;
    }
    load("<project Name=\"p\"><file file_name=\"f.c\"><configuration Name=\"D\" "
         "build_exclude_from_build=\"Yes\"/><configuration Name=\"Common\" "
         "file_type=\"Forth\"/></file></project>");
    EXPECT_EQ(engine->buildAction(node("f.c"), "D"), B::Excluded);
    EXPECT_EQ(engine->buildAction(node("f.c"), "E"), B::CompileForth);
    EXPECT_TRUE(engine->canCompile(node("f.c"), "D"));
    EXPECT_FALSE(engine->mustCompile(node("f.c"), "D"));
}

TEST_F(StandardBuildSystemTest, SourcesCompileAndTheirProjectLinks) {
    load("<project Name=\"p\"><folder Name=\"d\"><file file_name=\"src/a.c\"/></folder>"
         "<file file_name=\"x.cpp\"/><file file_name=\"out.c\"><configuration Name=\"Common\" "
         "build_exclude_from_build=\"Yes\"/></file><file file_name=\"b.asm\"/><file "
         "file_name=\"c.vko\"/></project>");
    EXPECT_EQ(build(), BuildStatus::Built);
    EXPECT_THAT(steps(), ElementsAre("Compiling a.c", "Assembling b.asm", "Linking p.vkx"));
    EXPECT_THAT(builder->ran(), ElementsAre("qcomp Debug/a.vko", "qasm Debug/b.vko", "qlink Debug/p.vkx"));
    EXPECT_THAT(words("qlink").mid(1, 4), ElementsAre("Debug/a.vko", "Debug/x.vko", "Debug/b.vko", "c.vko"));
    EXPECT_EQ(builder->totalSteps, 4) << "a, x, b and the link";
    EXPECT_EQ(builder->depth, 0);
}

TEST_F(StandardBuildSystemTest, UserCommandsRunAroundSteps) {
    load(
        "<project Name=\"p\"><configuration Name=\"Common\" compile_pre_build_command=\"pre &quot;a "
        "b&quot;\" "
        "compile_post_build_command=\"post $(TargetPath) $(InputName)\" compile_post_build_command_wd=\"/w\" "
        "linker_pre_build_command=\"prelink\" linker_post_build_command=\"postlink $(TargetPath)\"/>"
        "<file file_name=\"a.c\"/></project>");
    build();
    EXPECT_THAT(steps(),
                ElementsAre("Pre-compile command ", "/s> pre a b", "Compiling a.c", "Post-compile command ",
                            "/w> post /s/Debug/a.vko a", "Pre-link command ", "/s> prelink", "Linking p.vkx",
                            "Post-link command ", "/s> postlink /s/Debug/p.vkx"));
    failAt = 1;
    build("Release");
    EXPECT_THAT(steps(), ElementsAre("Pre-compile command ", "/s> pre a b", "Compiling a.c"))
        << "the compiler runs all the same, what is behind it does not";
}

TEST_F(StandardBuildSystemTest, CleanDeletesOutputsAndRunsNothing) {
    load("<project Name=\"p\"><configuration Name=\"Common\" compile_pre_build_command=\"pre\"/>"
         "<file file_name=\"a.c\"/></project>");
    touch("a.c");
    build();
    EXPECT_EQ(build("Debug", BuildFlags::clean), BuildStatus::Built);
    EXPECT_THAT(steps(), ElementsAre("note: Remove /s/Debug/a.vko", "note: Remove /s/Debug/p.vkx"));
    EXPECT_THAT(builder->commands, IsEmpty());
    EXPECT_FALSE(memory.has("/s/Debug/a.vko"));
    EXPECT_TRUE(memory.has("/s/Debug/p.map")) << "only main outputs go";
    build();
    memory.failWith(EACCES);
    build("Debug", BuildFlags::clean);
    EXPECT_THAT(steps(),
                ElementsAre("error: Cannot remove /s/Debug/a.vko", "error: Cannot remove /s/Debug/p.vkx"));
    build("Debug", BuildFlags::clean | BuildFlags::Quiet);
    EXPECT_THAT(steps(), IsEmpty());
}

TEST_F(StandardBuildSystemTest, LinkTakesLibrariesAndObjectsOfWhatItDependsOn) {
    load("<project Name=\"app\"><configuration Name=\"Common\" project_dependencies=\"lib;objects;off;tool\" "
         "linker_additional_files=\"more.vko\"/></project>"
         "<project Name=\"lib\"><configuration Name=\"Common\" project_type=\"Library\" "
         "project_directory=\"l\"/><file file_name=\"l.c\"/></project>"
         "<project Name=\"objects\"><configuration Name=\"Common\" project_type=\"Object file\"/>"
         "<file file_name=\"o.c\"/></project>"
         "<project Name=\"off\"><configuration Name=\"Common\" project_type=\"Library\" "
         "build_exclude_from_build=\"Yes\"/></project>"
         "<project Name=\"tool\"><configuration Name=\"Common\" project_type=\"Executable\"/></project>");
    for (const char* name : {"l/l.c", "o.c", "more.vko"})
        touch(name);
    build();
    EXPECT_THAT(words("qarc"), ElementsAre("/tarn/bin/qarc", "-c", "Debug/lib.vka", "Debug/l.vko"));
    const QStringList link = builder->commands.last();
    EXPECT_THAT(link.mid(1, 3), ElementsAre("/s/l/Debug/lib.vka", "/s/Debug/o.vko", "more.vko"));
    EXPECT_EQ(build(), BuildStatus::NothingToDo);
    memory.tick();
    touch("o.c");
    build();
    EXPECT_THAT(builder->ran(), ElementsAre("qcomp Debug/o.vko", "qlink Debug/app.vkx"));
}

TEST_F(StandardBuildSystemTest, StagedFilesAreCopiedAndPackaged) {
    load("<project Name=\"p\"><configuration Name=\"Common\" project_type=\"Staging\" "
         "stage_output_filepath=\"/tarn/out/$(InputFileName)\" stage_post_build_command=\"done\" "
         "stage_package_filepath=\"$(Configuration).$(PackageExt)\" stage_set_readonly=\"Yes\"/>"
         "<file file_name=\"a.txt\"/></project>");
    memory.write("/tarn/out/x", "");
    touch("a.txt");
    EXPECT_EQ(build("D"), BuildStatus::Built);
    EXPECT_THAT(steps(),
                ElementsAre("Copying a.txt", "/s> cp a.txt /tarn/out/a.txt", "/s> chmod -w /tarn/out/a.txt",
                            "message: adding /tarn/out/a.txt to D.vkq(out/a.txt).", "Post-stage command ",
                            "/s> done"));
    EXPECT_FALSE(memory.isWritable("/tarn/out/a.txt"));
    EXPECT_EQ(build("D", 0), BuildStatus::NothingToDo);
    EXPECT_THAT(steps(), ElementsAre("success: '/tarn/out/a.txt' is up to date.",
                                     "success: 'D.vkq(out/a.txt)' is up to date."));
    memory.remove("/s/D.vkq");
    EXPECT_EQ(build("D", 0), BuildStatus::NothingToDo) << "a package that catches up is no step";
    EXPECT_THAT(steps(), Contains("message: D.vkq(out/a.txt) does not exist."));
    memory.remove("/s/a.txt");
    EXPECT_EQ(build("D"), BuildStatus::Failed);
    EXPECT_EQ(steps().last(), "error: cp failed: can't copy \"/s/a.txt\" to \"/tarn/out/a.txt\"");
    EXPECT_EQ(builder->depth, 0) << "the group of the failed step is closed in the end";
}

TEST_F(StandardBuildSystemTest, CombiningTakesAllFilesOfTheProject) {
    load("<project Name=\"p\"><configuration Name=\"Common\" project_type=\"Combining\" "
         "combine_output_filepath=\"all.txt\" combine_command=\"join -o $(CombiningOutputFilePath) "
         "$(CombiningRelInputPaths)\"/><folder Name=\"d\"><file file_name=\"a.c\"/></folder>"
         "<file file_name=\"b.txt\"/><file file_name=\"c.txt\"><configuration Name=\"Common\" "
         "build_exclude_from_build=\"Yes\"/></file></project>");
    touch("a.c");
    touch("b.txt");
    build();
    EXPECT_THAT(steps(),
                ElementsAre("Combining p", "/s> join -o /s/all.txt a.c b.txt", "/s> chmod +w /s/all.txt"));
    EXPECT_EQ(build(), BuildStatus::NothingToDo);
    memory.tick();
    touch("b.txt");
    EXPECT_THAT(verbose(), Contains("message: b.txt is newer than all.txt."));
}

TEST_F(StandardBuildSystemTest, ExternalBuildsRunEveryTime) {
    load("<project Name=\"p\"><configuration Name=\"Common\" project_type=\"Externally Built Executable\" "
         "external_build_command=\"make  &quot;x y&quot;\" external_clean_command=\"make clean\" "
         "external_build_file_name=\"p.elf\"/><file file_name=\"a.c\"/></project>");
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(build(), BuildStatus::Built);
        EXPECT_THAT(steps(), ElementsAre("Running Build command p", "/s> make \"x y\""));
        EXPECT_THAT(builder->outputs, ElementsAre("/s/p.elf"));
    }
    build("Debug", BuildFlags::clean);
    EXPECT_THAT(steps(), ElementsAre("Running Clean command p", "/s> make clean"));
    EXPECT_TRUE(engine->canLoad(node("p"), "Debug"));
}

TEST_F(StandardBuildSystemTest, ShownCommandsLeaveDecisionsAsTheyAre) {
    load("<project Name=\"p\"><file file_name=\"a.c\"/></project>");
    touch("a.c");
    carriesOut = false;
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(build(), BuildStatus::Built);
        EXPECT_THAT(steps(), ElementsAre("Compiling a.c", "Linking p.vkx"));
    }
}

TEST_F(StandardBuildSystemTest, WithoutABuilderStepsAreOnlyCounted) {
    load("<project Name=\"p\"><file file_name=\"a.c\"/></project>"
         "<project Name=\"x\"><configuration Name=\"Common\" project_type=\"Externally Built Executable\" "
         "external_build_command=\"make\"/></project>");
    EXPECT_EQ(engine->build(system.solutionElement(), "D", nullptr, 0, true, false), BuildStatus::Built);
    EXPECT_EQ(engine->build(node("x"), "D", nullptr, 0, true, false), BuildStatus::NothingToDo);
}

TEST_F(StandardBuildSystemTest, DependenciesOfNodesAreAbsolute) {
    load("<project Name=\"p\"><configuration Name=\"Common\" linker_additional_files=\"m.vko\"/>"
         "<file file_name=\"a.c\"/><file file_name=\"map.xml\"><configuration Name=\"Common\" "
         "file_type=\"Memory Map\"/></file></project>");
    QStringList list;
    engine->getDependencies(node("a.c"), "Debug", list);
    EXPECT_THAT(list, ElementsAre("/s/a.c"));
    headers = {"x.h"};
    touch("a.c");
    build();
    const QByteArray object = memory.contents("/s/Debug/a.vko");
    memory.write("/s/Debug/a.vko", viewOf(objectFrom({})));
    engine->getDependencies(node("a.c"), "Debug", list);
    EXPECT_EQ(list.last(), "/s/a.c") << "an object that tells nothing";
    memory.write("/s/Debug/a.vko", viewOf(object));
    list.clear();
    engine->getDependencies(node("a.c"), "Debug", list);
    engine->getDependencies(node("p"), "Debug", list);
    EXPECT_THAT(list, ElementsAre("/s/a.c", "/s/x.h", "/s/Debug/a.vko", "/s/map.xml", "/s/m.vko"));
    for (const auto& [type, of, expected] :
         {std::tuple{"Library", "p", QStringList{"/s/Debug/a.vko", "/s/Debug/b.vko"}},
          std::tuple{"Staging", "a.c", QStringList{"/s/d/a.c"}},
          std::tuple{"Combining", "p", QStringList{"/s/d/a.c", "/s/b.c"}}}) {
        load(
            std::string("<project Name=\"p\"><configuration Name=\"Common\" project_type=\"") + type +
            "\"/><folder Name=\"f\"><file file_name=\"d/a.c\"/></folder><file file_name=\"b.c\"/></project>");
        list.clear();
        engine->getDependencies(node(of), "Debug", list);
        EXPECT_EQ(list, expected) << type;
        EXPECT_FALSE(engine->canLoad(node("p"), "Debug"));
    }
}

// Relative to the file before the directory as it stands, and that before the project; on disk, since rights
// count.
TEST_F(StandardBuildSystemTest, IncludedFilesAreFoundInTheOrderOfTheDirectories) {
    const TemporaryDirectory tree;
    const auto place = [&](const QString& name) -> QString { return tree.path() + "/" + name; };
    load("<project Name=\"p\"><configuration Name=\"Common\" project_directory=\"" + tree.bytes() +
         "/p\" c_user_include_directories=\"user;" + tree.bytes() +
         "/all\" c_system_include_directories=\"system\"/><file file_name=\"" + tree.bytes() +
         "/f/a.c\"/></project>");
    EXPECT_TRUE(engine->findIncludeFile(false, "a.h", node("a.c"), "Debug").isNull());
    for (const char* found : {"p/system/a.h", "f/system/a.h", "all/a.h", "p/user/a.h", "f/user/a.h"}) {
        std::filesystem::create_directories(tree.bytes() + "/" + found);
        memory.write(place(found), "");
        EXPECT_EQ(engine->findIncludeFile(false, "a.h", node("a.c"), "Debug"), place(found));
    }
    EXPECT_EQ(engine->findIncludeFile(false, place("all/a.h"), node("a.c"), "Debug"), place("all/a.h"));
}
