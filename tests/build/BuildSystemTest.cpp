#include "support/BuildFixture.h"

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class BuildSystemTest : public BuildFixture {
protected:
    /// The lines that open a project.
    QStringList headers_() const { return builder->log.filter(" in configuration "); }
    static std::string project(const std::string& name, const std::string& attributes,
                               const std::string& inside = "") {
        return "<project Name=\"" + name + "\"><configuration Name=\"Common\" project_type=\"Object file\" " +
               attributes + "/>" + inside + "</project>";
    }
};

TEST_F(BuildSystemTest, ProjectsAreBuiltInFileOrderBehindWhatTheyDependOnAndOnce) {
    load(project("a", "project_dependencies=\"c;none;b\"") + project("b", "project_dependencies=\"c\"") +
         "<solution Name=\"in\">" + project("d", "") + "</solution>" + project("c", ""));
    EXPECT_EQ(build(), BuildStatus::NothingToDo);
    EXPECT_THAT(headers_(), ElementsAre("Building \"c\" in configuration \"Debug\"",
                                        "Building \"b\" in configuration \"Debug\"",
                                        "Building \"a\" in configuration \"Debug\"",
                                        "Building \"d\" in configuration \"Debug\""));
    EXPECT_EQ(builder->depth, 0);
    bool built = true;
    EXPECT_TRUE(engine->justBuilt(node("c"), "Debug", built));
    EXPECT_FALSE(built);
    EXPECT_FALSE(engine->justBuilt(node("c"), "Release", built));
}

TEST_F(BuildSystemTest, VerbOfAHeaderFollowsTheFlags) {
    load(project("a", ""));
    const std::pair<int, const char*> verbs[] = {{0, "Building"},
                                                 {BuildFlags::Force, "Building"},
                                                 {BuildFlags::DeleteOutputs, "Rebuilding"},
                                                 {BuildFlags::clean, "Cleaning"},
                                                 {BuildFlags::clean | BuildFlags::Checking, "Checking"}};
    for (const auto& [flags, verb] : verbs) {
        build("Debug", flags);
        EXPECT_THAT(builder->log, ElementsAre(QString(verb) + " \"a\" in configuration \"Debug\""));
    }
}

TEST_F(BuildSystemTest, ExcludedProjectIsNotEnteredNorWhatItDependsOn) {
    load(project("a", "build_exclude_from_build=\"Yes\" project_dependencies=\"b\"") +
         "<solution Name=\"in\">" + project("b", "build_exclude_from_build=\"\"") + "</solution>");
    EXPECT_EQ(build(), BuildStatus::NothingToDo);
    EXPECT_THAT(builder->log, IsEmpty());
}

TEST_F(BuildSystemTest, CircleOfDependenciesEnds) {
    load(project("a", "project_dependencies=\"b\"") + project("b", "project_dependencies=\"c;b\"") +
         project("c", "project_dependencies=\"a\""));
    build();
    EXPECT_THAT(headers_().replaceInStrings(" in configuration \"Debug\"", ""),
                ElementsAre("Building \"c\"", "Building \"b\"", "Building \"a\""));
}

TEST_F(BuildSystemTest, LongChainOfDependenciesIsBuiltFromItsEnd) {
    constexpr int length = 20'000;
    std::string projects;
    const auto name = [](int number) { return QString("p%1").arg(number).toStdString(); };
    for (int i = 0; i < length; ++i)
        projects += project(name(i), "project_dependencies=\"" + name(i + 1) + "\"");
    load(projects);
    build();
    ASSERT_EQ(builder->log.size(), length);
    EXPECT_EQ(builder->log.first(), "Building \"p19999\" in configuration \"Debug\"");
    EXPECT_EQ(builder->log.last(), "Building \"p0\" in configuration \"Debug\"");
}

TEST_F(BuildSystemTest, BatchBuildsEachProjectInItsOwnConfigurations) {
    load("<configuration Name=\"D1\"/><configuration Name=\"D2\"/><configuration Name=\"R\"/>" +
         project("a", "batch_build_configurations=\"D*\" project_dependencies=\"b;c\"") +
         project("b", "batch_build_configurations=\"r\"") + project("c", ""));
    EXPECT_EQ(build(system.solutionElement(), "D1", BuildFlags::Quiet, true), BuildStatus::NothingToDo);
    EXPECT_THAT(builder->log,
                ElementsAre("Building \"b\" in configuration \"R\"", "Building \"a\" in configuration \"D1\"",
                            "Building \"a\" in configuration \"D2\""));
}

TEST_F(BuildSystemTest, DependencyThatIsBuiltCountsForTheProjectAboveIt) {
    load(project("a", "project_dependencies=\"b\"") + project("b", "", "<file file_name=\"b.c\"/>"));
    touch("b.c");
    EXPECT_EQ(build(), BuildStatus::Built);
    bool built = false;
    EXPECT_TRUE(engine->justBuilt(node("a"), "Debug", built));
    EXPECT_TRUE(built);
    EXPECT_EQ(build(), BuildStatus::NothingToDo);
}

TEST_F(BuildSystemTest, FailureEndsTheBuildAndRecordsNothingAbove) {
    load(project("a", "project_dependencies=\"b\"") +
         project("b", "", "<file file_name=\"b.c\"/><file file_name=\"d.c\"/>") + project("e", ""));
    failAt = 1;
    EXPECT_EQ(build(), BuildStatus::Failed);
    EXPECT_EQ(builder->commands.size(), 1);
    EXPECT_THAT(headers_(), ElementsAre("Building \"b\" in configuration \"Debug\""));
    bool built = false;
    EXPECT_FALSE(engine->justBuilt(node("a"), "Debug", built));
}

TEST_F(BuildSystemTest, StopWinsOverFailure) {
    load(project("a", "", "<file file_name=\"b.c\"/>"));
    builder->contents = [this](const QString&, const QStringList&) {
        engine->stop();
        engine->setFailed();
        return QByteArray();
    };
    EXPECT_EQ(engine->build(node("a"), "Debug", builder.get(), 0, true, false), BuildStatus::Stopped);
}

TEST_F(BuildSystemTest, PartOfAProjectIsBuiltAlone) {
    load(project("a", "project_dependencies=\"b\"",
                 "<folder Name=\"d\"><file file_name=\"x.c\"/></folder><file file_name=\"y.c\"/>") +
         project("b", "", "<file file_name=\"b.c\"/>"));
    EXPECT_EQ(build(node("d"), "Debug", BuildFlags::Quiet), BuildStatus::Built);
    EXPECT_THAT(builder->ran(), ElementsAre("qcomp Debug/x.vko"));
    EXPECT_EQ(builder->log.first(), "Building \"a\" in configuration \"Debug\"");
    EXPECT_EQ(builder->depth, 0);
}

TEST_F(BuildSystemTest, ListSettingIsSplitBeforeItIsExpanded) {
    load("<project Name=\"p\"><configuration Name=\"Common\" macros=\"M=x\\;y\" "
         "link_symbol_definitions=\"$(M);b\\;c;;d\"/></project>");
    const auto list = [this](bool expand, bool escaped) {
        return engine->stringListSetting("-", node("p"), Setting::link_symbol_definitions, "Debug", expand,
                                         escaped);
    };
    EXPECT_THAT(list(true, false), ElementsAre("-x;y", "-b\\", "-c", "-d"));
    EXPECT_THAT(list(true, true), ElementsAre("-x;y", "-b;c", "-d"));
    EXPECT_THAT(list(false, true), ElementsAre("-$(M)", "-b;c", "-d"));
}

TEST_F(BuildSystemTest, EveryMacroOfANodeIsInItsMap) {
    load("<project Name=\"p\"><file file_name=\"d/x.y.c\"/></project>");
    const MacroMap ofFile = engine->macros(node("x.y.c"), "Debug");
    EXPECT_EQ(ofFile["InputName"], "x");
    EXPECT_EQ(ofFile["RelInputPath"], "d/x.y.c");
    EXPECT_EQ(ofFile["OutDir"], "Debug");
    EXPECT_FALSE(ofFile.contains("LibExt"));
    EXPECT_EQ(engine->macros(node("p"), "Debug")["LibExt"], "_soft_single");
}
