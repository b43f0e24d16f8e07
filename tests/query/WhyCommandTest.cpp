#include "query/WhyCommand.h"
#include "support/BuildFixture.h"

#include <QJsonArray>
#include <QJsonObject>

class WhyCommand : public BuildFixture {
protected:
    const std::string configurations = "<configuration Name=\"Debug\"/>";

    QString why() {
        restart();
        return SolutionCommands::why(*engine, system.solutionElement(), "Debug", false).text;
    }
};

TEST_F(WhyCommand, EachStepHasItsReasonAndNothingRuns) {
    load(configurations +
         "<project Name=\"lib\"><configuration Name=\"Common\" project_type=\"Library\"/>"
         "<file file_name=\"l.c\"/></project>"
         "<project Name=\"p\"><configuration Name=\"Common\" project_dependencies=\"lib\"/>"
         "<folder Name=\"d\"><file file_name=\"a.c\"/></folder></project>"
         "<project Name=\"ext\"><configuration Name=\"Common\" project_type=\"Externally Built Executable\" "
         "external_build_file_name=\"e\"/></project>");
    headers = {"a.h"};
    for (const char* name : {"a.c", "l.c", "a.h"})
        touch(name);
    const QString external = "ext in Debug\n  ext -> /s/e: Its build command decides what to do.\n";
    EXPECT_EQ(why(), "lib in Debug\n"
                     "  l.c -> Debug/l.vko: Debug/l.vko does not exist.\n"
                     "  lib -> Debug/lib.vka: Debug/lib.vka does not exist.\n"
                     "p in Debug\n"
                     "  a.c -> Debug/a.vko: Debug/a.vko does not exist.\n"
                     "  p -> Debug/p.vkx: Debug/p.vkx does not exist.\n" +
                         external);
    EXPECT_FALSE(memory.has("/s/Debug/l.vko"));
    build();
    EXPECT_EQ(why(), external);
    memory.tick();
    touch("l.c");
    EXPECT_EQ(why(), "lib in Debug\n"
                     "  l.c -> Debug/l.vko: l.c is newer than Debug/l.vko.\n"
                     "  lib -> Debug/lib.vka: l.c is built.\n"
                     "p in Debug\n"
                     "  p -> Debug/p.vkx: lib is built.\n" +
                         external);
    memory.tick();
    touch("a.h");
    EXPECT_TRUE(why().contains("  p -> Debug/p.vkx: a.c is built.\n"));
}

TEST_F(WhyCommand, DamagedObjectIsAnError) {
    load(configurations + "<project Name=\"p\"><file file_name=\"a.c\"/></project>");
    touch("a.c");
    build();
    memory.write("/s/Debug/a.vko", "\xFF");
    EXPECT_THROW(why(), QueryError);
}

TEST_F(WhyCommand, UnknownConfigurationIsAnError) {
    load(configurations);
    EXPECT_THROW(SolutionCommands::why(*engine, system.solutionElement(), "Release", false), QueryError);
}

TEST_F(WhyCommand, ValueForProgramsHoldsTheSameSteps) {
    load(configurations + "<project Name=\"p\"><file file_name=\"a.c\"><configuration Name=\"Common\" "
                          "build_always_rebuild=\"Yes\"/></file></project>");
    touch("a.c");
    build();
    restart();
    const QJsonArray steps =
        SolutionCommands::why(*engine, system.solutionElement(), "Debug", false).json.toArray();
    ASSERT_EQ(steps.size(), 2);
    EXPECT_EQ(steps[0].toObject()["reason"].toString(),
              "It is always rebuilt, as build_always_rebuild says.");
    EXPECT_EQ(steps[1].toObject()["output"].toString(), "Debug/p.vkx");
}
