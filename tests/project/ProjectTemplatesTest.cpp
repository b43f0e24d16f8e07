#include "project/ProjectTemplates.h"
#include "macros/MacroSystem.h"
#include "support/SolutionFixture.h"

using ::testing::ElementsAre;

class Templates : public SolutionFixture {
protected:
    Templates() {
        macroSystem.setSystemMacro("TargetsDir", "/t");
        memory.write("/s/app.vkp",
                     file("<solution Name=\"app\" version=\"2\"><project Name=\"p\" "
                          "template_name=\"T\"/><project Name=\"q\" template_name=\"T\"/></solution>"));
    }
    /// The solution app, whose projects p and q are both made from this recipe.
    QString made(const std::string& recipe, const std::string& configurations = "") {
        memory.write("/t/project_templates.xml",
                     "<projects><group><project template_name=\"T\" type=\"Library\">" + recipe +
                         "</project></group><configurations>" + configurations +
                         "</configurations></projects>");
        system.loadSolution("/s/app.vkp");
        return dump(system.solutionElement());
    }
    /// What a dump says of p and q if both hold this.
    static QString both(const std::string& attributes, const std::string& below) {
        std::string text = "solution Name=\"app\" version=\"2\"\n";
        for (const char* name : {"p", "q"})
            text += std::string("  project Name=\"") + name + "\"\n    configuration Name=\"Common\"" +
                    attributes + " project_type=\"Library\"\n" + below;
        return QString::fromStdString(text);
    }
};

TEST_F(Templates, RecipeMakesFoldersFilesAndSettings) {
    EXPECT_EQ(made("<folder name=\"Source\" filter=\"c\"><folder name=\"Inner\"/></folder>"
                   "<folder name=\"Source\" filter=\"h\"/><folder name=\"Late\"/>"
                   "<folder name=\"Late\" filter=\"x\"/>"
                   "<file name=\"$(ProjectName:none)/main.c\"/>"
                   "<file name=\"$(ProjectName)/raw.h\" expand=\"No\"><property name=\"file_type\" "
                   "value=\"C\"/></file>"
                   "<file name=\"copied.c\" source=\"$(TarnDir)/copied.c\"><file name=\"unread.c\"/></file>"
                   "<folder name=\"Source\"><file name=\"x.txt\"/></folder>"
                   "<property name=\"a\" value=\"$(Configuration)\"/>"
                   "<property name=\"b\" value=\"$(Configuration)\" expand=\"YES\"/>"
                   "<property name=\"a\" value=\"second\"/><property name=\"c\"/><unknown name=\"u\"/>")
                  .replace("q/main.c", "p/main.c"),
              both(" a=\"$(Configuration)\" b=\"Common\"",
                   "    folder Name=\"Source\"\n"
                   "      configuration Name=\"Common\" filter=\"c\"\n"
                   "      folder Name=\"Inner\"\n"
                   "      file file_name=\"p/main.c\"\n"
                   "      file file_name=\"x.txt\"\n"
                   "    folder Name=\"Late\"\n"
                   "      configuration Name=\"Common\" filter=\"x\"\n"
                   "    file file_name=\"$(ProjectName)/raw.h\"\n"
                   "      configuration Name=\"Common\" file_type=\"C\"\n"));
    EXPECT_FALSE(system.solutionElement()->modified());
    EXPECT_TRUE(system.solutionProjects(nullptr).contains("p"));
}

TEST_F(Templates, FirstProjectSettlesTheSolutionsConfigurations) {
    made("<configuration name=\"D\"/><configuration name=\"No recipe\"/>",
         "<c name=\"D\"><s name=\"inherited_configurations\" value=\"B;A\"/><s name=\"x\" value=\"1\"/>"
         "<s name=\"x\" value=\"2\"/><s name=\"y\" value=\"\"/></c>"
         "<c name=\"A\"><s name=\"z\" value=\"3\"/><s name=\"inherited_configurations\" value=\"D\"/></c>"
         "<c name=\"B\"/>");
    QString text = dump(system.solutionElement());
    EXPECT_EQ(text.mid(text.indexOf("  configuration Name=\"D\" inh")).section("  project Name=\"q", 0, 0),
              "  configuration Name=\"D\" inherited_configurations=\"B;A\" x=\"1\"\n"
              "  configuration Name=\"B\"\n"
              "  configuration Name=\"A\" inherited_configurations=\"D\" z=\"3\"\n")
        << "recipes in a circle end";
    EXPECT_EQ(node("p")->configuration("D")->attribute("x"), "2") << "another value stays with the project";
    EXPECT_EQ(node("q")->configuration("D")->attribute("x"), "2");
    EXPECT_EQ(system.findConfiguration(system.solutionElement(), "No recipe"), nullptr);
}

TEST_F(Templates, LongChainOfRecipesIsWalkedWithoutTheStack) {
    std::string recipes;
    for (int i = 0; i < 20'000; ++i)
        recipes += "<c name=\"" + std::to_string(i) + "\"><s name=\"inherited_configurations\" value=\"" +
                   std::to_string(i + 1) + "\"/></c>";
    made("<configuration name=\"0\"/>", recipes);
    EXPECT_NE(system.findConfiguration(system.solutionElement(), "19999"), nullptr);
    std::string folders;
    for (int i = 0; i < 2000; ++i)
        folders = "<folder name=\"f\">" + folders + "</folder>";
    ::testing::internal::CaptureStderr();
    made(folders);
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "project template: elements are nested too deep\n"
                                                        "project template: elements are nested too deep\n");
}

TEST_F(Templates, AreListedByName) {
    memory.write("/t/project_templates.xml",
                 "<x><project template_name=\"b\"/><project><project template_name=\"a\"/></project>"
                 "<project template_name=\"b\" type=\"later\"/><define name=\"one\"/></x>");
    ::testing::internal::CaptureStderr();
    const ProjectTemplates templates(system);
    EXPECT_EQ(::testing::internal::GetCapturedStderr(),
              "XmlPP::processConditionals(): missing name and/or value in <define>\n");
    EXPECT_THAT(templates.listTemplates(), ElementsAre("a", "b"));
    EXPECT_EQ(templates.findTemplate("b")->attributeText("type"), "later");
    EXPECT_EQ(templates.findTemplate("B"), nullptr);
    memory.remove("/t/project_templates.xml");
    EXPECT_TRUE(ProjectTemplates(system).listTemplates().isEmpty());
}
