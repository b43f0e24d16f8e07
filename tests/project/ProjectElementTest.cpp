#include "project/ProjectElement.h"
#include "macros/MacroSystem.h"
#include "support/SolutionFixture.h"
#include "support/XMLText.h"

namespace {

std::unique_ptr<ProjectElement> named(const char* tag, const char* name) {
    auto element = std::make_unique<ProjectElement>(QString(tag));
    element->setAttribute("Name", name, false);
    return element;
}

} // namespace

TEST(ProjectElement, TakesItsKindFromTheTag) {
    const char* tags[] = {"solution", "configuration", "project", "folder", "file", "import", "Solution", ""};
    const int kinds[] = {0, 1, 2, 3, 4, 5, 5, 5};
    for (size_t i = 0; i < std::size(tags); ++i)
        EXPECT_EQ(ProjectElement(QString(tags[i])).kind(), kinds[i]) << tags[i];
}

TEST(ProjectElement, LaterAttributesOfANameReplaceEarlierOnesWithoutMarks) {
    const ExactParse quoted("<file b=\"1\" a=\"2\" c=\"\" b=\"3\"/>");
    ProjectElement element("file");
    element.setAttribute("a", "old", false);
    element.clearMarks();
    element.setAttributesFrom(*quoted.root());
    EXPECT_FALSE(element.modified());
    EXPECT_EQ(dump(&element), "file a=\"2\" b=\"3\" c=\"\"\n");
    EXPECT_TRUE(element.hasAttribute("c"));
    EXPECT_FALSE(element.attribute("c").isNull());
    EXPECT_TRUE(element.attribute("never heard of").isNull());
    element.removeAttribute("a");
    EXPECT_TRUE(element.modified());
    EXPECT_TRUE(element.attribute("a").isNull());
}

TEST(ProjectElement, LaterConfigurationOfANameIsTheOneThatIsFound) {
    ProjectElement project("project");
    ProjectElement* first = project.appendChild(named("configuration", "Debug"));
    ProjectElement* second = project.appendChild(named("configuration", "Debug"));
    EXPECT_EQ(project.configuration("Debug"), second);
    EXPECT_EQ(project.firstChild(), first);
    const auto removed = project.removeChild(second);
    EXPECT_EQ(removed.get(), second);
    EXPECT_EQ(project.configuration("Debug"), nullptr);
    EXPECT_EQ(project.removeChild(second), nullptr);
    ProjectElement* third = project.appendChild(named("file", "f"));
    EXPECT_EQ(first->nextSibling(), third);
}

TEST(ProjectElement, PropertiesGatherInCallOrder) {
    ProjectElement project("project");
    for (const char* name : {"Debug", "Common", "Empty"})
        project.appendChild(named("configuration", name))->setAttribute("p", QString(name), false);
    project.configuration("Empty")->setAttribute("p", "", false);
    QString value;
    PropertyInheritanceInformation info;
    EXPECT_FALSE(project.getProperty("Release", "p", value, &info));
    EXPECT_FALSE(project.getProperty("Debug", "q", value, &info));
    EXPECT_TRUE(value.isNull());
    EXPECT_TRUE(project.getProperty("Empty", "p", value, &info));
    EXPECT_FALSE(value.isNull());
    EXPECT_TRUE(project.getProperty("Debug", "p", value, &info));
    EXPECT_TRUE(project.getProperty("Common", "p", value, nullptr));
    EXPECT_EQ(value, "Debug;Common");
    EXPECT_EQ(info.size(), 2);
    EXPECT_EQ(info[1].value, "Debug");
    EXPECT_EQ(info[1].name, "<NULL>");
    EXPECT_EQ(info[1].element, &project);
}

TEST(ProjectElement, ChangesAreKnownByTheirTime) {
    ProjectElement project("project");
    ProjectElement* debug = project.appendChild(named("configuration", "Debug"));
    const QDateTime past = QDateTime::currentDateTime().addSecs(-100);
    const QDateTime future = past.addSecs(200);
    bool newer = true;
    EXPECT_FALSE(project.propertyHasChanged("Debug", "p", past, newer));
    EXPECT_TRUE(newer) << "untouched";
    debug->setAttribute("p", "1", false);
    EXPECT_TRUE(project.propertyHasChanged("Debug", "p", past, newer));
    EXPECT_TRUE(newer);
    EXPECT_TRUE(project.propertyHasChanged("Debug", "p", future, newer));
    EXPECT_FALSE(newer);
    debug->removeAttribute("p");
    EXPECT_TRUE(project.propertyHasChanged("Debug", "p", past, newer));
    EXPECT_FALSE(project.propertyHasChanged("Debug", "p", future, newer));
    project.clearMarks();
    EXPECT_FALSE(project.propertyHasChanged("Debug", "p", past, newer));
}

TEST(ProjectElement, MillionLevelsGoWithoutTheStack) {
    auto root = std::make_unique<ProjectElement>(ProjectElement::Folder);
    ProjectElement* deepest = root.get();
    for (int i = 0; i < 1'000'000; ++i)
        deepest = deepest->appendChild(std::make_unique<ProjectElement>(ProjectElement::Folder));
    root->clearMarks();
    EXPECT_FALSE(deepest->modified());
    root.reset();
}

class FilePlaces : public SolutionFixture {};

TEST_F(FilePlaces, NamesCountFromTheProjectDirectory) {
    macroSystem.setSystemMacro("Lib", "/lib");
    load("<file file_name=\"loose.c\"/>"
         "<project Name=\"plain\"><folder Name=\"d\"><file file_name=\"src/../a.b.c\"/></folder></project>"
         "<project Name=\"relative\"><configuration Name=\"Common\" project_directory=\"sub\"/>"
         "  <file file_name=\"src/r.c\"/><file file_name=\"$(Lib)/x/m.c\"/><file "
         "file_name=\"../up.c\"/></project>"
         "<project Name=\"absolute\"><configuration Name=\"Common\" project_directory=\"/abs\"/>"
         "  <file file_name=\"z.c\" Name=\"\"/></project>"
         "<solution Name=\"inline\"><project Name=\"inner\"><file file_name=\"i.c\"/></project></solution>");
    const struct {
        const char* name;
        const char* path;
        const char* relative;
        bool in, under;
    } rows[] = {
        {"loose.c", "/s/loose.c", "loose.c", true, true},
        {"a.b.c", "/s/a.b.c", "src/../a.b.c", true, true},
        {"r.c", "/s/sub/src/r.c", "src/r.c", false, true},
        {"m.c", "/lib/x/m.c", "/lib/x/m.c", false, false},
        {"up.c", "/s/up.c", "../up.c", false, false},
        {"z.c", "/abs/z.c", "z.c", true, true},
        {"i.c", "/s/i.c", "i.c", true, true},
    };
    for (const auto& row : rows) {
        ProjectElement* file = node(row.name);
        EXPECT_EQ(file->path().filePath(), row.path);
        EXPECT_EQ(file->relativeName(), row.relative) << row.name;
        EXPECT_EQ(file->inProjectDir(), row.in) << row.name;
        EXPECT_EQ(file->underProjectDir(), row.under) << row.name;
    }
    EXPECT_EQ(node("m.c")->attribute("file_name"), "$(Lib)/x/m.c") << "stays unexpanded";
    node("z.c")->setFileName("y.c", false);
    EXPECT_EQ(node("y.c")->getName(), "y.c");
    EXPECT_EQ(system.defaultFileLocation(node("r.c")), "/s/sub");
    EXPECT_TRUE(system.projectDirectoryPath(nullptr).isNull());
}
