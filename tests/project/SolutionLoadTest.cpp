#include "macros/MacroSystem.h"
#include "support/SolutionFixture.h"

namespace {

/// `levels` elements within each other.
std::string nested(int levels, const std::string& open, const std::string& close) {
    std::string text;
    for (int i = 0; i < levels; ++i)
        text += open;
    for (int i = 0; i < levels; ++i)
        text += close;
    return text;
}

} // namespace

class SolutionLoad : public SolutionFixture {};

TEST_F(SolutionLoad, EveryElementBecomesANode) {
    ProjectElement* root = load("text <configuration Name=\"Debug\" hidden=\"No\"/>"
                                "<project Name=\"p&amp;q\" unknown=\"1\"><folder Name=\"f\"><file "
                                "file_name=\"a.c\"><configuration Name=\"Common\"/></file></folder></project>"
                                "<other/>");
    EXPECT_EQ(dump(root), "solution Name=\"app\" version=\"2\"\n"
                          "  configuration Name=\"Debug\" hidden=\"No\"\n"
                          "  project Name=\"p&q\" unknown=\"1\"\n"
                          "    folder Name=\"f\"\n"
                          "      file file_name=\"a.c\"\n"
                          "        configuration Name=\"Common\"\n"
                          "  \n");
    for (ProjectElement* element = root; element; element = element->nextInTree(root))
        EXPECT_FALSE(element->modified());
    EXPECT_EQ(root->path().filePath(), "/s/app.vkp");
    EXPECT_EQ(root->lastModified().toMSecsSinceEpoch(), memory.now() / 1'000'000);
}

TEST_F(SolutionLoad, ImportsCountFromTheirFileAndMayComeTwice) {
    macroSystem.setSystemMacro("Dir", "lib");
    memory.write("/s/lib/one.vkp", file("<solution Name=\"one\" version=\"2\"><import "
                                        "file_name=\"two.vkp\"/></solution>"));
    for (const char* name : {"/s/lib/two.vkp", "/s/lib/../lib/two.vkp"}) // files in memory know no ".."
        memory.write(name, file("<solution Name=\"two\" version=\"2\"><project Name=\"p\"><file "
                                "file_name=\"x.c\"/></project></solution>"));
    ProjectElement* root =
        load("<import file_name=\"$(Dir)/one.vkp\"><project Name=\"unread\"/></import>"
             "<import file_name=\"/s/lib/two.vkp\"/><import file_name=\"lib/../lib/two.vkp\"/>");
    const std::string two = "    project Name=\"p\"\n      file file_name=\"x.c\"\n";
    EXPECT_EQ(dump(root).toStdString(),
              "solution Name=\"app\" version=\"2\"\n"
              "  solution Name=\"one\" file_name=\"$(Dir)/one.vkp\" version=\"2\" imported\n"
              "    solution Name=\"two\" file_name=\"two.vkp\" version=\"2\" imported\n"
              "      project Name=\"p\"\n"
              "        file file_name=\"x.c\"\n"
              "  solution Name=\"two\" file_name=\"/s/lib/two.vkp\" version=\"2\" imported\n" +
                  two + "  solution Name=\"two\" file_name=\"lib/../lib/two.vkp\" version=\"2\" imported\n" +
                  two);
    node("x.c")->checkDoFileStuff();
    EXPECT_EQ(node("x.c")->path().filePath(), "/s/lib/x.c");
    EXPECT_EQ(node("one")->path().filePath(), "/s/lib/one.vkp");
}

TEST_F(SolutionLoad, EachFailureHasItsText) {
    const std::string head = "<!DOCTYPE OstrelTarn_Project_File>";
    memory.write("/s/./self.vkp", "");
    memory.write("/s/self.vkp",
                 file("<solution version=\"2\"><import file_name=\"./self.vkp\"/></solution>"));
    memory.write("/s/ping.vkp", file("<solution version=\"2\"><import file_name=\"pong.vkp\"/></solution>"));
    memory.write("/s/pong.vkp",
                 file("<solution version=\"2\"><import file_name=\"/s/ping.vkp\"/></solution>"));
    memory.write("here.vkp", file("<solution version=\"2\"/>"));
    memory.write("/s/elsewhere/here.vkp", file("<solution version=\"2\"/>"));
    const struct {
        std::string text;
        const char* error;
    } rows[] = {
        {head + "<solution version=\"2\"/>", ""},
        {"<solution version=\"2\"/>", "/s/app.vkp not a solution file"},
        {"<!DOCTYPE OstrelTarn_Project_File SYSTEM \"x\"><solution/>", "/s/app.vkp not a solution file"},
        {"<!DOCTYPE ostreltarn_project_file><solution/>", "/s/app.vkp not a solution file"},
        {"", "/s/app.vkp not a solution file"},
        {head, "/s/app.vkp has no solution element"},
        {head + "<project Name=\"p\"/>", "/s/app.vkp has no solution element"},
        {head + "\n<solution>\n<a></b></solution>", "/s/app.vkp:2 - tagName mismatch"},
        {head + "\n<solution a-b=\"\"/>", "/s/app.vkp:1 - bad tagName"},
        {head + "<solution><import file_name=\"app.vkp\"/></solution>", "/s/app.vkp solution already loaded"},
        {head + "<solution><import file_name=\"self.vkp\"/></solution>",
         "/s/self.vkp solution already loaded"},
        {head + "<solution><import file_name=\"ping.vkp\"/></solution>",
         "/s/ping.vkp solution already loaded"},
        {head + "<solution><import file_name=\"no.vkp\"/></solution>", "/s/no.vkp does not exist"},
        {head + "<import file_name=\"/no.vkp\"/>", "/s//no.vkp does not exist"},
        // Found from the current directory, but read beside the importing file.
        {head + "<solution><import file_name=\"here.vkp\"/></solution>",
         "here.vkp:0 - couldn't read /s/here.vkp"},
        {head + "<solution><project Name=\"p\" template_name=\"\"/></solution>", "no template for project p"},
        {head + "<solution><project Name=\"p\" template_name=\"t\"/></solution>",
         "t project template not found"},
        {head + "<solution>" + nested(1000, "<folder>", "</folder>") + "</solution>",
         "/s/app.vkp elements are nested too deep"},
        {head + nested(33, "<solution>", "</solution>"), "/s/app.vkp solutions are nested too deep"},
        {head + nested(32, "<solution>", "</solution>"), ""},
    };
    for (const auto& row : rows) {
        memory.write("/s/app.vkp", row.text);
        EXPECT_EQ(loadError(), row.error) << row.text.substr(0, 200);
        EXPECT_EQ(system.solutionElement() != nullptr, *row.error == '\0');
    }
    EXPECT_EQ(loadError("/s/gone.vkp"), "/s/gone.vkp does not exist");
}

TEST_F(SolutionLoad, FilesThatImportEachOtherTwiceEnd) {
    for (int i = 0; i < 40; ++i) {
        const std::string import = "<import file_name=\"" + std::to_string(i + 1) + ".vkp\"/>";
        memory.write("/s/" + QString::number(i) + ".vkp",
                     file("<solution version=\"2\">" + import + import + "</solution>"));
    }
    EXPECT_EQ(loadError("/s/0.vkp"), "32.vkp imports are nested too deep");
    memory.write("/s/20.vkp", file("<solution version=\"2\"/>"));
    EXPECT_EQ(loadError("/s/0.vkp").toStdString().substr(2), ".vkp too many imports");
}

TEST_F(SolutionLoad, HandlerThatRetriesLetsTheLoadGoOn) {
    struct : ProjectFileNotFoundErrorHandler {
        bool retry(const QString& fileName) override {
            asked.append(fileName);
            return answer;
        }
        QStringList asked;
        bool answer = true;
    } handler;
    memory.write("/s/app.vkp", file("<solution><import file_name=\"no.vkp\"/></solution>"));
    const auto error = [&] {
        try {
            system.loadSolution("/s/app.vkp", &handler);
        } catch (const SolutionLoadError& e) {
            return QString(e.file + e.message);
        }
        return QString();
    };
    EXPECT_EQ(error(), "/s/no.vkp cannot access");
    handler.answer = false;
    EXPECT_EQ(error(), "/s/no.vkp does not exist");
    EXPECT_EQ(handler.asked, QStringList({"/s/no.vkp", "/s/no.vkp"}));
}

TEST_F(SolutionLoad, OlderVersionLosesItsSectionPlacementFile) {
    const std::string system430 = "$(TarnDir)/targets/section_placement.xml";
    const auto project = [&](const std::string& name, const std::string& folder) {
        return "<project Name=\"" + name + "\"><folder Name=\"" + folder +
               "\"><file file_name=\"a.c\"/><file path=\"x\" file_name=\"" + system430 +
               "\"/></folder></project>";
    };
    const std::string elements = project("p", "System Files") + "<solution>" + project("q", "Startup Code") +
                                 "</solution>" + project("r", "Source");
    memory.write("/s/app.vkp", file("<solution Name=\"app\" version=\"1\">" + elements + "</solution>"));
    EXPECT_EQ(loadError(), "");
    EXPECT_EQ(system.solutionElement()->attribute("version"), "2");
    EXPECT_FALSE(system.solutionElement()->modified());
    const auto count = [&](const char* name) {
        int files = 0;
        for (ProjectElement* e = node(name)->firstChild()->firstChild(); e; e = e->nextSibling())
            ++files;
        return files;
    };
    EXPECT_EQ(count("p"), 1);
    EXPECT_EQ(count("q"), 1);
    EXPECT_EQ(count("r"), 2);
    load(elements);
    EXPECT_EQ(count("p"), 2) << "the present version";
}

TEST_F(SolutionLoad, DynamicFolderHoldsTheMatchingFilesOnce) {
    macroSystem.setSystemMacro("Shared", "/shared");
    for (const char* name :
         {"/s/src/b.c", "/s/src/A.C", "/s/src/a.h", "/s/src/.h.c", "/s/src/sub/z.c", "/shared/x.c"})
        memory.write(name, "");
    ProjectElement* root =
        load("<project Name=\"p\">"
             "<folder Name=\"1\" path=\"src\" filter=\"*.c;*.s43\"><file file_name=\"src/b.c\"/></folder>"
             "<folder Name=\"2\" path=\"src\" filter=\"*.h ?.c\"/>"
             "<folder Name=\"3\" path=\"$(Shared)\"/>"
             "<folder Name=\"4\" path=\"missing\"/></project>"
             "<folder Name=\"loose\" path=\"src\" filter=\"*.h\"/>");
    EXPECT_EQ(dump(root), "solution Name=\"app\" version=\"2\"\n"
                          "  project Name=\"p\"\n"
                          "    folder Name=\"1\" filter=\"*.c;*.s43\" path=\"src\"\n"
                          "      file file_name=\"src/b.c\"\n"
                          "      file file_name=\"src/A.C\"\n"
                          "    folder Name=\"2\" filter=\"*.h ?.c\" path=\"src\"\n"
                          "      file file_name=\"src/A.C\"\n"
                          "      file file_name=\"src/a.h\"\n"
                          "      file file_name=\"src/b.c\"\n"
                          "    folder Name=\"3\" path=\"$(Shared)\"\n"
                          "      file file_name=\"$(Shared)/x.c\"\n"
                          "    folder Name=\"4\" path=\"missing\"\n"
                          "  folder Name=\"loose\" filter=\"*.h\" path=\"src\"\n"
                          "    file file_name=\"src/a.h\"\n");
    EXPECT_FALSE(root->modified());
}

TEST_F(SolutionLoad, TreeMadeByHandLooksLikeALoadedOne) {
    ProjectElement* root = system.createSolution("new", "/s/dir");
    EXPECT_TRUE(memory.status("/s/dir").exists());
    ProjectElement* project = system.createProject(root, "p", "/s/other", "Library");
    EXPECT_EQ(system.projectDirectoryPath(project), "/s/dir/../other");
    system.createFolder(project, "Source", "c;s43", false);
    system.createFolder(project, "Headers", "", false)->setAttribute("filter", "h,H", false);
    system.createFolder(project, "Source", "ignored", false);
    for (const char* name : {"main.C", "x.h", "y.txt", "noextension"})
        system.addFile(project, name, false);
    system.setProperty(project, "p", "Debug", "1", false);
    system.setProperty(project, "p", "Debug", "2", false);
    system.loadedSolution();
    EXPECT_EQ(dump(root),
              "solution Name=\"new\" version=\"2\"\n"
              "  project Name=\"p\"\n"
              "    configuration Name=\"Common\" project_directory=\"../other\" project_type=\"Library\"\n"
              "    folder Name=\"Source\"\n"
              "      configuration Name=\"Common\" filter=\"c;s43\"\n"
              "      file file_name=\"main.C\"\n"
              "    folder Name=\"Headers\" filter=\"h,H\"\n"
              "      file file_name=\"x.h\"\n"
              "    file file_name=\"y.txt\"\n"
              "    file file_name=\"noextension\"\n"
              "    configuration Name=\"Debug\" p=\"2\"\n");
    EXPECT_FALSE(root->modified());
    EXPECT_EQ(system.projectNames(), QStringList("p"));
}
